#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The installed tree runs from wherever it lies, and knows nothing of the folders it was built in."""

import os
import re
import subprocess
import sys
import unittest

from installed_tree import BUILD, MEDIA, PREFIX, SOURCE, VERSION, Installed, InstalledTestCase, read, run

os.environ["VYX_BIN"] = "vyx"  # each test names its own
sys.path.insert(0, os.path.join(SOURCE, "tests", "e2e"))
import support  # pylint: disable=wrong-import-position

PROGRAMS = ("vyx", "vyx-enhance", "vyx-video-selftest")


def dynamic_section(path):
    return run("readelf", "-d", path)


class Tree(InstalledTestCase):
    def test_files(self):
        names = {os.path.basename(name) for name in self.installed.files()}
        for name in ("vyx", "vyx-enhance", "vyx-video-selftest", "libvyxvideo.so", "libvyxvideo.so.1", "video.h",
                     "vyxvideo.pc", "vyxvideo-config.cmake", "contact_sheet.py", "grey_film.c", "vyx.desktop", "vyx.svg",
                     "copyright"):  # fmt: skip
            self.assertIn(name, names)
        # Nothing of the tests, the static libraries and the tools.
        self.assertEqual([name for name in names if re.search(r"\.(a|o|cpp)$|test_|bench|gallery", name)], [])
        self.assertFalse([name for name in self.installed.files() if name.startswith("..")], "all below the prefix")

    def test_no_trace_of_where_it_was_built(self):
        for name in self.installed.files():
            with open(self.installed.path(name), "rb") as file:
                content = file.read()
            for folder in (SOURCE, BUILD, self.installed.folder):
                self.assertNotIn(folder.encode(), content, name)

    def test_libraries_are_looked_for_in_the_system(self):
        for name in PROGRAMS:
            paths = re.findall(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]", dynamic_section(self.installed.path("bin", name)))
            # One program uses the library beside it, unless it lies where the system looks anyway.
            own = name == "vyx-video-selftest" and PREFIX != "/usr"
            self.assertEqual(len(paths), 1 if own else 0, (name, paths))
            self.assertTrue(all(path.startswith("$ORIGIN/../lib") for path in paths), paths)
        self.assertNotIn("PATH", dynamic_section(self.installed.find("libvyxvideo.so." + VERSION)))

    def test_is_stripped(self):
        for name in (*(self.installed.path("bin", program) for program in PROGRAMS),
                     self.installed.find("libvyxvideo.so." + VERSION)):  # fmt: skip
            self.assertNotIn(".debug_info", run("readelf", "-S", "-W", name))

    def test_components_are_disjoint_and_everything(self):
        parts = [set(self.component(name)) for name in ("player", "video-library", "video-development")]
        self.assertEqual(sum(map(len, parts)), len(set.union(*parts)))
        self.assertEqual(set.union(*parts), set(self.installed.files()))
        self.assertEqual(set(self.component("video")), parts[1] | parts[2])

    @staticmethod
    def component(name):
        tree = Installed(name)
        try:
            return tree.files()
        finally:
            tree.close()

    def test_licence_of_everything(self):
        copyright_file = read(self.installed.path("share", "doc", "vyx", "copyright"))
        own = read(SOURCE, "LICENSE").split("\n", 4)[4]
        font = read(SOURCE, "src", "gui", "default_font.LICENSE").split("public domain.\n")[1]
        for text in (own, font):
            self.assertIn(" ".join(text.split()), " ".join(copyright_file.replace("\n .\n", "\n").split()))
        self.assertIn(re.search(r"Copyright \(c\) (.*)", read(SOURCE, "LICENSE")).group(1), copyright_file)
        for name in re.findall(r"(?m)^Files: (.*)$", copyright_file):
            self.assertTrue(name == "*" or os.path.exists(os.path.join(SOURCE, name)), name)


class Programs(InstalledTestCase):
    def environment(self):
        # Where it lies in the end the system finds the library.
        library = os.path.dirname(self.installed.find("libvyxvideo.so." + VERSION))
        return dict(os.environ, LD_LIBRARY_PATH=library) if PREFIX == "/usr" else dict(os.environ)

    def path(self, name):
        return os.path.join(self.installed.folder, name)

    def test_vyx_enhance(self):
        output = self.path("larger.mkv")
        run(self.installed.path("bin", "vyx-enhance"), "--spatial", "2", "--frames", "5",
            os.path.join(MEDIA, "h264_nob.mp4"), output)  # fmt: skip
        said = run("ffprobe", "-v", "error", "-count_frames", "-show_entries", "stream=width,height,nb_read_frames", "-of",
                   "csv=p=0", output)  # fmt: skip
        self.assertEqual(said.strip(), "640,360,5")

    def test_self_test(self):
        said = run(self.installed.path("bin", "vyx-video-selftest"), os.path.join(MEDIA, "h264_nob.mp4"),
                   self.path("copy.avi"), env=self.environment())  # fmt: skip
        self.assertIn("0.040000\n", said)

    def test_example_of_the_manual(self):
        page = read(SOURCE, "packaging", "man", "vyxvideo.3")
        program = re.search(r"(?s)\n\.EX\n(.*?)\n\.EE", page).group(1).replace("\\en", "\\n")
        with open(self.path("times.c"), "w", encoding="ascii") as file:
            file.write(program + "\n")
        library = os.path.dirname(self.installed.find("libvyxvideo.so." + VERSION))
        run("cc", "-std=c99", "-pedantic", "-Wall", "-Wextra", "-Werror", "-I" + self.installed.path("include"),
            self.path("times.c"), "-L" + library, "-lvyxvideo", f"-Wl,-rpath,{library}", "-o", self.path("times"))  # fmt: skip
        said = run(self.path("times"), os.path.join(MEDIA, "h264_nob.mp4")).splitlines()
        self.assertEqual((len(said), said[0], said[-1]), (100, "0.000", "3.960"))
        self.assertIn("No such file", run(self.path("times"), "/nowhere/film", status=1))


class Player(support.PlayerTestCase):
    """The installed player shows a film."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.installed = Installed("player")
        cls.addClassCleanup(cls.installed.close)
        support.VYX = cls.installed.path("bin", "vyx")

    def test_plays(self):
        player = self.start(support.clip("h264_nob.mp4"))
        first = self.number(player)
        self.await_number(player, lambda number: number != first, 10, "another picture")
        self.assertEqual(player.quit(), 0)

    def test_window_belongs_to_the_desktop_entry(self):
        player = self.start(support.clip("h264_nob.mp4"))
        said = self.display.run("xprop", "-id", player.window(), "WM_CLASS")
        entry = read(SOURCE, "packaging", "vyx.desktop")
        self.assertIn('"' + re.search(r"(?m)^StartupWMClass=(.*)$", entry).group(1) + '"', said)

    def test_says_what_is_missing(self):
        result = subprocess.run([support.VYX, "/nowhere/film.mp4"], check=False, capture_output=True, text=True,
                                env=dict(self.display.env, SDL_AUDIODRIVER="dummy"))  # fmt: skip
        self.assertEqual(result.returncode, 1)
        self.assertIn("File does not exist: '/nowhere/film.mp4'!\n", result.stderr)


if __name__ == "__main__":
    unittest.main()
