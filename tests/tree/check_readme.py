#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_readme.py BUILD MEDIA: what README.md says can be done, can be done.

Every ```sh block runs as it stands, in a folder of its own with films under the names that the page
uses. Stand-ins take the place of what would take minutes or change the build under test:

    ./play              the script itself, without a display: it plays for five seconds
    ./check             the script itself in a copy of its own, with a cmake and a ctest that only
                        note what they are asked for; the presets it asks for have to exist
    vyx                 the program itself on a display of its own, ended after five seconds
    cmake --preset      reads the preset and the cache, and configures nothing
    cmake --build       lists what it would build
    ctest               lists the tests it would run, of which there has to be one
    bench/playback      one round of two seconds
    bench/...           any other script is compiled, not run

Besides, every link and every file named leads somewhere, and options and presets are those there are.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
FILMS = {"holiday.mkv": "h264.mkv", "tape.avi": "mpeg4_nob.avi"}
NAMED = re.compile(r"`((?:src|include|tools|bench|docs|tests|examples|cmake)/[\w./-]+)`")

STAND_INS = {
    "play": 'exec env -u DISPLAY -u WAYLAND_DISPLAY "{top}/play" "$@"',
    "check": 'PATH="{noting}:$PATH" exec "{copy}/check" "$@"',
    "bin/vyx": 'exec "{top}/tools/with-display" "{top}/tools/play-and-look" seen.png'
               ' "{build}/bin/vyx" "$@"',
    "bin/cmake": 'case "$1" in\n'
                 '--preset) cd "{top}"; exec "{cmake}" -N "$@" ;;\n'
                 '--build) cd "{top}"; exec "{cmake}" "$@" -- -n ;;\n'
                 'esac\nexec "{cmake}" "$@"',
    "bin/ctest": '"{ctest}" -N "$@" >listed\n! grep -q "Total Tests: 0" listed',
    "noting/cmake": 'case "$1$2" in --preset*) echo "$2" >>"{noted}" ;; esac',
    "noting/ctest": 'echo ctest >>"{noted}"',
}
SHORT = {"bench/playback": "bench/playback 1 2\n"}


def blocks(page):
    """The commands of the page, block by block."""
    return re.findall(r"^```sh\n(.*?)^```$", page, re.M | re.S)


def visible_presets():
    presets = json.loads((TOP / "CMakePresets.json").read_text(encoding="utf-8"))
    return {one["name"] for one in presets["configurePresets"] if not one.get("hidden")}


def program_options():
    source = (TOP / "src/player/command_line.cpp").read_text(encoding="utf-8")
    return set(re.findall(r'\{"(\w+)", (?:no|required)_argument', source))


class Workplace:
    """A folder that looks like the top of the tree, with the stand-ins."""

    def __init__(self, folder, build, media):
        self.folder = Path(folder)
        self.noted = self.folder / "noted"
        copy = self.folder / "copy"
        shutil.copytree(TOP / "tools", copy / "tools")
        shutil.copy(TOP / "check", copy)
        places = {"top": TOP, "build": build, "copy": copy, "noted": self.noted,
                  "noting": self.folder / "noting",
                  "cmake": shutil.which("cmake"), "ctest": shutil.which("ctest")}
        for name, body in STAND_INS.items():
            self.script(name, body.format(**places))
        self.mirror(TOP, self.folder, {"build"})
        (self.folder / "build/release").mkdir(parents=True)
        # A ctest within a ctest would write over its log.
        self.mirror(Path(build), self.folder / "build/release", {"Testing"})
        (self.folder / "build/media").symlink_to(media)
        for name, clip in FILMS.items():
            shutil.copy(Path(media) / clip, self.folder / name)
        self.env = dict(os.environ, HOME=str(self.folder / "home"),
                        PATH=f"{self.folder}/bin:{build}/bin:{os.environ['PATH']}",
                        SDL_AUDIODRIVER="dummy")

    @staticmethod
    def mirror(source, folder, but):
        for entry in source.iterdir():
            if entry.name not in but and not (folder / entry.name).exists():
                (folder / entry.name).symlink_to(entry)

    def script(self, name, body):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(f"#!/bin/sh\nset -eu\n{body}\n", encoding="utf-8")
        path.chmod(0o755)

    def run(self, commands):
        """Runs a block. Returns what did not work, nothing where all of it did."""
        for script in re.findall(r"^bench/\w+", commands, re.M):
            compile((TOP / script).read_text(encoding="utf-8"), script, "exec")
            if not os.access(TOP / script, os.X_OK):
                return f"{script} cannot be run"
        commands = re.sub(r"^(bench/\w+).*\n", lambda line: SHORT.get(line[1], ""), commands, flags=re.M)
        done = subprocess.run(["sh", "-eu", "-c", commands], cwd=self.folder, env=self.env, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=300, check=False)
        return f"{commands}ended with {done.returncode}:\n{done.stdout}" if done.returncode else ""

    def check_notes(self):
        """What ./check asked for: presets that there are, and tests of each."""
        notes = self.noted.read_text(encoding="utf-8").split()
        presets = [note for note in notes if note != "ctest"]
        unknown = set(presets) - visible_presets()
        if not presets or unknown or notes.count("ctest") != len(presets):
            yield f"./check asks for {notes}"


def wrong_commands(page, build, media):
    with tempfile.TemporaryDirectory() as folder:
        workplace = Workplace(folder, build, media)
        for commands in blocks(page):
            complaint = workplace.run(commands)
            if complaint:
                yield complaint
        yield from workplace.check_notes()
        # Without this, stand-ins that accept everything would not be noticed.
        for nonsense in ("cmake --preset nonsense\n", "cmake --build --preset nonsense\n",
                         "ctest --test-dir build/release -R '^nonsense$'\n", "vyx nonsense.mkv\n",
                         "./play nonsense.mkv\n"):
            if not workplace.run(nonsense):
                yield f"nobody objects to: {nonsense}"


def dead_links(page):
    for target in re.findall(r"\]\(([^)#]+)", page):
        if "://" not in target and not (TOP / target).exists():
            yield f"a link to {target}"
    for name in NAMED.findall(page):
        if not (TOP / name).exists():
            yield f"a file {name}"


def wrong_names(page):
    options = set(re.findall(r"^\| `--(\w+)", page, re.M))
    if options != program_options():
        yield f"options that differ: {options ^ program_options()}"
    table = page[page.index("| preset |"):page.index("## Testing")]
    presets = set(re.findall(r"`([\w-]+)`", "\n".join(
        line.split("|")[1] for line in table.splitlines() if line.startswith("|"))))
    if presets != visible_presets():
        yield f"presets that differ: {presets ^ visible_presets()}"


def main():
    build, media = sys.argv[1:]
    page = (TOP / "README.md").read_text(encoding="utf-8")
    if len(blocks(page)) < 5:
        sys.exit("README.md has hardly any commands")
    found = [*dead_links(page), *wrong_names(page), *wrong_commands(page, build, media)]
    print("\n".join(found))
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
