#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The manual: every page reads without a warning and tells all there is."""

import gzip
import os
import re
import subprocess
import unittest

from installed_tree import PACKAGING, SOURCE, VERSION, InstalledTestCase, enhance_options, player_options, read, run

PAGES = ("vyx.1", "vyx-enhance.1", "vyx-video-selftest.1", "vyxvideo.3")
FUNCTIONS = {
    "open_video", "read_frame", "seek_frame", "save_video", "write_frame", "close_video",
    "list_videoinput_devicenames", "free_list",
}  # fmt: skip
KEY_NAMES = {"SPACE": "Space", "UP": "Up", "DOWN": "Down", "RIGHT": "Right", "LEFT": "Left", "ESCAPE": "Escape",
             "KP_MINUS": "keypad -", "KP_PLUS": "keypad +"}  # fmt: skip


def source(page):
    return read(PACKAGING, "man", page)


def plain(text):
    """The text of a page's source, without its marks."""
    text = re.sub(r'(?m)^\.\\".*$', "", text)
    text = re.sub(r"(?m)^\.(?:BR|RB|RI|IR|BI|IB) (.*)$", lambda line: re.sub(r'"([^"]*)"|\s+', r"\1", line.group(1)), text)
    text = re.sub(r"(?m)^\.(?:B|I|SS|SH|TP|PP|IP \S+ \d) ?", "", text)
    return re.sub(r"\\f[BIR]", "", text).replace(r"\-", "-").replace(r"\&", "").replace(r"\(aq", "'").replace(r"\en", r"\n")


def section(page, name):
    return re.search(rf'(?m)^\.S[HS] "?{re.escape(name)}"?$\n((?:(?!^\.SH).*\n)*)', source(page)).group(1)


def told_options(page):
    """Of the section OPTIONS: {long name: (takes an argument, short name)}."""
    found = {}
    for line in re.findall(r"(?m)^\.TP\n(.*)$", section(page, "OPTIONS")):
        words = plain(line + "\n")
        match = re.match(r"(?:-(\w), ?)?--(\w+)(.*)", words)
        found[match.group(2)] = (bool(match.group(3).strip()), match.group(1) or "")
    return found


class Manual(InstalledTestCase):
    def test_pages_read_without_a_warning(self):
        env = dict(os.environ, LC_ALL="C.UTF-8", MANROFFSEQ="", MANWIDTH="80")
        pages = [name for name in self.installed.files() if "/man/" in name]
        self.assertEqual({os.path.basename(name)[:-3] for name in pages}, {*PAGES, *(f"{name}.3" for name in FUNCTIONS)})
        for page in pages:
            result = subprocess.run(
                ["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", self.installed.path(page)], env=env, check=False,
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                cwd=self.installed.path("share", "man"))  # fmt: skip
            self.assertEqual((result.returncode, result.stderr), (0, ""), page)

    def test_version(self):
        for page in PAGES:
            self.assertRegex(source(page), rf'(?m)^\.TH \S+ \d \d{{4}}-\d\d-\d\d "VYX {re.escape(VERSION)}" ')
        self.assertTrue(read(PACKAGING, "debian", "changelog").startswith(f"vyx ({VERSION}) "))

    def test_nothing_is_left_to_fill_in(self):
        for page in PAGES:
            with gzip.open(self.installed.find(page + ".gz"), "rt", encoding="utf-8") as file:
                self.assertNotRegex(file.read(), "@[A-Za-z_]+@", page)

    def test_a_page_for_each_function(self):
        names = plain(source("vyxvideo.3")).split("DESCRIPTION")[0]
        for name in FUNCTIONS:
            self.assertIn(name, names)
            with gzip.open(self.installed.find(name + ".3.gz"), "rt", encoding="utf-8") as file:
                self.assertEqual(file.read(), ".so man3/vyxvideo.3\n")

    def test_options_of_the_player(self):
        self.assertEqual(told_options("vyx.1"), player_options())

    def test_options_of_vyx_enhance(self):
        told = told_options("vyx-enhance.1")
        self.assertEqual({name: takes for name, (takes, _) in told.items()}, enhance_options())

    def test_choices_and_ranges_of_vyx_enhance(self):
        page = plain(section("vyx-enhance.1", "OPTIONS"))
        help_text = run(os.path.join(os.environ["VYX_BUILD"], "bin", "vyx-enhance"), "--help")
        ranges = re.findall(r"(\d+ to \d+ ?\(\d+\))", help_text)
        self.assertEqual(len(ranges), 4)
        for words in [*ranges, "sr", "denoise", "blend", "4nb", "8nb"]:
            self.assertIn(words, page)

    def test_keys(self):
        symbols = set(re.findall(r"SDLK_(\w+)", read(SOURCE, "src", "player", "key_commands.cpp")
                                 + read(SOURCE, "src", "player", "event_loop.cpp")))  # fmt: skip
        self.assertEqual(len(symbols), 21)
        told = set()
        for line in re.findall(r"(?m)^\.TP\n(.*)$", section("vyx.1", "KEYS")):
            told.update(plain(line + "\n").strip().split(", ") if ", " in line else plain(line + "\n").strip().split(","))
        self.assertEqual({name.strip() for name in told}, {KEY_NAMES.get(name, name) for name in symbols})

    def test_every_setting_of_the_forms(self):
        settings = plain(section("vyx.1", "SETTINGS"))
        for form, count in (("video", 10), ("audio", 8), ("video_advanced", 5)):
            labels = re.findall(r'"([A-Z][^"]*):"', read(SOURCE, "src", "gui", f"form_{form}_settings.cpp"))
            self.assertEqual(len(labels), count, form)
            for label in labels:
                self.assertIn(label, settings)

    def test_every_kind_of_file_of_the_media_browser(self):
        listed = re.search(r'"(\.mp4\|.*)";', read(SOURCE, "src", "gui", "directory_listing.cpp")).group(1)
        page = plain(section("vyx.1", "MEDIA BROWSER"))
        for extension in set(listed.split("|")):
            self.assertRegex(page, re.escape(extension) + r"[ ,.\n]")

    def test_speeds(self):
        table = re.search(r"playback_speeds = \{([^}]*)\}", read(SOURCE, "src", "player", "clocks.h")).group(1)
        speeds = [str(round(float(speed) * 100)) for speed in table.split(",")]
        self.assertEqual(len(speeds), 10)
        self.assertIn(", ".join(speeds[:-1]) + " and " + speeds[-1] + " percent", plain(section("vyx.1", "KEYS")))

    def test_messages_of_the_player_are_its_own(self):
        texts = "".join(read(SOURCE, "src", folder, name) for folder in ("player", "gpu") for name in
                        os.listdir(os.path.join(SOURCE, "src", folder)) if name.endswith(".cpp"))  # fmt: skip
        messages = re.findall(r'(?m)^\.TP\n(?:\.RI )?"?([^"\n]*?)["\n]', section("vyx.1", "DIAGNOSTICS"))
        self.assertEqual(len(messages), 5)
        for message in messages:
            start = plain(message).split(" film")[0].strip()
            self.assertGreater(len(start), 10)
            self.assertIn(start, texts)


class Library(unittest.TestCase):
    def setUp(self):
        self.header = read(SOURCE, "include", "vyx", "video.h")
        self.page = plain(source("vyxvideo.3"))

    def test_every_field_of_the_records(self):
        records = re.findall(r"typedef struct (\w+) \{(.*?)\} \1;", self.header, re.S)
        self.assertEqual(len(records), 5)
        for record, body in records:
            fields = re.findall(r"(?m)^    \S.*?(\w+)(?:\[\w+\])?;", body)
            table = re.search(rf"{record},\n.*?\.TS\nlb l l\.\n(.*?)\.TE", self.page, re.S).group(1)
            self.assertEqual([line.split("\t")[0] for line in table.splitlines()], fields, record)
            size = re.search(rf"(\d+) bytes\. \*/\ntypedef struct {record} ", self.header).group(1)
            self.assertIn(f"{record},\n{size} bytes:", self.page)
            self.assertIn(f"size\tin\t{size}\n", table)

    def test_every_message(self):
        messages = re.findall(r'(?m)^     "([^"]*)"', self.header)
        self.assertEqual(len(messages), 39)
        for message in messages:
            self.assertIn(message.replace(r"\n", ""), self.page)


if __name__ == "__main__":
    unittest.main()
