# SPDX-License-Identifier: MIT
"""The project's own files and programs, as the tests of what is installed look at them."""

import os
import re
import struct
import subprocess
import tempfile
import unittest

SOURCE = os.environ["VYX_SOURCE"]
BUILD = os.environ["VYX_BUILD"]
PREFIX = os.environ["VYX_PREFIX"]
MEDIA = os.environ["VYX_TEST_MEDIA"]
PACKAGING = os.path.join(SOURCE, "packaging")


def run(*command, status=0, **more):
    """What a program says, on both outputs; it must end with `status`."""
    result = subprocess.run(list(map(str, command)), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True, check=False, **more)
    if result.returncode != status:
        raise AssertionError(f"{' '.join(map(str, command))}: {result.returncode}\n{result.stdout}")
    return result.stdout


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


VERSION = re.search(r"project\(vyx VERSION (\S+)", read(SOURCE, "CMakeLists.txt")).group(1)


def png_size(path):
    with open(path, "rb") as file:
        head = file.read(24)
    if head[:8] != b"\x89PNG\r\n\x1a\n":
        raise AssertionError(f"{path} is no PNG file")
    return struct.unpack(">II", head[16:24])


def player_options():
    """The player's options: {long name: (takes an argument, short name)}. A short name is empty where the short
    form takes an argument and the long one does not, or the reverse."""
    text = read(SOURCE, "src", "player", "command_line.cpp")
    short = re.search(r'short_options\[\] = "(.*)"', text).group(1)
    found = {}
    for name, kind, letter in re.findall(r"\{\"(\w+)\", (no|required)_argument, nullptr, '(\w)'\}", text):
        takes = kind == "required"
        same = (letter + ":" in short) == takes
        found[name] = (takes, letter if same else "")
    assert len(found) == 9, found
    return found


def enhance_options():
    """The options that `vyx-enhance --help` tells: {long name: takes an argument}."""
    text = run(os.path.join(BUILD, "bin", "vyx-enhance"), "--help")
    found = {name: bool(value) for name, value in re.findall(r"^  --(\w+)( [A-Z]+)?", text, re.M)}
    assert len(found) == 9, found
    return found


class Installed:
    """The tree installed into a folder of its own, as a package would be made."""

    def __init__(self, *components):
        self.temporary = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        self.folder = self.temporary.name
        for component in components or [None]:
            only = ["--component", component] if component else []
            run("cmake", "--install", BUILD, "--strip", *only, env=dict(os.environ, DESTDIR=self.folder))
        self.prefix = self.folder + PREFIX

    def path(self, *names):
        return os.path.join(self.prefix, *names)

    def find(self, name):
        """The one file of that name."""
        found = [file for file in self.files() if os.path.basename(file) == name]
        assert len(found) == 1, f"{name}: {found}"
        return os.path.join(self.prefix, found[0])

    def files(self):
        """All files, relative to the prefix."""
        return [os.path.relpath(os.path.join(folder, name), self.prefix)
                for folder, _, names in os.walk(self.folder) for name in names]

    def close(self):
        self.temporary.cleanup()


class InstalledTestCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.installed = Installed()
        cls.addClassCleanup(cls.installed.close)
