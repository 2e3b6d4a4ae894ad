# SPDX-License-Identifier: MIT
"""soak.py MINUTES: plays a small film over and over with everything on, measures, and prints a summary.

The first half goes through the denoiser, the second through super-resolution, both at twice the size and with a
picture between each two. Status 0 when memory stayed flat, sound and picture together, and no picture was stuck."""

import os
import random
import re
import statistics
import subprocess
import sys
import tempfile
import time

from hand import ADVANCED, FONT, NEUTRAL, VIDEO, Hand
from support import Display, Player, wait_for

INTERVAL = 2  # seconds between two looks
SETTLE = 20  # seconds for a change of the settings to be over
LONGEST_STUCK = 6  # seconds
# Seconds between sound and picture: the mean of a minute's readings, at times that have nothing to do with either's
# rate. A single reading swings by up to 50 ms (23 on average), as the clock of the sound moves by whole buffers and that
# of the picture by whole pictures, so the mean of ten still swings by 20.
MOST_APART = 0.020
IN_A_ROW = 30
MOST_IN_ONE = 0.060
SHARE_APART = 0.01  # of the means or readings that may be more: the film begins again once a minute
MOST_GROWTH = 2048  # KiB

# So wide that the status line stands above the picture, where it can be read.
FILM = ["-f", "lavfi", "-i", "testsrc=size=96x56:rate=12:duration=60", "-f", "lavfi",
        "-i", "aevalsrc=exprs='0.1*sin(2*PI*t*(400+10*t))|0.1*sin(2*PI*t*300)':s=48000:d=60",
        "-c:v", "libx264", "-preset", "veryfast", "-pix_fmt", "yuv420p", "-g", "25", "-c:a", "aac"]  # fmt: skip


class Soak:
    def __init__(self, player):
        self.player, self.hand, self.dice = player, Hand(player), random.Random(1)
        self.readings, self.rates = [], []
        self.unread = 0
        self.last, self.changed, self.stuck = None, time.monotonic(), 0.0

    def choose(self, algorithm):
        self.player.key("F2")
        self.player.look_until(VIDEO.shown, VIDEO.title, 30)
        for name, option in (("Algo", algorithm), ("Spatial upscaling", 1), ("Temporal upscaling", 1), ("Status", 1)):
            self.hand.choose(VIDEO, name, option)
        self.player.key("F2")
        self.player.key("F4")
        self.player.look_until(ADVANCED.shown, ADVANCED.title, 30)
        self.hand.choose(ADVANCED, "Motion interpolation method", 1)
        self.player.key("F4")
        self.hand.move(NEUTRAL)
        time.sleep(SETTLE)
        self.changed = time.monotonic()

    def look(self):
        picture = self.player.look()
        now = time.monotonic()
        middle = slice(150 * picture.width * 3, 550 * picture.width * 3)
        if picture.data[middle] != self.last:
            self.last, self.changed = picture.data[middle], now
        self.stuck = max(self.stuck, now - self.changed)
        text = FONT.read_right_aligned(picture, 750, 50, "AUDIOVEFPS:+-.[] 0123456789")
        found = re.match(r"AUDIO:([+-]\d+\.\d+) VIDEO:[+-]\d+\.\d+ \[FPS:(\d+)", text)
        if found:
            self.readings.append(float(found.group(1)))
            self.rates.append(int(found.group(2)))
        else:
            self.unread += 1

    def weigh(self):
        self.player.watch.ask()
        wait_for(self.player.watch.answered, 20, "a count of GL's objects")
        with open(f"/proc/{self.player.process.pid}/status", encoding="ascii") as status:
            mapped = int(re.search(r"RssAnon:\s*(\d+)", status.read()).group(1))
        return {"heap": self.player.watch.heap, "mapped": mapped, **self.player.watch.objects()}

    def run(self, seconds, algorithm, name):
        """Plays for that long; what went wrong, as a list of texts."""
        self.__init__(self.player)
        self.choose(algorithm)
        begun = time.monotonic()
        weights = []
        while time.monotonic() - begun < seconds:
            before = time.monotonic()
            self.look()
            if (before - begun) * 30 // seconds >= len(weights):
                weights.append(self.weigh())
            time.sleep(max(0.0, self.dice.uniform(0.8, 1.2) * INTERVAL - (time.monotonic() - before)))
        return self.verdict(name, weights, seconds)

    def verdict(self, name, weights, seconds):
        """The first sixth of the time is for warming up; the mean of the next is compared with that of the last."""
        if len(self.readings) < IN_A_ROW:
            return [f"{name}: the status line cannot be read"]
        wrong = []
        sixth = max(1, len(weights) // 6)
        parts = weights[sixth : 2 * sixth], weights[-sixth:]
        growth = {kind: statistics.mean(w[kind] for w in parts[1]) - statistics.mean(w[kind] for w in parts[0])
                  for kind in ("heap", "mapped")}
        single = sorted(map(abs, self.readings))
        ordered = sorted(abs(statistics.mean(self.readings[i : i + IN_A_ROW]))
                         for i in range(len(self.readings) - IN_A_ROW + 1))
        share = sum(value > MOST_APART for value in ordered) / len(ordered)
        print(f"{name}: {seconds / 60:.1f} min, {len(self.readings)} looks, {self.unread} of which nothing could be read\n"
              f"  pictures per second: {statistics.mean(self.rates):.0f}\n"
              f"  memory: {weights[-1]['heap'] / 1024:.1f} MB in use ({growth['heap'] / 1024:+.2f} MB), "
              f"{weights[-1]['mapped'] / 1024:.1f} MB mapped ({growth['mapped'] / 1024:+.2f} MB)\n"
              f"  sound and picture apart: median {1000 * statistics.median(ordered):.0f} ms, 99 % below "
              f"{1000 * ordered[len(ordered) * 99 // 100]:.0f} ms, at most {1000 * ordered[-1]:.0f} ms; single readings: "
              f"mean {1000 * statistics.mean(self.readings):+.0f} ms, median {1000 * statistics.median(single):.0f} ms, at most {1000 * single[-1]:.0f} ms\n"
              f"  longest time without a new picture: {self.stuck:.1f} s\n"
              f"  GL errors: {self.player.watch.errors}", flush=True)
        for kind, value in growth.items():
            if value > MOST_GROWTH:
                wrong.append(f"{name}: {kind} memory grows")
        if share > SHARE_APART:
            wrong.append(f"{name}: {100 * share:.1f} % of the time they are more than 20 ms apart")
        if sum(value > MOST_IN_ONE for value in single) > SHARE_APART * len(single):
            wrong.append(f"{name}: single readings are more than 60 ms")
        if self.stuck > LONGEST_STUCK:
            wrong.append(f"{name}: a picture was stuck")
        if self.unread > len(self.readings):
            wrong.append(f"{name}: the status line cannot be read")
        return wrong


def main():
    minutes = float(sys.argv[1]) if len(sys.argv) > 1 else 30.0
    with tempfile.TemporaryDirectory(prefix="vyx-soak") as folder:
        film = os.path.join(folder, "small.mp4")
        subprocess.run(["ffmpeg", "-nostdin", "-v", "error", *FILM, film], check=True)
        display = Display()
        player = Player(display, film)
        try:
            player.window()
            soak = Soak(player)
            wrong = soak.run(minutes * 30, 1, "denoising and interpolation")
            wrong += soak.run(minutes * 30, 0, "super-resolution and interpolation")
            begun = time.monotonic()
            status = player.quit()
            took = time.monotonic() - begun
            print(f"quit: status {status} after {took:.2f} s")
            if status != 0 or took > 1:
                wrong.append("it did not end in time")
        finally:
            player.close()
            display.close()
    print("\n".join(wrong) if wrong else "All is well.")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
