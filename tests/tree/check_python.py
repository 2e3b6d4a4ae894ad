#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_python FOLDER: no script of the tree uses a name that it does not know, or knows one for nothing.

What takes half an hour to run must not end with a name that was misspelt. pyflakes looks."""

import os
import subprocess
import sys


def is_python(path):
    if path.endswith(".py"):
        return True
    if "." in os.path.basename(path):
        return False
    with open(path, "rb") as file:
        return file.readline().startswith(b"#!/usr/bin/env python3")


def scripts(top):
    for folder, folders, files in os.walk(top):
        folders[:] = [name for name in folders if name != "build" and not name.startswith(".")]
        for name in files:
            path = os.path.join(folder, name)
            if os.path.isfile(path) and is_python(path):
                yield path


def main():
    found = sorted(scripts(sys.argv[1]))
    if len(found) < 20:
        raise SystemExit(f"only {len(found)} scripts in {sys.argv[1]}")
    raise SystemExit(subprocess.run(["pyflakes3", *found], check=False).returncode)


if __name__ == "__main__":
    main()
