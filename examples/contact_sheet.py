#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""contact_sheet.py FILM SHEET.png: sixteen pictures of a film, from its start to its end, on one sheet.

Uses libvyxvideo through ctypes and nothing but the standard library. The library is the one that
VYX_VIDEO_LIBRARY names, else the one that was installed together with this file, else the one that the
system finds.
"""

import ctypes
import glob
import os
import struct
import sys
import zlib

COLUMNS = ROWS = 4
THUMB_WIDTH = 240  # pixels, at most
GAP = 4
# Closer together than this, reading on is quicker than jumping to the next key frame.
WORTH_A_JUMP = 10.0  # seconds
Text = ctypes.c_char * 512


class OpenVideoArgs(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32), ("videoFileName", Text), ("errorMsg", Text),
        ("handle", ctypes.c_void_p), ("cam_input", ctypes.c_int32), ("frame_width", ctypes.c_int32),
        ("frame_height", ctypes.c_int32), ("frame_bytes", ctypes.c_int32), ("bit_rate", ctypes.c_int64),
        ("duration_sec", ctypes.c_double), ("frame_rate", ctypes.c_double),
        ("video_bit_rate", ctypes.c_int64), ("pixel_aspect_ratio", ctypes.c_double), ("codec_name", Text),
        ("frame_count", ctypes.c_int32), ("bits_per_color", ctypes.c_int32),
    ]  # fmt: skip


class ReadFrameArgs(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32), ("handle", ctypes.c_void_p), ("key_frame_only", ctypes.c_int32),
        ("frame_height", ctypes.c_int32), ("frame_width", ctypes.c_int32),
        ("bytes_per_pixel", ctypes.c_int32), ("data", ctypes.c_void_p), ("frame_time", ctypes.c_double),
        ("errorMsg", Text),
    ]  # fmt: skip


class SeekFrameArgs(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32), ("handle", ctypes.c_void_p), ("seek_time", ctypes.c_double),
        ("errorMsg", Text),
    ]  # fmt: skip


def load_library():
    prefix = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
    names = [os.environ.get("VYX_VIDEO_LIBRARY")]
    for folder in ("lib", "lib64", "lib/*"):
        names += glob.glob(os.path.join(prefix, folder, "libvyxvideo.so.1"))
    name = next(filter(None, names), "libvyxvideo.so.1")
    library = ctypes.CDLL(name)
    library.close_video.argtypes = [ctypes.c_void_p]
    return library


class Film:
    """The frames of a film, one after the other."""

    def __init__(self, library, name):
        self.library = library
        self.info = OpenVideoArgs(size=ctypes.sizeof(OpenVideoArgs), videoFileName=os.fsencode(name))
        if library.open_video(ctypes.byref(self.info)) != 0:
            raise OSError(self.info.errorMsg.decode(errors="replace").strip())
        self.frame = (ctypes.c_ubyte * self.info.frame_bytes)()
        self.args = ReadFrameArgs(
            size=ctypes.sizeof(ReadFrameArgs), handle=self.info.handle, bytes_per_pixel=3,
            frame_width=self.info.frame_width, frame_height=self.info.frame_height,
            data=ctypes.addressof(self.frame),
        )  # fmt: skip

    def read(self):
        """Reads the next frame; False at the end."""
        return self.library.read_frame(ctypes.byref(self.args)) == 0

    def read_at(self, seconds):
        """Reads the first frame at a time or after it; False when there is none."""
        if seconds - self.args.frame_time > WORTH_A_JUMP:
            args = SeekFrameArgs(size=ctypes.sizeof(SeekFrameArgs), handle=self.info.handle, seek_time=seconds)
            self.library.seek_frame(ctypes.byref(args))  # a film that cannot seek is read through
        while self.read():
            if self.args.frame_time >= seconds - 1e-6:
                return True
        return False

    def close(self):
        self.library.close_video(self.info.handle)


def thumbnail(film):
    """Rows of a small picture of the frame: every so many pixels of every so many rows."""
    info = film.info
    step = -(-info.frame_width // THUMB_WIDTH)
    color = info.bits_per_color // 8  # bytes per colour, the highest one last
    pixel = 3 * color
    data = bytes(film.frame)
    rows = []
    for y in range(0, info.frame_height, step):
        row = data[y * info.frame_width * pixel : (y + 1) * info.frame_width * pixel]
        small = bytearray(3 * -(-info.frame_width // step))
        for c in range(3):
            small[c::3] = row[c * color + color - 1 :: pixel * step]
        rows.append(bytes(small))
    return rows


def arrange(thumbs):
    """Rows of the whole sheet."""
    width, height = len(thumbs[0][0]), len(thumbs[0])
    thumbs = thumbs + [[bytes(width)] * height] * (COLUMNS * ROWS - len(thumbs))
    line = bytes(COLUMNS * width + (COLUMNS + 1) * GAP * 3)
    gap = bytes(GAP * 3)
    sheet = [line] * GAP
    for r in range(ROWS):
        beside = thumbs[r * COLUMNS : (r + 1) * COLUMNS]
        for y in range(height):
            sheet.append(gap + b"".join(thumb[y] + gap for thumb in beside))
        sheet += [line] * GAP
    return sheet


def write_png(path, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", len(rows[0]) // 3, len(rows), 8, 2, 0, 0, 0)
    pixels = zlib.compress(b"".join(b"\0" + row for row in rows))
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b""))


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: contact_sheet.py FILM SHEET.png")
    try:
        film = Film(load_library(), sys.argv[1])
    except OSError as error:
        sys.exit(str(error))
    thumbs = []
    if film.read():
        start = film.args.frame_time
        thumbs.append(thumbnail(film))
        for i in range(1, COLUMNS * ROWS):
            if not film.read_at(start + i * film.info.duration_sec / (COLUMNS * ROWS)):
                break
            thumbs.append(thumbnail(film))
    film.close()
    if not thumbs:
        sys.exit(f"{sys.argv[1]} has no frame that can be read")
    write_png(sys.argv[2], arrange(thumbs))
    print(f"{len(thumbs)} pictures of {film.info.frame_width} x {film.info.frame_height}")


if __name__ == "__main__":
    main()
