#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The library as other programs see it: installed into a prefix of its own, with its examples."""

import os
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
        self.assertEqual(run("pkg-config", "--modversion", "vyxvideo", env=env), "1.01\n")
        flags = run("pkg-config", "--cflags", "--libs", "vyxvideo", env=env).split()
        program = self.path("grey_film")
        run("cc", "-std=c99", "-pedantic", "-Wall", "-Wextra", "-Werror", *SANITIZE,
            os.path.join(self.share, "grey_film.c"), *flags, f"-Wl,-rpath,{self.lib}", "-o", program)  # fmt: skip
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

    def contact_sheet(self, film):
        sheet = self.path("sheet.png")
        env = dict(os.environ, LD_PRELOAD=PYTHON_PRELOAD)
        env["ASAN_OPTIONS"] = env.get("ASAN_OPTIONS", "") + ":detect_leaks=0"  # the interpreter's own
        said = run(sys.executable, os.path.join(self.share, "contact_sheet.py"), film, sheet, env=env)
        return said, read_png(sheet)

    def test_python_example(self):
        said, (width, height, rows) = self.contact_sheet(os.path.join(MEDIA, "h264_nob.mp4"))
        self.assertEqual(said, "16 pictures of 320 x 180\n")
        self.assertEqual((width, height), (4 * 160 + 5 * 4, 4 * 90 + 5 * 4))
        # Picture i of 16 is the first one at i / 16 of 4 seconds; its number stands in its top rows.
        for i in range(16):
            x, y = 4 + i % 4 * 164, 4 + i // 4 * 94
            bits = [rows[y + 4][3 * (x + 20 * bit + 10)] > 128 for bit in range(8)]
            number = sum(2**bit for bit in range(8) if bits[bit])
            self.assertEqual(number, -(-i * 100 // 16), f"picture {i}")

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
