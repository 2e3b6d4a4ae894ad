# SPDX-License-Identifier: MIT
"""Films, the programs that work on them, and what is measured: shared by tools/quality."""

import os
import re
import shutil
import subprocess
from pathlib import Path

PACKAGE = "forensics-samples-files"
SAMPLES = Path("/usr/share/forensics-samples/original-files")

# Each film: where it comes from and how it is cut. {n} is a picture's number.
SOURCES = {
    "dog": ("a phone's film of a dog, soft", "movie1/VID_20191220_170832.mp4", "null"),
    "dog, every 3rd": (
        "the same with two of three pictures left out",
        "movie1/VID_20191220_170832.mp4",
        r"select=not(mod(n\,3))",
    ),
    "screen": ("a film of a screen with text", "movie2/movie-hello.mp4", "trim=start_frame=100"),
    "grass": (
        "a pan over a photo of dogs on grass and leaves",
        "pic2/IMG_20200608_111614.jpg",
        "crop=2560:1440:200+32*n:1200+8*n",
    ),
    "town": (
        "a pan over a photo of a town",
        "pic1/IMG_1054.JPG",
        "crop=1120:630:5*n:200-2*n",
    ),
    "wall": (
        "a fast pan over a photo of framed pictures",
        "pic2/IMG_20191224_234846.jpg",
        "crop=2560:1440:200+40*n:200+8*n",
    ),
    "zoom": (
        "a zoom into a photo of a dog",
        "pic2/IMG_20200124_231153.jpg",
        "scale=1600:-2,zoompan=z=1+0.03*on:x=iw/2-iw/zoom/2:y=ih/2-ih/zoom/2:d=1:s=640x360",
    ),
}

PRECISE = "accurate_rnd+full_chroma_int+full_chroma_inp"


class Bench:
    """A folder to work in, and the programs that work there."""

    def __init__(self, folder, enhance):
        self.folder = Path(folder)
        self.enhance_program = enhance

    def ffmpeg(self, *arguments):
        command = ["ffmpeg", "-v", "error", "-nostdin", "-y", *map(str, arguments)]
        subprocess.run(command, cwd=self.folder, check=True)

    def film(self, name, width, height, count):
        """Makes a film of exact pixels, `count` pictures of RGB."""
        _, path, cut = SOURCES[name]
        still = ["-loop", "1"] if path.lower().endswith(".jpg") else []
        out = f"film-{width}x{height}-{name.replace(' ', '_').replace(',', '')}.mkv"
        shape = f"scale={width}:{height}:flags=area+{PRECISE}:force_original_aspect_ratio=increase"
        self.ffmpeg(*still, "-i", SAMPLES / path, "-an", "-vf",
                    f"{cut},{shape},crop={width}:{height},setsar=1,setpts=N/25/TB", "-r", 25,
                    "-frames:v", count, "-sws_flags", PRECISE, *LOSSLESS, out)
        return out

    def make(self, source, out, filters, *coding):
        """Filters a film and codes it again."""
        self.ffmpeg("-i", source, "-vf", f"{filters},setpts=N/25/TB", "-r", 25, "-sws_flags",
                    PRECISE, *coding, out)
        return out

    def enhance(self, source, out, *options):
        """Runs vyx-enhance; the result is a film of exact pixels."""
        pictures = self.folder / "pictures"
        shutil.rmtree(pictures, ignore_errors=True)
        pictures.mkdir()
        subprocess.run([self.enhance_program, *map(str, options), source, "pictures/%05d.png"],
                       cwd=self.folder, check=True)
        self.ffmpeg("-framerate", 25, "-i", "pictures/%05d.png", *LOSSLESS, out)
        return out

    def compare(self, film, original):
        """PSNR in dB and SSIM of the luma. The films must have the same number of pictures."""
        counts = [self.count(film), self.count(original)]
        if counts[0] != counts[1] or counts[0] == 0:
            raise RuntimeError(f"{film} has {counts[0]} pictures, {original} {counts[1]}")
        luma = f"settb=1/25,setpts=N,scale=flags={PRECISE},format=gray,split"
        graph = (f"[0:v]{luma}[a][c];[1:v]{luma}[b][d];[a][b]psnr;[c][d]ssim")
        run = subprocess.run(["ffmpeg", "-nostdin", "-i", film, "-i", original, "-lavfi", graph,
                              "-f", "null", "-"], cwd=self.folder, check=True,
                             capture_output=True, text=True)
        psnr = re.search(r"PSNR .*average:(\S+)", run.stderr)
        ssim = re.search(r"SSIM .*All:(\S+)", run.stderr)
        return Figure(float(psnr.group(1)), float(ssim.group(1)))

    def count(self, film):
        run = subprocess.run(["ffprobe", "-v", "error", "-count_packets", "-select_streams", "v",
                              "-show_entries", "stream=nb_read_packets", "-of", "csv=p=0", film],
                             cwd=self.folder, check=True, capture_output=True, text=True)
        return int(run.stdout.strip().strip(","))


# Read back as they were written.
LOSSLESS = ["-c:v", "ffv1", "-pix_fmt", "gbrp"]
# One reference picture: a decoder does not tell which of several a vector points into.
H264 = ["-pix_fmt", "yuv420p", "-c:v", "libx264", "-crf", "10", "-bf", "0", "-g", "300",
        "-refs", "1", "-threads", "1"]
MPEG4 = ["-pix_fmt", "yuv420p", "-c:v", "mpeg4", "-bf", "0", "-g", "100"]
MPEG2 = ["-pix_fmt", "yuv420p", "-c:v", "mpeg2video", "-bf", "0", "-g", "12"]


class Figure:
    """A pair of PSNR and SSIM."""

    def __init__(self, psnr, ssim):
        self.psnr = psnr
        self.ssim = ssim

    def __str__(self):
        return f"{self.psnr:.2f} / {self.ssim:.3f}"


def table(heading, rows):
    """A table in Markdown."""
    lines = ["| " + " | ".join(heading) + " |", "|" + "---|" * len(heading)]
    lines += ["| " + " | ".join(map(str, row)) + " |" for row in rows]
    return "\n".join(lines) + "\n"


def check_samples():
    if not SAMPLES.is_dir():
        raise SystemExit(f"quality: the films come from the Debian package {PACKAGE}; install it")


def program(build_folder):
    path = Path(build_folder) / "bin" / "vyx-enhance"
    if not os.access(path, os.X_OK):
        raise SystemExit(f"quality: there is no {path}; build first")
    return str(path.resolve())
