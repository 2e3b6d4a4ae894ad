#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Every n-th allocation fails: calls end with a message or with their result, never with the process."""

import os
import re
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["OUT_OF_MEMORY"]
ALLOCATOR = os.environ["FAILING_ALLOCATOR"]
SANITIZED = bool(os.environ.get("VYX_SANITIZE"))
MEDIA = os.environ["VYX_TEST_MEDIA"]


class OutOfMemory(unittest.TestCase):
    def check(self, every, whose, films):
        with tempfile.TemporaryDirectory() as folder:
            paths = [os.path.join(MEDIA, film) for film in films]
            env = dict(os.environ, LD_PRELOAD=ALLOCATOR)
            result = subprocess.run([PROGRAM, folder, str(every), str(whose), *paths], env=env,
                                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=120,
                                    check=False)  # fmt: skip
            with self.subTest(every=every, whose=whose):
                self.assertEqual(result.returncode, 0, result.stdout[-3000:])
            return int(re.search(r"(\d+) frames, afterwards", result.stdout).group(1))

    def test_the_interfaces_own(self):
        frames = [self.check(every, 0, ["h264.mp4", "mjpeg.avi"]) for every in (*range(1, 31), 37, 53, 71, 97, 151)]
        # Uncompressed films do without FFmpeg, whose objects alone fail under sanitizers.
        self.assertEqual(frames[0], 8 if SANITIZED else 0, "every single one fails")
        self.assertGreater(frames[-1], 30, "most do not")

    @unittest.skipIf(SANITIZED, "sanitizers have an allocator of their own")
    def test_of_the_whole_process(self):
        for every in range(1, 13):
            self.check(every, 1, [])


if __name__ == "__main__":
    unittest.main()
