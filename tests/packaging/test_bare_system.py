#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The packages on a Debian 12 with nothing else: they install, run, and leave nothing behind.

Needs root (chroot), debootstrap and a mirror of Debian; the bare system is kept in build/bare-debian. Without
them the test is skipped."""

import glob
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

from installed_tree import BUILD, MEDIA, SOURCE, run

os.environ["VYX_BIN"] = "vyx"
sys.path.insert(0, os.path.join(SOURCE, "tests", "e2e"))
import support  # pylint: disable=wrong-import-position

KEPT = os.path.join(SOURCE, "build", "bare-debian")
SKIPPED = 77  # how ctest is told


def make_bare_system():
    """Makes the system that is kept, if it is not there; what is amiss otherwise."""
    if os.path.exists(os.path.join(KEPT, "etc", "debian_version")):
        return ""
    if os.geteuid() != 0:
        return "only root may change into another system"
    if not shutil.which("debootstrap"):
        return "debootstrap is not installed"
    made = KEPT + ".part"
    shutil.rmtree(made, ignore_errors=True)
    result = subprocess.run(["debootstrap", "--variant=minbase", "bookworm", made], check=False, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)  # fmt: skip
    if result.returncode != 0:
        return "debootstrap failed: " + result.stdout[-500:]
    os.rename(made, KEPT)
    return ""


class BareSystem(support.PlayerTestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        temporary = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        cls.addClassCleanup(temporary.cleanup)
        cls.root = os.path.join(temporary.name, "root")
        run("cp", "-a", KEPT, cls.root)
        shutil.copy("/etc/resolv.conf", os.path.join(cls.root, "etc"))
        run("cpack", "--config", os.path.join(BUILD, "CPackConfig.cmake"), "-B", temporary.name)
        for package in glob.glob(os.path.join(temporary.name, "*.deb")):
            shutil.copy(package, os.path.join(cls.root, "tmp"))
        for film in ("h264_nob.mp4", "mpeg4_nob.avi"):
            shutil.copy(os.path.join(MEDIA, film), os.path.join(cls.root, "tmp"))
        # Another system has its own folders, and shares processes and the display's socket.
        support.VYX = os.path.join(temporary.name, "vyx")
        with open(support.VYX, "w", encoding="ascii") as script:
            script.write(f'#!/bin/sh\nexec chroot "{cls.root}" /usr/bin/vyx "$@"\n')
        os.chmod(support.VYX, 0o755)
        cls.chroot("apt-get", "update", "-qq")

    @classmethod
    def chroot(cls, *command, status=0):
        env = {name: value for name, value in os.environ.items() if name.lower().endswith("_proxy")}
        env.update(PATH="/usr/sbin:/usr/bin:/sbin:/bin", DEBIAN_FRONTEND="noninteractive", LC_ALL="C.UTF-8")
        return run("chroot", cls.root, *command, status=status, env=env)

    def apt(self, *command):
        return self.chroot("apt-get", "-y", "-qq", "--no-install-recommends", "-o", "Dpkg::Use-Pty=0", *command)

    def tree(self):
        """All names outside of what the package manager and programs keep for themselves."""
        own = ("/var/lib/dpkg", "/var/lib/apt", "/var/cache", "/var/log", "/tmp", "/root", "/dev", "/proc")
        names = set()
        for folder, folders, files in os.walk(self.root):
            inside = folder[len(self.root) :] or "/"
            folders[:] = [name for name in folders if os.path.join(inside, name) not in own]
            names.update(os.path.join(inside, name) for name in folders + files)
        return names

    def test_installs_runs_and_goes(self):
        packages = [path[len(self.root) :] for path in glob.glob(self.root + "/tmp/*.deb")]
        self.assertEqual(len(packages), 3)
        # What they stand on comes first, so that only their own files are what is looked at.
        simulated = self.apt("install", "--simulate", *packages)
        new = [line.split()[1] for line in simulated.splitlines() if line.startswith("Inst ")]
        own = {"vyx", "libvyxvideo1", "libvyxvideo-dev"}
        self.assertLess(own, set(new))
        self.apt("install", *(name for name in new if name not in own))
        before = self.tree()

        self.apt("install", *packages)
        self.assertIn("libvyxvideo.so.1", self.chroot("ldconfig", "-p"))
        self.assertNotIn("not found", self.chroot("ldd", "/usr/bin/vyx"))
        self.runs()

        self.chroot("dpkg", "--purge", *own)
        self.assertEqual(self.tree() ^ before, set())
        self.assertNotIn("libvyxvideo", self.chroot("ldconfig", "-p"))
        self.assertEqual(self.chroot("dpkg", "--audit"), "")

    def runs(self):
        self.assertIn("usage: vyx-enhance", self.chroot("vyx-enhance", "--help"))
        self.chroot("vyx-enhance", "--spatial", "2", "--frames", "3", "/tmp/h264_nob.mp4", "/tmp/larger.mkv")
        said = run("ffprobe", "-v", "error", "-count_frames", "-show_entries", "stream=width,nb_read_frames", "-of",
                   "csv=p=0", self.root + "/tmp/larger.mkv")  # fmt: skip
        self.assertEqual(said.strip(), "640,3")
        said = self.chroot("vyx-video-selftest", "/tmp/mpeg4_nob.avi", "/tmp/copy.avi")
        self.assertIn("0.040000\n", said)
        player = self.start("/tmp/h264_nob.mp4")
        first = self.number(player)
        self.await_number(player, lambda number: number != first, 10, "another picture")
        self.assertEqual(player.quit(), 0)


if __name__ == "__main__":
    WHY_NOT = make_bare_system()
    if WHY_NOT:
        print("skipped: " + WHY_NOT)
        sys.exit(SKIPPED)
    unittest.main()
