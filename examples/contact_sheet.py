#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""contact_sheet.py FILM SHEET.png [SECONDS]: sixteen pictures of a film, from its start to its end, on one sheet.

Each picture is the first one at its place or after it. To a place more than SECONDS (10) ahead the program jumps: to
the first key frame there, or, when none follows, to the last one before, from which it reads on. Parts of the film
that are damaged are passed over and told, and the program then ends with 1.

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
# Closer together than this, reading on is quicker than jumping to a key frame.
WORTH_A_JUMP = 10.0  # seconds
MOST_FAILURES = 1000  # in a row: nothing will come any more
END = b"read_and_decode failed: End of file\n"
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

    def __init__(self, library, name, worth_a_jump):
        self.library = library
        self.worth_a_jump = worth_a_jump
        self.damaged = 0  # how often reading failed before the end
        if len(os.fsencode(name)) >= ctypes.sizeof(Text):
            raise OSError(f"{name}: the name is too long")
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
        """Reads the next frame, past what is damaged; False at the end."""
        failed_in_a_row = 0
        while self.library.read_frame(ctypes.byref(self.args)) != 0:
            if self.args.errorMsg == END:
                return False
            self.damaged += 1
            failed_in_a_row += 1
            if failed_in_a_row == MOST_FAILURES:
                print(self.args.errorMsg.decode(errors="replace").strip(), file=sys.stderr)
                return False
        return True

    def read_at(self, seconds):
        """Reads the first frame at a time or after it; False when there is none.

        After a jump that is the first key frame there. Where none follows, the jump goes back to the last one, and
        the frame is found from there. A film that cannot jump is read through.
        """
        if seconds - self.args.frame_time > self.worth_a_jump:
            args = SeekFrameArgs(size=ctypes.sizeof(SeekFrameArgs), handle=self.info.handle, seek_time=seconds)
            self.library.seek_frame(ctypes.byref(args))
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
    if len(sys.argv) not in (3, 4):
        sys.exit("usage: contact_sheet.py FILM SHEET.png [SECONDS]")
    try:
        worth_a_jump = float(sys.argv[3]) if len(sys.argv) == 4 else WORTH_A_JUMP
        film = Film(load_library(), sys.argv[1], worth_a_jump)
    except (OSError, ValueError) as error:
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
    if film.damaged:
        sys.exit(f"{sys.argv[1]} is damaged: {film.damaged} parts could not be read")


if __name__ == "__main__":
    main()
