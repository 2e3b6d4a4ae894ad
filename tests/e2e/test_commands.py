# SPDX-License-Identifier: MIT
"""Keys, mouse and window do what they should to a real film."""

import os
import shutil
import signal
import tempfile
import time
import unittest

from support import PATIENCE, PlayerTestCase, clip, fitted, wait_for


def is_red(r, g, b):
    return r > 200 and g < 60 and b < 60


class Commands(PlayerTestCase):
    def test_space_pauses_and_goes_on(self):
        player = self.start(clip("mpeg4.avi"))
        self.await_number(player, lambda n: 5 < n < 60, 10, "the film")
        player.key("space")
        at_rest = self.paused_number(player)
        time.sleep(1)
        self.assertEqual(self.number(player), at_rest)
        player.key("space")
        on = self.await_number(player, lambda n: n != at_rest, 5, "the film to go on")
        self.assertLess((on - at_rest) % 100, 40, "from where it stopped")
        self.assertEqual(player.quit(), 0)

    def test_arrows_scan(self):
        player = self.start(clip("mpeg4_nob.avi"))
        self.await_number(player, lambda n: 3 < n < 25, 10, "the beginning")
        player.window()
        start = time.monotonic()
        player.xdotool("keydown", "Right")
        far = self.await_number(player, lambda n: n > 70, 10, "the end")
        took = time.monotonic() - start
        player.xdotool("keyup", "Right")
        self.assertLess(took, (far - 25) / 25 * PATIENCE, "faster than playing")
        player.key("space")
        before = self.paused_number(player)
        player.key("space")
        player.xdotool("keydown", "Left")
        self.await_number(player, lambda n: n < 15, 10, "the way back")
        player.xdotool("keyup", "Left")
        self.assertGreater(before, 50)
        self.await_number(player, lambda n: 20 < n < 60, 10, "ordinary playback afterwards")
        self.assertEqual(player.quit(), 0)

    def test_full_screen_and_back(self):
        player = self.start(clip("h264.mp4"))
        self.number(player)
        player.key("F12")
        self.await_full_screen(player)
        player.key("F12")
        wait_for(lambda: player.geometry()[2:] == (800, 600), 5, "the window")
        first = self.number(player)
        self.await_number(player, lambda n: n != first, 5, "the film to go on")
        self.assertEqual(player.quit(), 0)

    def test_double_click_toggles_full_screen(self):
        player = self.start(clip("h264.mp4"))
        self.number(player)
        x, y, w, h = player.geometry()
        player.xdotool("mousemove", x + w // 2, y + h // 2, "click", "--repeat", 2, "--delay", 80, 1)
        self.await_full_screen(player)
        player.xdotool("click", 1)
        time.sleep(0.6)
        player.xdotool("click", 1)
        time.sleep(0.6)
        self.await_full_screen(player)  # two slow clicks are no double click
        self.assertEqual(player.quit(), 0)

    def test_demo_line_and_original(self):
        player = self.start(clip("h264.mp4"))
        self.number(player)

        def has_line(picture):
            return sum(is_red(*picture.pixel(401, y)) for y in range(170, 430)) > 250

        def has_none(picture):
            return sum(is_red(*picture.pixel(401, y)) for y in range(170, 430)) < 60

        player.look_until(has_none, "a film without a line")
        player.key("d")
        player.look_until(has_line, "a red line")
        player.key("o")
        player.look_until(has_none, "the original, which covers the line too")
        player.key("o")
        player.look_until(has_line, "the line again")
        player.key("d")
        player.look_until(has_none, "a film without a line")
        self.assertEqual(player.quit(), 0)

    def test_motion_vectors(self):
        player = self.start(clip("moving_mpeg4.avi"))
        plain = player.look_until(lambda shot: shot.count(lambda r, g, b: max(r, g, b) > 60) > 1000,
                                  "a picture").count(is_red)
        player.key("m")
        player.look_until(lambda shot: shot.count(is_red) > plain + 200, "red vectors")
        player.key("space", "m")
        player.look_until(lambda shot: shot.count(is_red) < plain + 100, "no vectors")
        self.assertEqual(player.quit(), 0)

    def test_quantisers(self):
        player = self.start(clip("qp30_h264.mp4"))
        self.number(player)
        player.key("space")
        before = self.picture_at_rest(player)
        player.key("q")
        during = player.look_until(lambda shot: shot.data != before.data, "red blocks")
        player.key("q")
        player.look_until(lambda shot: shot.data == before.data, "the picture as it was")
        # A quantiser of 30 covers the picture at 60 percent with red at (30 / 50)^4.
        for x, y in ((100, 350), (250, 350), (650, 350)):
            expected = [0.4 * value for value in before.pixel(x, y)]
            expected[0] += 0.6 * 255 * (30 / 50) ** 4
            for value, wanted in zip(during.pixel(x, y), expected):
                self.assertAlmostEqual(value, wanted, delta=4)
        self.assertEqual(player.quit(), 0)

    def test_resize(self):
        player = self.start(clip("h264.mp4"))
        self.number(player)
        for width, height in ((640, 400), (300, 600), (1000, 700), (64, 48), (800, 600)):
            with self.subTest(size=(width, height)):
                player.xdotool("windowsize", "--sync", player.window(), width, height)
                size = (width, height)
                wait_for(lambda size=size: player.geometry()[2:] == size, 5, "the new size")
                if width < 100:
                    continue
                first = self.number(player)
                self.await_number(player, lambda n, first=first: n != first, 5, "the film to go on")
                x, y, w, h = fitted(320, 180, width, height)
                spot = (x + w // 8, y + h - 4)
                picture = player.look_until(lambda shot, spot=spot: max(shot.pixel(*spot)) > 60,
                                            "a picture that reaches its lower edge")
                if y > 8:
                    self.assertEqual(picture.pixel(width // 2, y - 6), (5, 5, 5))
        self.assertEqual(player.quit(), 0)

    def test_other_keys_change_no_picture(self):
        player = self.start(clip("h264.mp4"))
        self.number(player)
        player.key("v", "v", "v", "s", "i", "l", "l", "Up", "Down", "F1", "F2", "F3", "F4", "x")
        first = self.number(player)
        self.await_number(player, lambda n: n != first, 5, "the film to go on")
        self.assertEqual(player.quit(), 0)

    def test_ways_to_quit(self):
        player = self.start(clip("h264.mp4"))
        self.number(player)
        player.process.send_signal(signal.SIGTERM)
        self.assertEqual(player.wait(3), 0)
        player = self.start(clip("h264.mp4"))
        player.window()
        player.process.send_signal(signal.SIGINT)
        self.assertEqual(player.wait(3), 0)
        player = self.start(clip("h264.mp4"))
        self.number(player)
        player.key("space")
        self.assertEqual(player.quit(), 0)

    def test_the_player_ends_with_its_window(self):
        player = self.start(clip("h264.mp4"))
        self.number(player)
        player.xdotool("windowclose", player.window())  # destroyed, not asked to close
        self.assertEqual(player.wait(), 1)
        self.assertIn(" - exiting", player.output())

    def test_without_loop_the_next_film_of_the_folder_plays(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("q7_mpeg4.avi", "aspect_anamorphic.mkv"):
                shutil.copy(clip(name), folder)
            player = self.start(os.path.join(folder, "q7_mpeg4.avi"))
            self.number(player)
            before = player.look().data
            player.key("l")
            wait_for(lambda: "aspect_anamorphic" in player.title(), 20, "the next film")
            player.look_until(lambda shot: shot.data != before, "its picture")
            self.assertEqual(player.quit(), 0)


if __name__ == "__main__":
    unittest.main()
