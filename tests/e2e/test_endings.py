# SPDX-License-Identifier: MIT
"""Whatever the player is doing, it ends within a second of being told to."""

import signal
import time
import unittest

from hand import ADVANCED, BUTTONS, POSITION, VIDEO, Hand
from support import CAMERA, PATIENCE, PlayerTestCase, clip, has_classic_sdl

# Measured: 0.9 s at most, in release, on two cores with a load of 20; mostly 0.2 s.
LONGEST = 1.0


def terminate(player):
    player.process.terminate()


def close_window(player):
    player.xdotool("key", "alt+F4")


class Endings(PlayerTestCase):
    def ends(self, player, way, statuses=(0,)):
        way(player)
        begun = time.monotonic()
        self.assertIn(player.wait(30), statuses, player.output())
        took = time.monotonic() - begun
        print(f"{took:.2f} s", end=" ", flush=True)
        self.assertLess(took, LONGEST * PATIENCE)

    def each_way(self, film, bring, ways=(terminate, close_window)):
        for way in ways:
            with self.subTest(way=way.__name__):
                player = self.start(film)
                player.window()
                bring(player, Hand(player))
                self.ends(player, way)

    def test_at_the_start(self):
        # Before the library takes care of the signal it ends the process as it does any other.
        for milliseconds in (0, 10, 30, 60, 100, 150, 220, 300, 400):
            with self.subTest(milliseconds=milliseconds):
                player = self.start(clip("h264.mp4"))
                time.sleep(milliseconds / 1000)
                self.ends(player, terminate, (0, -signal.SIGTERM))

    def test_while_scanning(self):
        self.each_way(clip("tones_75s.mkv"), lambda player, hand: (
            player.xdotool("keydown", "Right"), time.sleep(0.5), player.xdotool("keyup", "Right", "keydown", "Left"),
            self.addCleanup(player.xdotool, "keyup", "Left")))  # fmt: skip

    def test_after_many_seeks(self):
        def seek(player, hand):
            self.number(player)
            hand.do(*(word for share in (0.1, 0.9, 0.5, 0.2, 0.8) for word in
                      ("mousemove", *hand.on_screen((POSITION.x + share * POSITION.w, POSITION.middle[1])),
                       "click", 1)))  # fmt: skip

        self.each_way(clip("tones_75s.mkv"), seek)

    def test_during_a_pause(self):
        self.each_way(CAMERA, lambda player, hand: (player.key("space"), time.sleep(0.3)))

    def test_while_texts_and_forms_fade(self):
        self.each_way(clip("h264.mp4"), lambda player, hand: (
            player.key("i", "F2", "F3"), time.sleep(0.2), player.key("F2", "F3")))  # fmt: skip

    def test_between_two_films(self):
        self.each_way(CAMERA, lambda player, hand: (
            hand.move(BUTTONS["next"]), time.sleep(0.5),
            hand.do("click", "--repeat", 5, "--delay", 30, 1)))  # fmt: skip

    def heavy(self, algorithm, option, seconds):
        """A player that makes 720p as large as that, for that long."""
        def bring(player, hand):
            player.key("F2")
            player.look_until(VIDEO.shown, VIDEO.title, 20)
            hand.choose(VIDEO, "Algo", algorithm)
            hand.choose(VIDEO, "Spatial upscaling", option)
            time.sleep(seconds)

        self.each_way(clip("film_720p.mp4"), bring)

    def test_during_super_resolution(self):
        # Where the driver draws on the processor one picture takes up to 12 s.
        self.heavy(0, 3, 2.5)

    def test_during_denoising(self):
        self.heavy(1, 2, 2.5)

    def test_during_super_resolution_just_begun(self):
        self.heavy(0, 3, 0.3)

    def test_in_full_screen(self):
        # Classic SDL takes the keyboard from the window manager there.
        ways = (terminate,) if has_classic_sdl() else (terminate, close_window)
        self.each_way(clip("h264.mp4"), lambda player, hand: (
            player.key("F4"), player.look_until(ADVANCED.shown, ADVANCED.title, 20), player.key("F12"),
            time.sleep(0.3)), ways)  # fmt: skip


if __name__ == "__main__":
    unittest.main()
