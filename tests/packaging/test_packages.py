#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The Debian packages: clean by lintian, complete, and the player runs from what they hold."""

import os
import re
import sys
import tempfile
import unittest

from installed_tree import BUILD, MEDIA, SOURCE, Installed, run

os.environ["VYX_BIN"] = "vyx"
sys.path.insert(0, os.path.join(SOURCE, "tests", "e2e"))
import support  # pylint: disable=wrong-import-position

NAMES = {"player": "vyx", "video-library": "libvyxvideo1", "video-development": "libvyxvideo-dev"}


class Packages:
    """The packages, made anew into a folder of their own and unpacked there."""

    def __init__(self):
        self.temporary = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        self.folder = self.temporary.name
        run("cpack", "--config", os.path.join(BUILD, "CPackConfig.cmake"), "-B", self.folder)
        self.paths = {name.split("_")[0]: os.path.join(self.folder, name)
                      for name in os.listdir(self.folder) if name.endswith(".deb")}  # fmt: skip
        self.root = os.path.join(self.folder, "root")
        for path in self.paths.values():
            run("dpkg-deb", "-x", path, self.root)

    def field(self, package, name):
        return run("dpkg-deb", "-f", self.paths[package], name).strip()

    def close(self):
        self.temporary.cleanup()


class PackagesTestCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.packages = Packages()
        cls.addClassCleanup(cls.packages.close)

    def test_names(self):
        self.assertEqual(set(self.packages.paths), set(NAMES.values()))

    def test_lintian_is_content(self):
        said = run("lintian", "--fail-on", "error,warning", "--allow-root", *self.packages.paths.values())
        self.assertNotRegex(said, "(?m)^[EW]: ")

    def test_hold_the_components(self):
        for component, package in NAMES.items():
            tree = Installed(component)
            wanted = {os.path.join("usr", name) for name in tree.files()}
            tree.close()
            lines = run("dpkg-deb", "-c", self.packages.paths[package]).splitlines()
            files = {line.split()[5][2:] for line in lines if not line.startswith("d")}
            self.assertEqual(files, wanted, package)
            self.assertEqual({line.split()[1] for line in lines}, {"root/root"}, package)

    def test_dependencies(self):
        player = self.packages.field("vyx", "Depends")
        for library in (r"libsdl1.2-compat-shim \| libsdl1.2debian", r"libavformat\d+", r"libavcodec\d+", r"libglew\d",
                        "libglu1-mesa", "libegl1"):  # fmt: skip
            self.assertRegex(player, library)
        self.assertNotIn("vyxvideo", player)
        self.assertRegex(self.packages.field("vyx", "Recommends"), r"^libavdevice\d+$")
        library = self.packages.field("libvyxvideo1", "Depends")
        for display in ("libsdl", "libgl", "libx11", "libegl"):
            self.assertNotIn(display, library)
        version = self.packages.field("libvyxvideo1", "Version")
        self.assertRegex(self.packages.field("libvyxvideo-dev", "Depends"), re.escape(f"libvyxvideo1 (= {version})"))

    def test_what_the_programs_need_is_depended_on(self):
        """Every library that a program is linked with belongs to a package that its own package asks for."""
        for package, path in (("vyx", "usr/bin/vyx"), ("vyx", "usr/bin/vyx-enhance")):
            depends = self.packages.field(package, "Depends")
            needed = re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "-d", os.path.join(self.packages.root, path)))
            self.assertGreater(len(needed), 8)
            for library in needed:
                owners = run("dpkg", "-S", f"*/{library}").splitlines()
                names = {owner.split(":")[0] for owner in owners if not owner.startswith("diversion")}
                provided = {name for owner in names for name in
                            re.findall(r"[\w.+-]+", run("dpkg-query", "-W", "-f", "${Provides}", owner))}  # fmt: skip
                self.assertTrue(any(re.search(rf"(?:^|[ |]){re.escape(name)}(?:[ ,(]|$)", depends)
                                    for name in names | provided), (library, names))  # fmt: skip

    def test_the_dynamic_linker_learns_of_the_library(self):
        control = os.path.join(self.packages.folder, "control")
        run("dpkg-deb", "-e", self.packages.paths["libvyxvideo1"], control)
        with open(os.path.join(control, "triggers"), encoding="ascii") as file:
            self.assertEqual(file.read(), "activate-noawait ldconfig\n")
        with open(os.path.join(control, "shlibs"), encoding="ascii") as file:
            self.assertRegex(file.read(), r"^libvyxvideo 1 libvyxvideo1 \(>= [\d.]+\)$")

    def test_programs_are_hardened(self):
        for path in ("usr/bin/vyx", "usr/bin/vyx-enhance", "usr/bin/vyx-video-selftest"):
            said = run("readelf", "-d", "-h", "-W", os.path.join(self.packages.root, path))
            self.assertRegex(said, r"Type: +DYN .*Position-Independent")
            self.assertRegex(said, r"BIND_NOW|FLAGS.*NOW")


class Player(support.PlayerTestCase):
    """The player as it lies in its package."""

    def test_plays(self):
        packages = Packages()
        self.addCleanup(packages.close)
        support.VYX = os.path.join(packages.root, "usr", "bin", "vyx")
        player = self.start(os.path.join(MEDIA, "mpeg4_nob.avi"))
        first = self.number(player)
        self.await_number(player, lambda number: number != first, 10, "another picture")
        self.assertEqual(player.quit(), 0)


if __name__ == "__main__":
    unittest.main()
