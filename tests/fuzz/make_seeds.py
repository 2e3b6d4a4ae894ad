#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the seeds of the fuzz targets anew, in seeds/ beside this script. What was found later stays.

The clips come out of ffmpeg's generators and are as small as their containers allow; the rest is
written here, in the order in which the targets take their input apart."""

import os
import struct
import subprocess

SEEDS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "seeds")
FONT = os.path.join(SEEDS, "../../../src/gui/default_font.glf")

PICTURES = ["-f", "lavfi", "-i", "testsrc=size=32x32:rate=5:duration=0.8"]
SOUND = ["-f", "lavfi", "-i", "sine=frequency=440:duration=0.2:sample_rate=8000"]
BOTH = PICTURES + SOUND
CLIPS = {
    "mpeg4.avi": [*PICTURES, "-c:v", "mpeg4", "-q:v", "20"],
    "h264_aac.mp4": [*BOTH, "-c:v", "libx264", "-crf", "45", "-bf", "1", "-c:a", "aac", "-b:a", "8k"],
    "mpeg2.ts": [*PICTURES, "-c:v", "mpeg2video", "-q:v", "20"],
    "mpeg1.mpg": ["-f", "lavfi", "-i", "testsrc=size=32x32:rate=25:duration=0.12", "-c:v", "mpeg1video"],
    "vp9.webm": [*PICTURES, "-c:v", "libvpx-vp9", "-b:v", "10k"],
    "mjpeg_pcm.mkv": [*BOTH, "-c:v", "mjpeg", "-q:v", "25", "-c:a", "pcm_u8"],
    "ten_bit.mkv": [*PICTURES, "-c:v", "libx264", "-crf", "45", "-pix_fmt", "yuv422p10le"],
    "flv1.flv": [*PICTURES, "-c:v", "flv", "-q:v", "20"],
    "h263.3gp": ["-f", "lavfi", "-i", "testsrc=size=128x96:rate=5:duration=0.4", "-c:v", "h263", "-q:v", "31"],
    "sound.wav": [*SOUND, "-c:a", "pcm_s16le", "-ac", "6", "-t", "0.02"],
    "sound.mp3": [*SOUND, "-c:a", "libmp3lame", "-b:a", "8k"],
    "sound.ogg": [*SOUND, "-c:a", "libvorbis", "-ar", "8000", "-q:a", "0", "-t", "0.1"],
    "sound.flac": [*SOUND, "-c:a", "flac", "-t", "0.02"],
    "sound.aac": [*SOUND, "-c:a", "aac", "-b:a", "8k"],
    "picture.png": ["-f", "lavfi", "-i", "testsrc=size=8x6:rate=1:duration=1", "-frames:v", "1"],
    "picture.gif": ["-f", "lavfi", "-i", "testsrc=size=16x16:rate=5:duration=0.4"],
}
INTERFACE_CLIPS = ["mpeg4.avi", "h264_aac.mp4", "mpeg2.ts", "ten_bit.mkv", "vp9.webm"]


def store(folder, name, content):
    os.makedirs(os.path.join(SEEDS, folder), exist_ok=True)
    with open(os.path.join(SEEDS, folder, name), "wb") as out:
        out.write(content)


def load(*path):
    with open(os.path.join(SEEDS, *path), "rb") as content:
        return content.read()


def make_clips():
    os.makedirs(os.path.join(SEEDS, "clips"), exist_ok=True)
    for name, options in CLIPS.items():
        subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", *options, "-shortest", "-fflags", "+bitexact",
                        "-flags:v", "+bitexact", "-flags:a", "+bitexact", os.path.join(SEEDS, "clips", name)],
                       check=True)


def make_subtitles():
    times = b"00:00:01,000 --> 00:00:02,500\n"
    store("subtitles", "two.srt", b"1\n" + times + b"One\nline more\n\n2\n" + times + b"<i>Two</i>\n\n")
    store("subtitles", "crlf.srt", b"1\r\n" + times[:-1] + b"\r\nText\r\n\r\n")
    store("subtitles", "large.srt", b"-9\n99999999:-1:999999999999,5 --> 1:1:1,1\n" + b"x" * 600 + b"\n\n")
    store("subtitles", "no_end.srt", b"7\n0:0:0,0-->0:0:0,0\n<i><i></i>")


def make_fonts():
    texels = bytes(range(4 * 4 * 2))
    glyphs = struct.pack("<6f", 0.5, 0.5, 0, 0, 0.5, 0.5) * 3
    header = struct.pack("<5i", 1, 4, 4, 65, 67)
    store("font", "small.glf", header + bytes(4) + glyphs + texels)
    store("font", "small_file.glf", header + bytes(12) + glyphs + texels)
    store("font", "short.glf", header + bytes(4) + glyphs + texels[:-1])
    store("font", "many.glf", struct.pack("<5i", 1, 8192, 8192, -(2**31), 2**31 - 1) + bytes(64))
    store("font", "wide_range.glf", struct.pack("<5i", 1, 1, 1, 2**31 - 1, 2**31 - 1) + bytes(4) + glyphs)
    with open(FONT, "rb") as font:
        store("font", "header.glf", font.read(2048))


def make_command_lines():
    def line(*arguments):
        return b"".join(argument.encode() + b"\0" for argument in arguments)

    store("command_line", "options", line("--denoising", "20", "--sharpening=50", "-c", "-300", "film.mkv"))
    store("command_line", "odd", line("-d", "-p", "x", "--temp_thresh", "nan", "--brightness", "1e999", "--", "-l"))
    store("command_line", "flags", line("-lfg", "--preload", "--demo", "-s", "-b"))
    store("command_line", "long", line("x" * 300, "--denois", "--unknown=3", ""))


def make_paths():
    for name, path in {"unix": b"/home/me/film.tar.gz", "drive": b"C:\\films\\a.b\\film.avi", "colon": b"a/b:c.d:e",
                       "dots": b"../.hidden/..", "short": b":"}.items():  # fmt: skip
        store("split_path", name, path)


def u16(*values):
    return struct.pack(f"<{len(values)}H", *values)


def make_avi_films():
    def film(width, height, rate, stride, gap, frames):
        return u16(width - 1, height - 1) + struct.pack("<f", rate) + u16(stride - 3, gap, frames)

    store("avi_writer", "odd", film(5, 3, 25.0, 3, 0, 2) + bytes(range(90)))
    store("avi_writer", "strides", film(4, 4, 29.97, 4, 5, 3) + bytes(range(200)))
    store("avi_writer", "no_rate", film(1, 1, 0.0, 3, 0, 1))
    store("avi_writer", "huge_rate", film(2, 2, 1e30, 3, 0, 1))
    store("avi_writer", "no_frames", film(80, 60, 1.0, 3, 0, 0))


def make_side_data():
    vector = struct.pack("<iBBhhhhhQiiH6x", -1, 16, 16, 8, 8, 24, 24, 0, 0, 64, -32, 4)
    far = struct.pack("<iBBhhhhhQiiH6x", -1, 255, 255, -32768, 0, 32767, -32768, 0, 0, 2**31 - 1, -(2**31), 0)
    for name, (kind, codec, vectors) in {"h264": (2, 0, vector + far), "mpeg4": (2, 2, far), "hevc": (1, 3, b"")}.items():
        blocks = struct.pack("<5i", 0, 0, 16, 16, 5) + struct.pack("<5i", -(2**31), 2**31 - 1, 2**31 - 1, -1, 2**31 - 1)
        content = u16(99, 59, kind, codec, len(vectors)) + vectors + u16(1, 2 if codec else 0, 2)
        store("side_data", name, content + struct.pack("<i", 30) + blocks + b"\1\2\3")
    broken = struct.pack("<I4xQQii", 1000000, 64, 20, 1, 3) + bytes(32)
    store("side_data", "broken", u16(33, 33, 2, 0, 0, 0, len(broken)) + broken)


def make_sound():
    interleave = b"".join(u16(0, f + 1, 2, 100, 3000, 0) + bytes(range(64)) * 2 for f in range(10))
    store("sound_blocks", "formats", interleave)
    settings = struct.pack("<7f", 1, 0.5, 3, -3, 6, 0.2, 0.5)
    store("sound_blocks", "chain", u16(1, 2, 0) + bytes(8) + settings + u16(1, 1024) + bytes(range(64)) * 3)
    store("sound_blocks", "odd_rate", u16(1, 6, 1) + struct.pack("<iQ", 2**31 - 1, 63) + settings + u16(1, 9))
    store("sound_blocks", "fades", u16(2, 500, 100, 300, 7, 50, 60) + bytes(range(64)))

    def packet(milliseconds, count):
        return u16(0, 1, milliseconds, count) + bytes(range(16)) + u16(1)

    start = u16(0, 1, 3, 1)
    film = u16(3, 1, 0) + u16(1)
    go_on = u16(10, 0) + u16(1)
    store("sound_playback", "film", start + film + b"".join(packet(20 * i, 4000) + go_on for i in range(8)))
    store("sound_playback", "seek", start + packet(0, 9000) + u16(5, 9000, 1) + packet(9000, 9000) + go_on * 3)
    store("sound_playback", "slow", start + film + u16(7, 0, 1) + packet(0, 19000) + packet(50, 19000) + go_on * 9)
    store("sound_playback", "rate", u16(0, 1, 3, 0) + struct.pack("<i", 2**31 - 1) + packet(0, 500) * 3)


def make_interface_calls():
    # A record: how many bytes of it are given, those, and whether its size is a wrong one.
    plain = b"\0" + u16(1)

    def film(content):
        return u16(0, len(content)) + content + u16(1) + plain + u16(1)

    read = u16(2) + plain + u16(8, 0, 1)
    seek = u16(4) + b"\x18" + struct.pack("<IIQd", 0, 0, 0, 0.3) + u16(1, 8, 0)
    close = u16(8, 8, 0)
    for name in INTERFACE_CLIPS:
        store("video_interface", "read_" + name, film(load("clips", name)) + read * 2 + seek + read * 3 + close + read)

    def save(name, codec=b"", bits=8):
        size = u16(31, 23, 24, 1 if bits == 8 else 0, 1, 1)
        return u16(5) + plain + name.encode() + b"\0" + u16(1) + codec + b"\0" + size

    write = u16(6) + plain + u16(8, 0, 1)
    for name in ("out.avi", "out.mkv", "out.webm", "out%03d.png", "file:out.mp4"):
        calls = save(name) + write * 3 + close
        store("video_interface", "save_" + name.replace("%", "_").replace(":", "_"), calls)
    store("video_interface", "save_plain", save("plain.avi", b"avi") + write * 2 + close)
    store("video_interface", "save_ffv1", save("any", b"ffv1", 16) + write * 2 + close)
    store("video_interface", "camera", u16(1) + plain + u16(0) + b'cam:"_dev,video0",framerate=5\0')
    store("video_interface", "wrong_size", u16(1) + b"\0" + u16(0, 600, 1) + u16(2) + b"\0" + u16(0, 5, 0))


def main():
    make_clips()
    make_subtitles()
    make_fonts()
    make_command_lines()
    make_paths()
    make_avi_films()
    make_side_data()
    make_sound()
    make_interface_calls()


if __name__ == "__main__":
    main()
