#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Completions, asked for in the shells themselves."""

import os
import pty
import re
import select
import shutil
import subprocess
import tempfile
import time
import unittest

from installed_tree import PACKAGING, InstalledTestCase, enhance_options, player_options, run

FOLDER = os.path.join(PACKAGING, "completions")
PATIENCE = 20  # seconds
VALUES = {
    "--spatial": {"1", "2", "3", "4"},
    "--temporal": {"1", "2", "3", "4", "5"},
    "--algorithm": {"sr", "denoise"},
    "--method": {"blend", "4nb", "8nb"},
}
WANTED = {
    "vyx": {"--" + name for name in player_options()},
    "vyx-enhance": {"--" + name for name in enhance_options()},
}
FILES = ("a film.mkv", "Other.MP4", "song.flac", "notes.txt")


class FolderTestCase(InstalledTestCase):
    """Completes in a folder with some files and a folder."""

    def setUp(self):
        temporary = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        self.addCleanup(temporary.cleanup)
        self.folder = temporary.name
        os.mkdir(os.path.join(self.folder, "inside"))
        for name in FILES:
            with open(os.path.join(self.folder, name), "w", encoding="ascii"):
                pass


class Bash(FolderTestCase):
    def complete(self, *words):
        """What the last word can become."""
        file = self.installed.path("share", "bash-completion", "completions", words[0])
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
                  "$(complete -p \"$1\" | sed 's/.*-F \\([^ ]*\\) .*/\\1/'); printf '%s\\n' \"${COMPREPLY[@]}\"")
        said = run("bash", "--norc", "-c", script, "bash", file, *words, cwd=self.folder)
        return {line for line in said.splitlines() if line}

    def test_options(self):
        for program, options in WANTED.items():
            self.assertEqual(self.complete(program, "--"), options)
        self.assertEqual(self.complete("vyx", "--de"), {"--denoising", "--demo"})
        self.assertEqual(self.complete("vyx-enhance", "film.mp4", "--s"), {"--spatial", "--sharpen"})

    def test_values(self):
        for option, values in VALUES.items():
            self.assertEqual(self.complete("vyx-enhance", option, ""), values)
        self.assertEqual(self.complete("vyx-enhance", "--method", "4"), {"4nb"})
        for name, takes in enhance_options().items():
            if takes and "--" + name not in VALUES:
                self.assertEqual(self.complete("vyx-enhance", "--" + name, ""), set())
        for name, (takes, letter) in player_options().items():
            for option in ["--" + name] + (["-" + letter] if letter else []):
                self.assertEqual(self.complete("vyx", option, "") == set(), takes, option)

    def test_files(self):
        self.assertEqual(self.complete("vyx", ""), {"a film.mkv", "Other.MP4", "song.flac", "inside"})
        self.assertEqual(self.complete("vyx-enhance", ""), {"a film.mkv", "Other.MP4", "inside"})
        self.assertEqual(self.complete("vyx", "a"), {"a film.mkv"})
        self.assertEqual(self.complete("vyx", "--demo", "O"), {"Other.MP4"})

    def test_leaves_the_shell_as_it_was(self):
        file = os.path.join(FOLDER, "vyx.bash")
        said = run("bash", "--norc", "-c", f"before=$(shopt; set -o); source {file}; COMP_WORDS=(vyx ''); COMP_CWORD=1; "
                   '_vyx 2>/dev/null; [ "$before" = "$(shopt; set -o)" ] && echo same', cwd=self.folder)  # fmt: skip
        self.assertEqual(said, "same\n")


@unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
class Zsh(FolderTestCase):
    """zsh completes on a terminal only: one is made for it, and the keys are typed."""

    def setUp(self):
        super().setUp()
        self.terminal, inside = pty.openpty()
        self.addCleanup(os.close, self.terminal)
        env = {"PATH": os.environ["PATH"], "TERM": "dumb", "HOME": self.folder, "LC_ALL": "C.UTF-8", "LINES": "100",
               "COLUMNS": "200"}  # fmt: skip
        # pylint: disable-next=consider-using-with
        self.shell = subprocess.Popen(["zsh", "-f", "-i"], stdin=inside, stdout=inside, stderr=inside, env=env,
                                      cwd=self.folder, start_new_session=True)  # fmt: skip
        self.addCleanup(self.shell.wait)
        self.addCleanup(self.shell.kill)
        os.close(inside)
        (functions,) = {os.path.dirname(self.installed.find(name)) for name in ("_vyx", "_vyx-enhance")}
        # Every match on a line of its own, and no questions.
        self.type(f"PS1='%{{%}}>>'; fpath=({functions} $fpath); autoload -U compinit; compinit -u -D\n"
                  "zstyle ':completion:*' verbose no; zstyle ':completion:*:descriptions' format ''; LISTMAX=9999\n"
                  "stty rows 100 cols 200; setopt NO_AUTO_MENU NO_LIST_PACKED; echo rea''dy\n")  # fmt: skip
        self.read_until("ready\r\n")

    def type(self, text):
        os.write(self.terminal, text.encode())

    def read_until(self, *wanted):
        """What the shell writes until all these texts were among it."""
        said = ""
        deadline = time.monotonic() + PATIENCE
        while any(text not in said for text in wanted):
            ready, _, _ = select.select([self.terminal], [], [], max(0, deadline - time.monotonic()))
            if not ready:
                raise AssertionError(f"not all of {wanted} in {said!r}")
            said += os.read(self.terminal, 65536).decode(errors="replace")
        return said

    def complete(self, line, wanted):
        """What the shell shows for a line and its completion, which must have all of `wanted` among it."""
        self.type(line + "\t")
        # Nothing must be typed before the list is there: it would be left out.
        said = self.read_until(*wanted)
        # ^U empties the line; what the command writes follows the rest of the list.
        self.type("\x15echo do''ne\n")
        return said + self.read_until("done\r\n").split("echo do")[0]

    def test_options(self):
        for program, options in WANTED.items():
            shown = set(re.findall(r"--[a-z_]+", self.complete(program + " --", options)))
            self.assertEqual(shown, options, program)

    def test_values(self):
        for option, values in VALUES.items():
            said = self.complete(f"vyx-enhance {option} ", values).replace(option, "")
            self.assertEqual(set(re.findall(r"\b(?:\d(?:nb)?|sr|denoise|blend)\b", said)), values, option)

    def test_files(self):
        said = self.complete("vyx ", ("film.mkv", "Other.MP4", "song.flac", "inside"))
        self.assertNotIn("notes.txt", said)
        self.complete("vyx-enhance O", ("Other.MP4",))


@unittest.skipUnless(shutil.which("fish"), "fish is not installed")
class Fish(FolderTestCase):
    def complete(self, line):
        program = line.split()[0]
        file = self.installed.path("share", "fish", "vendor_completions.d", program + ".fish")
        env = dict(os.environ, HOME=self.folder, XDG_CONFIG_HOME=self.folder, XDG_DATA_HOME=self.folder)
        said = run("fish", "--no-config", "-c", f"source {file}; complete -C '{line}'", cwd=self.folder, env=env)
        return {entry.split("\t")[0] for entry in said.splitlines()}

    def test_options(self):
        for program, options in WANTED.items():
            self.assertEqual(self.complete(program + " --"), options)

    def test_values(self):
        for option, values in VALUES.items():
            self.assertEqual(self.complete(f"vyx-enhance {option} "), values)

    def test_short_options(self):
        letters = {"-" + letter for _, letter in player_options().values() if letter}
        shown = self.complete("vyx -")
        self.assertEqual({option for option in shown if len(option) == 2}, letters)


if __name__ == "__main__":
    unittest.main()
