#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Desktop entry, icons and AppStream data: valid, complete, and true."""

import configparser
import os
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree

from installed_tree import BUILD, PACKAGING, SOURCE, InstalledTestCase, png_size, read, run

MIME = "/usr/share/mime"
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)


def desktop_entry():
    parser = configparser.ConfigParser(interpolation=None)
    parser.optionxform = str
    parser.read_string(read(PACKAGING, "vyx.desktop"))
    return parser["Desktop Entry"]


def mime_types():
    return [name for name in desktop_entry()["MimeType"].split(";") if name]


class DesktopEntry(unittest.TestCase):
    def test_is_valid(self):
        self.assertEqual(run("desktop-file-validate", os.path.join(PACKAGING, "vyx.desktop")), "")

    def test_opens_one_file(self):
        entry = desktop_entry()
        self.assertEqual(entry["Exec"], "vyx %f")
        self.assertEqual(entry["TryExec"], "vyx")
        self.assertEqual(entry["Icon"], "vyx")
        self.assertEqual(entry["Terminal"], "false")

    def test_types_are_known_and_told_once(self):
        known = set(read(MIME, "types").split())
        types = mime_types()
        self.assertEqual([name for name in types if name not in known], [])
        self.assertEqual(len(set(types)), len(types))

    def test_has_a_type_for_every_file_of_the_media_browser(self):
        listed = re.search(r'"(\.mp4\|.*)";', read(SOURCE, "src", "gui", "directory_listing.cpp")).group(1)
        extensions = set(listed.split("|"))
        self.assertEqual(len(extensions), 13)
        types_of = {}
        for line in read(MIME, "globs2").splitlines():
            if not line.startswith("#"):
                _, mime, pattern = line.split(":")[:3]
                types_of.setdefault(pattern, set()).add(mime)
        for extension in extensions:
            self.assertTrue(types_of["*" + extension] & set(mime_types()), extension)


class Icons(InstalledTestCase):
    def icon(self, size):
        return self.installed.path("share", "icons", "hicolor", f"{size}x{size}", "apps", "vyx.png")

    def test_sizes(self):
        for size in SIZES:
            self.assertEqual(png_size(self.icon(size)), (size, size))

    def test_scalable(self):
        picture = xml.etree.ElementTree.parse(
            self.installed.path("share", "icons", "hicolor", "scalable", "apps", "vyx.svg")).getroot()
        self.assertEqual(picture.tag, "{http://www.w3.org/2000/svg}svg")
        self.assertEqual(picture.get("viewBox"), "0 0 512 512")

    @staticmethod
    def pixels(path):
        return subprocess.run(["convert", path, "-depth", "8", "rgba:-"], check=True, stdout=subprocess.PIPE).stdout

    def test_pictures_are_what_is_drawn(self):
        with tempfile.TemporaryDirectory() as folder:
            for name, path in (("tools", "make-icons"), ("packaging", "icons")):
                os.makedirs(os.path.join(folder, name))
                run("cp", "-r", os.path.join(SOURCE, name, path), os.path.join(folder, name))
            for size in SIZES:
                os.remove(os.path.join(folder, "packaging", "icons", f"{size}.png"))
            run(os.path.join(folder, "tools", "make-icons"))
            for size in SIZES:
                made = self.pixels(os.path.join(folder, "packaging", "icons", f"{size}.png"))
                kept = self.pixels(self.icon(size))
                self.assertEqual(len(made), size * size * 4)
                # Another renderer may round otherwise.
                self.assertLessEqual(max(abs(a - b) for a, b in zip(made, kept)), 2, f"run tools/make-icons: {size}")

    def test_shows_the_demo_line(self):
        for size in SIZES:
            data = self.pixels(self.icon(size))
            row = [tuple(data[(size // 2 * size + x) * 4 :][:4]) for x in range(size)]
            red = [x for x in range(size) if row[x][0] > 150 and row[x][1] < 60]
            self.assertTrue(red, size)
            self.assertTrue(all(0.4 * size <= x <= 0.6 * size for x in red), (size, red))
            self.assertLess(data[3], 32, f"corners are clear: {size}")  # at most 6 where an edge is near


class Metadata(InstalledTestCase):
    def setUp(self):
        (self.path,) = [self.installed.path(name) for name in self.installed.files() if name.endswith(".metainfo.xml")]
        self.root = xml.etree.ElementTree.parse(self.path).getroot()

    def test_is_valid(self):
        said = run("appstreamcli", "validate", "--no-net", "--pedantic", "--no-color", self.path)
        self.assertIn("Validation was successful.", said)
        self.assertNotRegex(said, r"(?m)^[EWIP]: ")

    def test_the_installed_tree_is_valid(self):
        said = run("appstreamcli", "validate-tree", "--no-net", "--no-color", self.installed.folder)
        self.assertNotRegex(said, r"(?m)^[EW]: ")

    def test_belongs_to_the_desktop_entry(self):
        self.assertEqual(self.root.findtext("launchable"), "vyx.desktop")
        self.assertEqual(self.root.findtext("id") + ".metainfo.xml", os.path.basename(self.path))
        wanted = {node.text for node in self.root.find("categories")}
        self.assertEqual(wanted - set(desktop_entry()["Categories"].split(";")), set())

    def test_tells_the_version(self):
        version = re.search(r"CMAKE_PROJECT_VERSION:STATIC=(.*)", read(BUILD, "CMakeCache.txt")).group(1)
        self.assertEqual(self.root.find("releases")[0].get("version"), version)

    def test_binaries_are_installed(self):
        for node in self.root.find("provides"):
            self.assertTrue(os.access(self.installed.path("bin", node.text), os.X_OK), node.text)

    def test_screenshots_are_pictures_of_the_documentation(self):
        images = list(self.root.iter("image"))
        self.assertGreater(len(images), 2)
        for image in images:
            picture = os.path.join(SOURCE, "docs", "pictures", image.text.rsplit("/", 1)[1])
            size = run("identify", "-format", "%w %h", picture).split()
            self.assertEqual([image.get("width"), image.get("height")], size, picture)


if __name__ == "__main__":
    unittest.main()
