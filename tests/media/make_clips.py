#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the clips that the tests play: make_clips.py FOLDER

Every clip comes from ffmpeg's own sources or from the camera films of the Debian package
forensics-samples-files. Clips that are there already, made by this version of the script, stay.
README.md beside this file says what each is for.
"""

import hashlib
import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

SAMPLES = "/usr/share/forensics-samples/original-files"
FILM = SAMPLES + "/movie2/movie-hello.mp4"  # 1280 x 720, H.264, 30 pictures per second, 8.3 s
CAMERA = SAMPLES + "/movie1/VID_20191220_170832.mp4"  # 1920 x 1080, H.264, hand-held
BITS = 8  # of the number that is written into numbered clips


def number_boxes(width):
    """Filters that write the picture's number as white and black fields into the top rows."""
    side = width // BITS
    filters = [f"drawbox=0:0:{width}:{side // 2}:black:fill"]
    for bit in range(BITS):
        filters.append(
            f"drawbox={bit * side}:0:{side}:{side // 2}:white:fill"
            f":enable='mod(floor(n/{2 ** bit}),2)'"
        )
    return ",".join(filters)


def numbered(width=320, height=180, rate=25, seconds=4):
    """A moving picture with its number in it."""
    return [
        "-f", "lavfi", "-i",
        f"testsrc2=size={width}x{height}:rate={rate}:duration={seconds},{number_boxes(width)}",
    ]  # fmt: skip


def tone(seconds=4, rate=48000):
    return ["-f", "lavfi", "-i", f"sine=frequency=440:sample_rate={rate}:duration={seconds}"]


LAYOUTS = {"mono": 1, "stereo": 2, "5.1": 6, "7.1": 8}


def chirps(layout="stereo", rate=48000, seconds=2):
    """A tone per channel that rises or falls all the time, so that no two moments sound alike."""
    # The fourth of the channels is the one for low tones, which some codecs keep nothing else of.
    starts = (300, 1700, 700, 60, 1100, 500, 900, 1300)
    slopes = (110, -130, 70, 5, 90, -40, 60, -80)
    channels = "|".join(
        f"0.4*sin(2*PI*t*({start}+{slope}*t))"
        for start, slope in list(zip(starts, slopes))[: LAYOUTS[layout]]
    )
    return ["-f", "lavfi", "-i", f"aevalsrc=exprs='{channels}':c={layout}:s={rate}:d={seconds}"]


# What a codec of sound is kept in, and its encoder.
SOUND_CODECS = {
    "aac": ("m4a", ["-c:a", "aac", "-b:a", "256k"]),
    "mp3": ("mp3", ["-c:a", "libmp3lame", "-b:a", "256k"]),
    "vorbis": ("ogg", ["-c:a", "libvorbis", "-q:a", "7"]),
    "opus": ("opus", ["-c:a", "libopus", "-b:a", "256k"]),
    "flac": ("flac", ["-c:a", "flac", "-sample_fmt", "s16"]),
    "pcm": ("wav", ["-c:a", "pcm_s16le"]),
    "ac3": ("ac3", ["-c:a", "ac3", "-b:a", "448k"]),
}


def sound_clips():
    clips = {}
    for codec, (extension, encoder) in SOUND_CODECS.items():
        for layout in ("mono", "stereo", "5.1"):
            if codec == "mp3" and layout == "5.1":
                continue  # there is no such thing
            clips[f"sound_{codec}_{layout}.{extension}"] = chirps(layout) + encoder
    clips["sound_pcm_7.1.wav"] = chirps("7.1") + SOUND_CODECS["pcm"][1]
    for rate in (8000, 11025, 22050, 44100, 96000, 192000):
        clips[f"sound_rate_{rate}.wav"] = chirps(rate=rate, seconds=2) + ["-c:a", "pcm_s16le"]
    for name, encoder in {
        "u8.wav": ["pcm_u8"], "s32.wav": ["pcm_s32le"], "f32.wav": ["pcm_f32le"], "f64.wav": ["pcm_f64le"],
        "s16p.wv": ["wavpack", "-sample_fmt", "s16p"],
        "s32p.wv": ["wavpack", "-sample_fmt", "s32p"], "fltp.wv": ["wavpack", "-sample_fmt", "fltp"],
    }.items():  # fmt: skip
        clips[f"sound_format_{name}"] = chirps(seconds=1) + ["-c:a", *encoder]
    return clips


def scrolling(pixels, width=320, height=192, seconds=1):
    """A still from a camera that moves to the left by whole pixels per picture."""
    return [
        "-loop", "1", "-framerate", "25", "-i", SAMPLES + "/pic2/IMG_20200124_231153.jpg",
        "-vf", f"scale=640:384,scroll=horizontal={pixels}/640,crop={width}:{height}:100:80",
        "-t", str(seconds),
    ]  # fmt: skip


X264 = ["-c:v", "libx264", "-preset", "veryfast", "-pix_fmt", "yuv420p"]
KEY_25 = ["-g", "25", "-keyint_min", "25", "-sc_threshold", "0"]
MPEG4 = ["-c:v", "mpeg4", "-q:v", "4"]

# name: arguments between "ffmpeg" and the output name
CLIPS = {
    # One per codec and container, 100 numbered pictures each.
    "mpeg1.mpg": numbered() + tone() + ["-c:v", "mpeg1video", "-q:v", "3", "-bf", "2", "-c:a", "mp2"],
    "mpeg2.mpg": numbered() + tone() + ["-c:v", "mpeg2video", "-q:v", "3", "-bf", "2", "-c:a", "mp2"],
    "mpeg4.avi": numbered() + tone() + MPEG4 + ["-bf", "2", "-c:a", "libmp3lame"],
    "mpeg4_nob.avi": numbered() + MPEG4 + ["-bf", "0"],
    "mpeg4_qpel.mp4": numbered() + MPEG4 + ["-bf", "0", "-flags", "+qpel"],
    "h264.mp4": numbered() + tone() + X264 + KEY_25 + ["-c:a", "aac"],
    "one_key.mp4": numbered() + tone() + X264 + ["-g", "1000", "-c:a", "aac"],
    "late_start.ts": numbered() + tone() + X264 + KEY_25 + ["-c:a", "aac", "-output_ts_offset", "1000"],
    "h264.mkv": numbered() + tone() + X264 + KEY_25 + ["-c:a", "libvorbis"],
    "h264_nob.mp4": numbered() + X264 + KEY_25 + ["-bf", "0", "-refs", "1"],
    "hevc.mkv": numbered() + ["-c:v", "libx265", "-preset", "ultrafast", "-x265-params", "log-level=none"],
    "vp9.webm": numbered() + tone() + ["-c:v", "libvpx-vp9", "-cpu-used", "8", "-deadline", "realtime",
                                       "-b:v", "600k", "-c:a", "libopus"],
    "mjpeg.avi": numbered() + ["-c:v", "mjpeg", "-q:v", "3", "-pix_fmt", "yuvj420p"],
    # Constant quantisers, known motion.
    "q5_mpeg2.mpg": numbered(seconds=1) + ["-c:v", "mpeg2video", "-q:v", "5", "-qmin", "5", "-qmax", "5", "-bf", "0"],
    "q7_mpeg4.avi": numbered(seconds=1) + ["-c:v", "mpeg4", "-q:v", "7", "-qmin", "7", "-qmax", "7", "-bf", "0"],
    "qp30_h264.mp4": numbered(seconds=1) + X264 + ["-qp", "30", "-bf", "0", "-x264-params", "ipratio=1.0:aq-mode=0:mbtree=0"],
    **{f"q7_{codec}.avi": numbered(176, 144, seconds=1)
       + ["-c:v", codec, "-q:v", "7", "-qmin", "7", "-qmax", "7"]
       for codec in ("msmpeg4v2", "msmpeg4", "wmv1", "wmv2", "h263", "flv")},
    "moving_mpeg2.mpg": scrolling(4) + ["-c:v", "mpeg2video", "-q:v", "2", "-bf", "0"],
    "moving_mpeg4.avi": scrolling(4) + ["-c:v", "mpeg4", "-q:v", "2", "-bf", "0"],
    "moving_qpel.avi": scrolling(4) + ["-c:v", "mpeg4", "-q:v", "2", "-bf", "0", "-flags", "+qpel"],
    "moving_h264.mp4": scrolling(4) + X264 + ["-bf", "0", "-refs", "1", "-qp", "18"],
    # Sizes and formats.
    "odd_853x481.mkv": numbered(854, 482, seconds=1)
    + ["-vf", "format=yuv444p,crop=853:481:0:0:exact=1", "-c:v", "ffv1", "-pix_fmt", "yuv420p"],
    "size_1x1.mkv": ["-f", "lavfi", "-i", "color=red:size=16x16:rate=25:duration=1,scale=1:1",
                     "-c:v", "ffv1", "-pix_fmt", "yuv444p"],
    "size_16x8.mkv": numbered(16, 8, seconds=1) + ["-c:v", "ffv1", "-pix_fmt", "yuv420p"],
    "wide_4000.mp4": numbered(4000, 400, seconds=1) + X264,
    "ten_bit.mkv": numbered(seconds=1) + ["-c:v", "libx265", "-preset", "ultrafast", "-pix_fmt", "yuv420p10le",
                                          "-x265-params", "log-level=none"],
    "chroma_422.mkv": numbered(seconds=1) + ["-c:v", "ffv1", "-pix_fmt", "yuv422p"],
    "rgb.mkv": numbered(seconds=1) + ["-c:v", "ffv1", "-pix_fmt", "gbrp"],
    "grey.mkv": numbered(seconds=1) + ["-c:v", "ffv1", "-pix_fmt", "gray"],
    # Streams that are not as they should be.
    "raw.h264": numbered(seconds=2) + X264 + KEY_25 + ["-f", "h264"],
    "raw.m4v": numbered(seconds=2) + MPEG4 + ["-bf", "0", "-f", "m4v"],
    "no_keys.mkv": None,
    "size_change.ts": None,
    "truncated.mkv": None,
    "truncated.mp4": None,
    "text.mp4": None,
    "empty.mp4": None,
    "aspect_anamorphic.mkv": numbered(360, 288, seconds=1) + ["-vf", "setsar=16/15", "-c:v", "ffv1"],
    # Sound.
    "tone.wav": tone(3),
    "cover.mp3": None,
    "broken_sound.mkv": None,
    "undecodable_sound.mkv": None,
    "layout_change.aac": None,
    **sound_clips(),
    # Sound that leaps ahead by 2 s after 2 s.
    "sound_gap.mkv": numbered(seconds=6) + chirps(seconds=4)
    + ["-af", "asetpts='PTS+if(gte(T,2),2/TB,0)'", "-c:v", "mpeg4", "-c:a", "pcm_s16le"],
    "chirps.mkv": numbered(seconds=6) + chirps(seconds=6) + MPEG4 + ["-c:a", "pcm_s16le"],
    # A film with steady sound for a minute.
    "tones_75s.mkv": numbered(seconds=75) + ["-f", "lavfi", "-i", "aevalsrc=exprs='0.4*sin(2*PI*t*440)|0.4*sin(2*PI*t*660)'"
                                          ":c=stereo:s=48000:d=75"]
    + MPEG4 + ["-g", "25", "-c:a", "aac"],
    # For measuring: the film over and over, long enough for a minute.
    "film_720p.mp4": None,
    # Key frames with pictures around them that refer to both sides, in 10 bits.
    "hevc_open_gop.mkv": numbered() + ["-c:v", "libx265", "-preset", "ultrafast", "-pix_fmt", "yuv420p10le",
                                       "-x265-params", "log-level=none:keyint=25:min-keyint=25:open-gop=1:bframes=3"
                                       ":scenecut=0"],
}  # fmt: skip


def run(*arguments):
    subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", *arguments], check=True)


def make_special(name, out, path):
    """The clips that take more than one step."""
    if name == "no_keys.mkv":
        run("-i", path("h264.mkv"), "-map", "0:v", "-c", "copy", "-bsf:v", "noise=drop=key", out)
    elif name == "size_change.ts":
        parts = []
        for width, height in ((320, 180), (176, 144)):
            part = f"{out}.{width}.ts"
            run(*numbered(width, height, seconds=1), *X264, "-f", "mpegts", part)
            parts.append(part)
        with open(out, "wb") as joined:
            for part in parts:
                with open(part, "rb") as piece:
                    joined.write(piece.read())
                os.remove(part)
    elif name == "truncated.mkv":
        with open(path("h264.mkv"), "rb") as whole, open(out, "wb") as part:
            data = whole.read()
            part.write(data[: len(data) // 2])
    elif name == "truncated.mp4":
        with open(path("h264.mp4"), "rb") as whole, open(out, "wb") as part:
            part.write(whole.read()[:20000])
    elif name == "text.mp4":
        with open(out, "w", encoding="utf-8") as text:
            text.write("This is a text, not a film: 100%s.\n" * 50)
    elif name == "empty.mp4":
        open(out, "wb").close()
    elif name == "cover.mp3":
        run(*tone(2), "-i", SAMPLES + "/pic1/debian_logo.png", "-map", "0", "-map", "1", "-c:a",
            "libmp3lame", "-c:v", "mjpeg", "-disposition:v", "attached_pic", out)
    elif name == "broken_sound.mkv":
        run("-i", path("h264.mkv"), "-c", "copy", "-bsf:a", "noise=amount=3", out)
    elif name == "undecodable_sound.mkv":
        with open(path("h264.mkv"), "rb") as whole, open(out, "wb") as renamed:
            renamed.write(whole.read().replace(b"A_VORBIS", b"A_NOBODY"))
    elif name == "layout_change.aac":
        with open(out, "wb") as joined:
            for layout, rate in (("stereo", 48000), ("mono", 48000), ("5.1", 44100), ("stereo", 48000)):
                part = f"{out}.part"
                run(*chirps(layout, rate, 1), "-c:a", "aac", "-f", "adts", part)
                with open(part, "rb") as piece:
                    joined.write(piece.read())
                os.remove(part)
    elif name == "film_720p.mp4":
        run("-stream_loop", "8", "-i", FILM, "-c", "copy", out)


def main():
    folder = os.path.abspath(sys.argv[1])
    os.makedirs(folder, exist_ok=True)
    with open(__file__, "rb") as script:
        version = hashlib.sha256(script.read()).hexdigest()
    stamp = os.path.join(folder, "version")
    if os.path.exists(stamp) and open(stamp, encoding="ascii").read() == version:
        return

    def path(name):
        return os.path.join(folder, name)

    def make(item):
        name, arguments = item
        if arguments:
            run(*arguments, path(name))
        else:
            make_special(name, path(name), path)

    print(f"making {len(CLIPS)} test clips", flush=True)
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        list(pool.map(make, [item for item in CLIPS.items() if item[1]]))
        list(pool.map(make, [item for item in CLIPS.items() if not item[1]]))
    with open(stamp, "w", encoding="ascii") as file:
        file.write(version)


if __name__ == "__main__":
    main()
