# SPDX-License-Identifier: MIT
"""A film plays: the right picture at the right time in the right place."""

import os
import tempfile
import time
import unittest

from support import (CAMERA, FILM, PATIENCE, Display, Player, PlayerTestCase, clip, compare_with_film, fitted, version,
                     wait_for)


class Playback(PlayerTestCase):
    def test_real_films(self):
        # Measured: 30.1 and 29.7 dB by ffmpeg's conversion, which keeps luma 8 steps brighter; 35.9 and
        # 48.1 dB by the player's own, where the rest is the way of scaling.
        for film, size in ((FILM, (1280, 720)), (CAMERA, (1920, 1080))):
            with self.subTest(film):
                player = self.start(film)
                caption = f"VYX Video Player - [{os.path.basename(film)}]"
                wait_for(lambda: player.title() == caption, 5, "the caption")
                frame, plain, exact = self.film_frame_on_screen(player, film, size)
                self.assertGreaterEqual(plain, 28.0, f"frame {frame}")
                self.assertGreaterEqual(exact, 34.0, f"frame {frame}")
                self.assertEqual(player.quit(), 0)
                self.assertIn(f"VYX Player v{version()}\nHigh quality media player\n", player.output())

    def film_frame_on_screen(self, player, film, size):
        """Pauses the film somewhere after its first frames; which one is shown, and how well."""
        found = []

        def pause_later():
            time.sleep(0.6)
            player.key("space")
            with tempfile.TemporaryDirectory() as folder:
                shot = os.path.join(folder, "shot.png")
                self.picture_at_rest(player)
                picture = player.look(save_as=shot)
                area = fitted(*size, picture.width, picture.height)
                found[:] = compare_with_film(film, shot, area)
            if found[0] > 5:
                return True
            player.key("space")
            return False

        wait_for(pause_later, 20, "a frame after the fifth")
        return found

    @unittest.skipIf(PATIENCE > 1, "sanitizers take processor time of their own")
    def test_a_paused_picture_costs_next_to_nothing(self):
        player = self.start(clip("film_720p.mp4"))
        player.key("space")
        self.picture_at_rest(player)
        before = player.look()
        time.sleep(5.5)  # redraws go on for 5 s, since things may move
        start = player.processor_time()
        time.sleep(5)
        # Measured 2.3 to 2.9 % of a core on a busy machine; 20 % where every refresh draws.
        self.assertLess((player.processor_time() - start) / 5, 0.06)
        player.key("i")
        # The label of the key.
        player.look_until(lambda shot: sum(shot.pixel(x, y) != before.pixel(x, y)
                                           for x in range(40, 400) for y in range(20, 60)) > 50,
                          "something new at the upper left")
        self.assertEqual(player.quit(), 0)

    def test_an_icon_plays_on_and_draws_nothing(self):
        player = self.start(clip("h264.mp4"))
        before = self.number(player)
        window, place = player.window(), player.geometry()
        player.xdotool("windowminimize", "--sync", window)
        time.sleep(0.5)
        start = player.processor_time("llvmpipe")
        time.sleep(1.5)
        self.assertEqual(player.processor_time("llvmpipe"), start, "the driver draws")
        player.xdotool("windowmap", "--sync", window)
        wait_for(lambda: player.geometry() == place, 5, "the window where it was")
        # The film is as far as it would have been.
        self.await_number(player, lambda n: n > before + 40, 5, "a later picture")
        self.assertEqual(player.quit(), 0)

    def test_borders_are_dark_and_the_picture_is_centred(self):
        player = self.start(clip("h264.mp4"))
        self.number(player)
        x, y, w, h = fitted(320, 180, 800, 600)
        picture = player.look_until(lambda shot: max(shot.pixel(20, y + h - 5)) > 100,
                                    "a picture that reaches its lower edge")
        self.assertEqual((picture.width, picture.height), (800, 600))
        for row in (5, y - 3, y + h + 3, 595):
            self.assertEqual(picture.pixel(400, row), (5, 5, 5))
        self.assertEqual(player.quit(), 0)

    def test_plays_in_real_time(self):
        player = self.start(clip("mpeg4.avi"))
        # Two readings more than a second apart, in one run of the four seconds.
        first = self.await_number(player, lambda n: n < 20, 10, "the beginning")
        start = time.monotonic()
        time.sleep(1.5)
        second = self.number(player)
        pictures = (time.monotonic() - start) * 25
        # Taking a picture of the window takes some hundredths of a second itself.
        self.assertAlmostEqual(second - first, pictures, delta=6 * PATIENCE)
        self.await_number(player, lambda n: n < second, 20, "the loop")

    def test_formats(self):
        for name in ("mpeg1.mpg", "mpeg2.mpg", "mpeg4_qpel.mp4", "h264.mkv", "hevc.mkv", "vp9.webm",
                     "mjpeg.avi", "ten_bit.mkv", "chroma_422.mkv", "rgb.mkv", "grey.mkv", "raw.h264"):
            with self.subTest(name):
                player = self.start(clip(name))
                first = self.number(player)
                self.await_number(player, lambda n: n != first, 10, "another picture")
                self.assertEqual(player.quit(), 0)

    def test_odd_sizes(self):
        for name in ("odd_853x481.mkv", "size_1x1.mkv", "size_16x8.mkv", "wide_4000.mp4",
                     "aspect_anamorphic.mkv", "size_change.ts"):
            with self.subTest(name):
                player = self.start(clip(name))
                player.look_until(
                    lambda shot: shot.count(lambda r, g, b: max(r, g, b) > 60, step=8) > 100,
                    "a picture")
                self.assertEqual(player.quit(), 0)

    def test_anamorphic_picture_has_its_shape(self):
        # 360 x 288 with pixels of 16:15 is 4:3, which fills 800 x 600.
        player = self.start(clip("aspect_anamorphic.mkv"))
        player.look_until(
            lambda shot: max(shot.pixel(2, 300)) > 60 and max(shot.pixel(797, 300)) > 60,
            "a picture from side to side")
        self.assertEqual(player.quit(), 0)

    def test_no_file_opens_an_empty_window(self):
        player = self.start()
        self.assertEqual(player.title(), "VYX Video Player")
        player.look_until(lambda shot: 80 < shot.pixel(400, 300)[2] < 140 and shot.pixel(400, 20) == (5, 5, 5),
                          "a blue field")
        self.assertEqual(player.quit(), 0)

    def test_bad_files_leave_the_player_running(self):
        for name in ("text.mp4", "empty.mp4", "truncated.mp4"):
            with self.subTest(name):
                player = self.start(clip(name))
                message = (f"Cannot display file {clip(name)}!\nThe file format is either not supported or\n"
                           "the content can not be read.")
                wait_for(lambda message=message: message in player.output(), 10, message)
                self.assertTrue(player.running())
                player.key("d", "space", "Right")
                self.assertEqual(player.quit(), 0)

    def test_display_that_goes_away_ends_the_player(self):
        for _ in range(8):
            display = Display()
            player = Player(display, clip("h264.mp4"))
            self.addCleanup(player.close)
            try:
                self.await_number(player, lambda n: n > 2, 10, "the film")
                display.server.kill()
                # Not by a signal, whatever its threads are doing.
                self.assertEqual(player.wait(10), 1)
                self.assertIn(f"Connection to the display {display.name} is broken", player.output())
            finally:
                display.close()

    def test_options(self):
        player = self.start("--demo", "--contrast", "20", "--preload", clip("h264.mp4"))
        self.await_red_line(player)
        self.assertEqual(player.quit(), 0)

    def await_red_line(self, player):
        def has_line(shot):
            middle = (shot.pixel(401, y) for y in range(160, 500))
            return sum(r > 180 and g < 90 for r, g, _ in middle) > 300

        player.look_until(has_line, "a red line in the middle")

    def test_full_screen_option(self):
        player = self.start("--fullscreen", clip("h264.mp4"))
        self.await_full_screen(player)
        self.assertEqual(player.quit(), 0)


if __name__ == "__main__":
    unittest.main()
