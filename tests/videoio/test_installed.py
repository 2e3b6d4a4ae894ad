#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The library as other programs see it: installed into a prefix of its own, with its examples."""

import os
import re
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

BUILD = os.environ["VYX_BUILD"]
MEDIA = os.environ["VYX_TEST_MEDIA"]
SANITIZE = os.environ.get("VYX_SANITIZE", "").split()  # flags of the compiler
PYTHON_PRELOAD = os.environ.get("VYX_PYTHON_PRELOAD", "")  # what an interpreter needs with these

with open(os.path.join(os.path.dirname(__file__), "../../CMakeLists.txt"), encoding="utf-8") as lists:
    VERSION = re.search(r"project\(vyx VERSION (\S+)", lists.read()).group(1)

INTERFACE = {
    "open_video", "close_video", "read_frame", "seek_frame", "save_video", "write_frame",
    "list_videoinput_devicenames", "free_list",
}  # fmt: skip

CONSUMER = """
cmake_minimum_required(VERSION 3.25)
project(consumer LANGUAGES C)
find_package(vyxvideo 1.0 REQUIRED)
add_executable(grey_film {source})
target_link_libraries(grey_film PRIVATE vyxvideo::vyxvideo)
"""


def run(*command, **more):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **more)
    if result.returncode != 0:
        raise AssertionError(f"{' '.join(command)}\n{result.stdout}")
    return result.stdout


def probe(path, entries):
    return run("ffprobe", "-v", "error", "-count_frames", "-show_entries", f"stream={entries}", "-of", "csv=p=0",
               path).strip()  # fmt: skip


def read_png(path):
    """Size and bytes of an RGB picture without filters."""
    with open(path, "rb") as file:
        data = file.read()
    width, height = struct.unpack(">II", data[16:24])
    start = data.index(b"IDAT")
    (length,) = struct.unpack(">I", data[start - 4 : start])
    pixels = zlib.decompress(data[start + 4 : start + 4 + length])
    rows = [pixels[y * (1 + 3 * width) + 1 : (y + 1) * (1 + 3 * width)] for y in range(height)]
    return width, height, rows


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        cls.prefix = cls.path("prefix")
        run("cmake", "--install", BUILD, "--component", "video", "--prefix", cls.prefix)
        cls.library = cls.installed("libvyxvideo.so")
        cls.lib = os.path.dirname(cls.library)
        cls.share = os.path.join(cls.prefix, "share", "vyxvideo")

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def path(cls, name):
        return os.path.join(cls.folder.name, name)

    @classmethod
    def installed(cls, name):
        for folder, _, files in os.walk(cls.prefix):
            if name in files:
                return os.path.join(folder, name)
        raise AssertionError(f"{name} is not installed")

    def test_nothing_but_the_interface_leaves_the_library(self):
        lines = run("nm", "-D", "--defined-only", self.library).splitlines()
        self.assertEqual({line.split()[-1].split("@")[0] for line in lines}, INTERFACE)

    def test_names_of_the_library(self):
        self.assertIn("SONAME", run("readelf", "-d", self.library))
        self.assertIn("[libvyxvideo.so.1]", run("readelf", "-d", self.library))
        self.assertTrue(os.path.islink(self.library))
        self.assertTrue(os.path.exists(os.path.join(self.lib, "libvyxvideo.so.1")))

    def test_needs_no_display(self):
        needed = run("readelf", "-d", self.library)
        for name in ("libSDL", "libGL", "libX11", "libGLEW", "libEGL"):
            self.assertNotIn(name, needed)

    def check_grey(self, program, film, output):
        self.assertEqual(run(program, os.path.join(MEDIA, film), output), "100 frames\n")
        self.assertEqual(probe(output, "width,height,r_frame_rate,nb_read_frames"), "320,180,25/1,100")
        # What was coloured is grey: the two planes of colour are even.
        pixels = subprocess.run(
            ["ffmpeg", "-nostdin", "-v", "error", "-i", output, "-frames:v", "10", "-vf", "extractplanes=u",
             "-f", "rawvideo", "-"], stdout=subprocess.PIPE, check=True).stdout  # fmt: skip
        self.assertGreater(len(pixels), 0)
        self.assertLessEqual(max(abs(value - 128) for value in pixels), 2)

    def test_c_example_with_pkg_config(self):
        env = dict(os.environ, PKG_CONFIG_PATH=os.path.join(self.lib, "pkgconfig"))
        self.assertEqual(run("pkg-config", "--modversion", "vyxvideo", env=env), VERSION + "\n")
        program = self.build_grey()
        self.check_grey(program, "h264_nob.mp4", self.path("grey.mkv"))
        self.check_grey(program, "hevc_open_gop.mkv", self.path("deep.mp4"))

    def test_c_example_with_cmake(self):
        project = self.path("consumer")
        os.makedirs(project)
        with open(os.path.join(project, "CMakeLists.txt"), "w", encoding="ascii") as file:
            file.write(CONSUMER.format(source=os.path.join(self.share, "grey_film.c")))
        run("cmake", "-S", project, "-B", f"{project}/build", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={self.prefix}",
            f"-DCMAKE_C_FLAGS={' '.join(SANITIZE)}")  # fmt: skip
        run("cmake", "--build", f"{project}/build")
        self.check_grey(f"{project}/build/grey_film", "mpeg4_nob.avi", self.path("grey.avi"))

    def damaged_film(self):
        """A film with bytes overwritten in its packets, every so often."""
        with open(os.path.join(MEDIA, "h264_nob.mp4"), "rb") as file:
            data = bytearray(file.read())
        for i in range(20000, len(data) - 20000, 9000):
            data[i : i + 200] = b"\xff" * 200
        with open(self.path("damaged.mp4"), "wb") as file:
            file.write(data)
        return self.path("damaged.mp4")

    def build_grey(self):
        env = dict(os.environ, PKG_CONFIG_PATH=os.path.join(self.lib, "pkgconfig"))
        flags = run("pkg-config", "--cflags", "--libs", "vyxvideo", env=env).split()
        program = self.path("grey_film")
        run("cc", "-std=c99", "-pedantic", "-Wall", "-Wextra", "-Werror", *SANITIZE,
            os.path.join(self.share, "grey_film.c"), *flags, f"-Wl,-rpath,{self.lib}", "-o", program)  # fmt: skip
        return program

    def test_c_example_with_a_damaged_film(self):
        output = self.path("damaged.mkv")
        result = subprocess.run([self.build_grey(), self.damaged_film(), output], capture_output=True, text=True,
                                check=False)  # fmt: skip
        self.assertEqual(result.returncode, 1)
        frames = int(result.stdout.split()[0])
        self.assertGreater(frames, 50)
        self.assertEqual(result.stdout, f"{frames} frames\n")
        self.assertEqual(probe(output, "nb_read_frames"), str(frames), "what is good is written")
        self.assertRegex(result.stderr, r"damaged\.mp4 is damaged: [1-9]\d* parts could not be read\n$")

    def test_c_example_with_long_names(self):
        program = self.build_grey()
        for names in (["n" * 512, self.path("out.mkv")], [os.path.join(MEDIA, "h264_nob.mp4"), "n" * 508 + ".mkv"]):
            result = subprocess.run([program, *names], capture_output=True, text=True, check=False)
            self.assertEqual(result.returncode, 1)
            self.assertTrue(result.stderr.endswith("nn: the name is too long\n") or
                            result.stderr.endswith("nn.mkv: the name is too long\n"), result.stderr)  # fmt: skip

    def contact_sheet(self, film, *more):
        sheet = self.path("sheet.png")
        env = dict(os.environ, LD_PRELOAD=PYTHON_PRELOAD)
        env["ASAN_OPTIONS"] = env.get("ASAN_OPTIONS", "") + ":detect_leaks=0"  # the interpreter's own
        said = run(sys.executable, os.path.join(self.share, "contact_sheet.py"), film, sheet, *more, env=env)
        return said, read_png(sheet)

    def test_python_example(self):
        said, (width, height, rows) = self.contact_sheet(os.path.join(MEDIA, "h264_nob.mp4"))
        self.assertEqual(said, "16 pictures of 320 x 180\n")
        self.assertEqual((width, height), (4 * 160 + 5 * 4, 4 * 90 + 5 * 4))
        # Picture i of 16 is the first one at i / 16 of 4 seconds.
        self.assertEqual(self.numbers(rows), [-(-i * 100 // 16) for i in range(16)])

    @staticmethod
    def numbers(rows):
        """Of the pictures of a sheet; each has its own in its top rows."""
        found = []
        for i in range(16):
            x, y = 4 + i % 4 * 164, 4 + i // 4 * 94
            bits = [rows[y + 4][3 * (x + 20 * bit + 10)] > 128 for bit in range(8)]
            found.append(sum(2**bit for bit in range(8) if bits[bit]))
        return found

    def test_python_example_that_jumps(self):
        said, (_, _, rows) = self.contact_sheet(os.path.join(MEDIA, "h264_nob.mp4"), "0.2")
        self.assertEqual(said, "16 pictures of 320 x 180\n")
        # Key frames are 25 apart. The first jump, for 0.25 s, lands at 1 s, and the places up to there get what follows.
        # The jump for 3.5 s finds none, goes back to 3 s and reads on to the place, as for all after it.
        self.assertEqual(self.numbers(rows), [0, 25, 26, 27, 28, 32, 50, 51, 52, 57, 75, 76, 77, 82, 88, 94])

    def test_python_example_with_a_damaged_film(self):
        with self.assertRaisesRegex(AssertionError, r"16 pictures[^$]*damaged\.mp4 is damaged: [1-9]\d* parts"):
            self.contact_sheet(self.damaged_film())
        self.assertTrue(os.path.exists(self.path("sheet.png")))

    def test_python_example_with_a_long_name(self):
        with self.assertRaisesRegex(AssertionError, "n: the name is too long"):
            self.contact_sheet("n" * 512)

    def test_python_example_with_deep_colours(self):
        said, (_, _, rows) = self.contact_sheet(os.path.join(MEDIA, "ten_bit.mkv"))
        self.assertEqual(said, "16 pictures of 320 x 180\n")
        self.assertGreater(max(max(row) for row in rows), 200)

    def test_python_example_without_a_film(self):
        with self.assertRaisesRegex(AssertionError, "avformat_open_input .* failed: No such file or directory"):
            self.contact_sheet("/nowhere/film.mp4")

    def test_self_test_program(self):
        program = os.path.join(self.prefix, "bin", "vyx-video-selftest")
        said = run(program, os.path.join(MEDIA, "h264_nob.mp4"), self.path("copy.avi"))
        self.assertTrue(said.startswith("videoFileName offset:       4\n"))
        self.assertEqual(probe(self.path("copy.avi"), "nb_read_frames"), "100")


if __name__ == "__main__":
    unittest.main()
