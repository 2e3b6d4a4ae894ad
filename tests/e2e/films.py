# SPDX-License-Identifier: MIT
"""Films that the tests of the controls need, made into a folder of their own."""

import os
import subprocess
import tempfile

from support import SAMPLES

DIGITS = 12  # fields of the number of a film with a clock
RATE = 25
PHOTO = SAMPLES + "/pic2/IMG_20200124_231153.jpg"
X264 = ["-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p"]
MPEG4 = ["-c:v", "mpeg4", "-q:v", "4"]
FIELD = 32

# So wide that what lies under it is never covered.
CLOCK = ["-f", "lavfi", "-i", f"color=0x204080:size={DIGITS * FIELD}x96:rate={RATE}:duration=75," + ",".join(
    f"drawbox={i * FIELD}:0:{FIELD}:16:white:fill:enable='mod(floor(n/{2 ** i}),2)',"
    f"drawbox={i * FIELD}:0:{FIELD}:16:black:fill:enable='not(mod(floor(n/{2 ** i}),2))'"
    for i in range(DIGITS))]  # fmt: skip

# A tone for each band of the equaliser in both channels, together and apart, and noise apart.
BANDS = (100, 1000, 8000)
TONES = "+".join(f"0.08*sin(2*PI*t*{f})" for f in BANDS)
SOUND = ["-f", "lavfi", "-i", f"aevalsrc=exprs='{TONES}+0.04*(random(0)-0.5)+0.05*sin(2*PI*t*440)"
         f"|{TONES}-0.04*(random(1)-0.5)-0.05*sin(2*PI*t*440)':c=stereo:s=48000:d=60"]
# The pitch tells the time.
RISING = ["-f", "lavfi", "-i", "aevalsrc=exprs='0.4*sin(2*PI*t*(400+10*t))':s=48000:d=60"]
SMALL_CLOCK = [part.replace("duration=75", "duration=60") for part in CLOCK]

FILMS = {
    "clock.avi": CLOCK + MPEG4 + ["-g", str(RATE)],
    "clock_10s.mp4": CLOCK + X264 + ["-g", str(10 * RATE), "-keyint_min", str(10 * RATE), "-sc_threshold", "0"],
    # The same picture all the time, each by itself, with coarse quantisers.
    "still.mp4": ["-framerate", str(RATE), "-i", PHOTO, "-vf", "scale=320:180,loop=199:1", *X264,
                  "-preset", "veryfast", "-g", "1", "-qp", "42"],
    "tones.avi": SMALL_CLOCK + SOUND + MPEG4 + ["-g", str(RATE), "-c:a", "pcm_s16le"],
    "rising.avi": SMALL_CLOCK + RISING + MPEG4 + ["-g", str(RATE), "-ac", "2", "-c:a", "pcm_s16le"],
    # Every second column is white.
    "stripes_1080p.mp4": ["-f", "lavfi", "-i", r"color=black:s=1920x1080:r=1:d=1,format=gray,geq=lum=235*mod(X\,2)",
                          "-vf", "loop=loop=300:size=1,setpts=N/5/TB", "-r", "5", "-pix_fmt", "yuv420p",
                          "-c:v", "libx264", "-preset", "veryfast", "-qp", "4"],
}  # fmt: skip


class Films:
    """Makes films when they are asked for."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()

    def __getitem__(self, name):
        path = os.path.join(self.folder.name, name)
        if not os.path.exists(path):
            subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", *FILMS[name], path], check=True)
        return path

    def close(self):
        self.folder.cleanup()


def seconds_in(picture):
    """The time that a film with a clock shows, in a window of 800 x 600; None while it cannot be read."""
    top, field = (picture.height - picture.width // 4) // 2, picture.width / DIGITS
    if any(picture.pixel(x, top + 100)[2] < 60 for x in range(50, picture.width, 100)):
        return None
    number = 0
    for i in range(DIGITS):
        value = picture.brightness(int((i + 0.5) * field), top + 16)
        if 0.2 < value < 0.7:
            return None
        number |= (value > 0.5) << i
    return number / RATE
