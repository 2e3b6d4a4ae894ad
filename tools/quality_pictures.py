# SPDX-License-Identifier: MIT
"""Pictures of what each setting does, for the documents: shared by tools/quality."""

from quality_support import H264, LOSSLESS, MPEG4, PRECISE

CROP_WIDTH, CROP_HEIGHT = 360, 270


def side_by_side(bench, films, number, zoom, place, out):
    """One picture of each film, cut at `place` and magnified without smoothing, in a row."""
    x, y = place
    cut = (f"select=eq(n\\,{number}),crop={CROP_WIDTH // zoom}:{CROP_HEIGHT // zoom}:{x}:{y},"
           f"scale={CROP_WIDTH}:{CROP_HEIGHT}:flags=neighbor")
    inputs = [argument for film in films for argument in ("-i", film)]
    cuts = ";".join(f"[{i}:v]{cut}[p{i}]" for i in range(len(films)))
    row = "".join(f"[p{i}]" for i in range(len(films))) + f"hstack={len(films)}"
    bench.ffmpeg(*inputs, "-lavfi", f"{cuts};{row}", "-frames:v", 1, "-update", 1, "-q:v", 4, out)


def super_resolution(bench, folder):
    original = bench.film("screen", 624, 360, 4)
    small = bench.make(original, "small.mkv", f"scale=iw/2:ih/2:flags=area+{PRECISE}", *LOSSLESS)
    plain = bench.make(small, "plain.mkv", "scale=iw*2:ih*2:flags=bilinear", *LOSSLESS)
    enhanced = bench.enhance(small, "enhanced.mkv", "--spatial", 2)
    side_by_side(bench, (plain, enhanced), 3, 2, (180, 20), folder / "super-resolution.jpg")


def denoising(bench, folder):
    original = bench.film("dog", 640, 360, 4)
    for damage, level, coding in (
            ("noise", 20, ("noise=alls=40:allf=t:all_seed=1", *LOSSLESS)),
            ("blocks", 10, ("null", *MPEG4, "-qscale:v", "12"))):
        damaged = bench.make(original, "damaged.mkv", *coding)
        before = bench.enhance(damaged, "before.mkv")
        after = bench.enhance(damaged, "after.mkv", "--denoise", level)
        side_by_side(bench, (before, after), 3, 2, (170, 100), folder / f"denoising-{damage}.jpg")


def sharpening(bench, folder):
    original = bench.film("dog", 640, 360, 1)
    films = [bench.enhance(original, f"sharp{level}.mkv", "--sharpen", level)
             for level in (0, 20, 50)]
    side_by_side(bench, films, 0, 2, (170, 100), folder / "sharpening.jpg")


def interpolation(bench, folder):
    original = bench.film("zoom", 640, 360, 5)
    half = bench.make(original, "half.mp4", r"select=not(mod(n\,2))", *H264)
    films = [bench.enhance(half, f"{method}.mkv", "--temporal", 2, "--method", method)
             for method in ("blend", "4nb")]
    side_by_side(bench, [*films, original], 3, 2, (330, 100), folder / "interpolation.jpg")


def demo(bench, folder):
    original = bench.film("dog", 640, 360, 2)
    damaged = bench.make(original, "damaged.mkv", "noise=alls=40:allf=t:all_seed=1", *LOSSLESS)
    split = bench.enhance(damaged, "split.mkv", "--denoise", 20, "--demo")
    bench.ffmpeg("-i", split, "-frames:v", 1, "-update", 1, "-q:v", 4, folder / "demo.jpg")


def write_pictures(bench, folder):
    """Writes them into `folder`, which is made where it is missing."""
    folder.mkdir(parents=True, exist_ok=True)
    for part in (super_resolution, denoising, sharpening, interpolation, demo):
        part(bench, folder)
