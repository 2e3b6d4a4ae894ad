#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A folder of src is a layer: check_layers.py SRC fails on an include that goes the wrong way.

It also keeps outside libraries behind their fences: FFmpeg out of the headers of gpu, audio and gui,
OpenGL out of player and media.
"""

import os
import re
import sys

# What each folder may include besides itself.
BELOW = {
    "core": set(),
    "platform": {"core"},
    "gpu": {"core", "platform"},
    "audio": {"core", "platform"},
    "gui": {"core", "platform", "gpu"},
    "media": {"core", "platform", "gpu", "gui"},
    "videoio": {"core", "platform", "media"},
    "player": {"core", "platform", "gpu", "audio", "gui", "media", "videoio"},
    "enhance": {"core", "platform", "gpu", "media", "videoio", "player"},
}
FFMPEG = re.compile(r"^(libav\w+|libsw\w+)/")
OPENGL = re.compile(r"^GL/")
OPENGL_CALL = re.compile(r"\bgl[A-Z]\w*\(")
NO_OPENGL = ("core", "audio", "player", "media", "videoio")


def complaints(source):
    for folder, _, files in os.walk(source):
        for name in files:
            if not name.endswith((".h", ".cpp")):
                continue
            path = os.path.join(folder, name)
            layer = os.path.relpath(path, source).split(os.sep)[0]
            with open(path, encoding="utf-8") as text:
                content = text.read()
            includes = re.findall(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', content, re.M)
            if layer in NO_OPENGL and OPENGL_CALL.search(content):
                yield f"{path}: a call of OpenGL in {layer}"
            for include in includes:
                target = include.split("/")[0]
                if layer not in BELOW:
                    yield f"{path}: no such layer"
                elif target in BELOW and target != layer and target not in BELOW[layer]:
                    yield f"{path}: {layer} must not include {include}"
                if FFMPEG.match(include) and name.endswith(".h") and layer in ("gpu", "audio", "gui"):
                    yield f"{path}: FFmpeg in a header of {layer}"
                if OPENGL.match(include) and layer in NO_OPENGL:
                    yield f"{path}: OpenGL in {layer}"


def main():
    found = list(complaints(sys.argv[1]))
    print("\n".join(found))
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
