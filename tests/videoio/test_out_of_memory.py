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
# The rows of the last one need a buffer in between.
FILMS = ["h264.mp4", "mjpeg.avi", "aspect_anamorphic.mkv"]

OF_LIBRARY, OF_PROCESS, LOCKS = range(3)
NO_MEMORY = "Cannot allocate memory"
TEXTS = {
    f"open_video: av_find_stream_info failed: {NO_MEMORY}",
    "open_video: Couldn't allocate a video frame - out of memory?",
    "read_frame: sws_getContext failed",
    "read_frame: Out of memory!",
    "save_video: Could not initialize encoder structures. Possibly out-of-memory!",
    f"save_video: could not open codec: {NO_MEMORY}!",
    f"save_video: could not open file for writing: {NO_MEMORY}!",
    f"save_video: could not write header: {NO_MEMORY}!",
    "write_frame: sws_getContext failed",
    "write_frame: Out of memory!",
    f"write_frame: avcodec_encode_video failed: {NO_MEMORY}",
    f"write_frame: av_interleaved_write_frame failed: {NO_MEMORY}",
}
# What C++ objects need; sanitizers have an allocator of their own.
TEXTS_OF_OBJECTS = {f"{call}: Out of memory!" for call in ("open_video", "save_video")}
TEXTS_OF_LOCKS = {f"{call}: Unexpected error: Invalid argument!"
                  for call in ("open_video", "save_video", "read_frame", "seek_frame", "write_frame")}  # fmt: skip


class OutOfMemory(unittest.TestCase):
    def check(self, every, whose, films):
        """Returns the number of frames that there were all the same, and what the calls said."""
        with tempfile.TemporaryDirectory() as folder:
            paths = [os.path.join(MEDIA, film) for film in films]
            env = dict(os.environ, LD_PRELOAD=ALLOCATOR)
            result = subprocess.run([PROGRAM, folder, str(every), str(whose), *paths], env=env,
                                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=120,
                                    check=False)  # fmt: skip
            with self.subTest(every=every, whose=whose):
                self.assertEqual(result.returncode, 0, result.stdout[-3000:])
            lines = result.stdout.splitlines()
            return int(re.search(r"(\d+) frames, afterwards", result.stdout).group(1)), set(lines)

    def test_the_interfaces_own(self):
        runs = [self.check(every, OF_LIBRARY, FILMS) for every in (*range(1, 31), 37, 53, 71, 97, 151)]
        # Uncompressed films do without FFmpeg, whose objects alone fail under sanitizers.
        self.assertEqual(runs[0][0], 8 if SANITIZED else 0, "every single one fails")
        self.assertGreater(runs[-1][0], 30, "most do not")
        said = set().union(*(lines for _, lines in runs))
        self.assertEqual((TEXTS if SANITIZED else TEXTS | TEXTS_OF_OBJECTS) - said, set())

    def test_locks_that_fail(self):
        runs = [self.check(every, LOCKS, FILMS) for every in range(1, 6)]
        self.assertEqual(runs[0][0], 0, "every single one fails")
        said = set().union(*(lines for _, lines in runs))
        self.assertEqual(TEXTS_OF_LOCKS - said, set())

    @unittest.skipIf(SANITIZED, "sanitizers have an allocator of their own")
    def test_of_the_whole_process(self):
        for every in range(1, 13):
            self.check(every, OF_PROCESS, [])


if __name__ == "__main__":
    unittest.main()
