#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Frames of a capture device, which a library loaded before the program makes up."""

import os
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["SELF_TEST"]
FAKE_CAMERA = os.environ["FAKE_CAMERA"]


class Camera(unittest.TestCase):
    def copy(self, name):
        """The times and the last message of a copy of ten pictures; size and number of its frames."""
        with tempfile.TemporaryDirectory() as folder:
            copy = os.path.join(folder, "copy.avi")
            preload = " ".join(filter(None, (os.environ.get("LD_PRELOAD"), FAKE_CAMERA)))
            env = dict(os.environ, LD_PRELOAD=preload, FAKE_CAMERA_PICTURES="40")
            said = subprocess.run([PROGRAM, name, copy], env=env, stdout=subprocess.PIPE, text=True, timeout=60,
                                  check=False).stdout  # fmt: skip
            if not os.path.exists(copy):
                return said, None
            size = subprocess.run(
                ["ffprobe", "-v", "error", "-show_entries", "stream=width,height", "-of", "csv=p=0", copy],
                stdout=subprocess.PIPE, text=True, check=True).stdout.strip()  # fmt: skip
            return said, size

    def check_camera(self, name, expected_size):
        said, size = self.copy(name)
        self.assertEqual(size, expected_size, said)
        # The clock of the device starts anywhere: how far frames are apart counts.
        lines = said.splitlines()[15:]
        times = [float(line) for line in lines[:-1] if line.replace(".", "").isdigit()]
        self.assertGreater(len(times), 10)
        for before, after in zip(times, times[1:]):
            self.assertAlmostEqual(after - before, 0.04, delta=0.003)

    def test_quoted_device_with_an_option(self):
        self.check_camera('cam:"/dev/video0",video_size=640x480', "640,480")

    def test_plain_device_with_options(self):
        self.check_camera("cam:/dev/video0,video_size=320x240,ignored,framerate=25", "320,240")

    def test_options_that_the_device_does_not_know(self):
        said, size = self.copy("cam:/dev/video0,video_size=nonsense")
        self.assertIsNone(size)
        self.assertIn("avformat_open_input (/dev/video0) failed: Invalid argument\n", said)


if __name__ == "__main__":
    unittest.main()
