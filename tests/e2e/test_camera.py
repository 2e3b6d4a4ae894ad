# SPDX-License-Identifier: MIT
"""A capture device, which a library loaded before the player makes up."""

import os
import time
import unittest

from support import PATIENCE, PlayerTestCase, number_in, wait_for

FAKE_CAMERA = os.environ["FAKE_CAMERA"]


class Camera(PlayerTestCase):
    def film(self, name, **more):
        preload = " ".join(filter(None, (os.environ.get("LD_PRELOAD"), FAKE_CAMERA)))
        return self.start(name, env={"LD_PRELOAD": preload, **more})

    def test_shows_what_the_camera_sees_at_once(self):
        player = self.film("cam:/dev/video0,video_size=320x180,framerate=25")
        self.await_number(player, lambda n: n > 3, 10, "pictures")
        start = time.monotonic()
        first = self.number(player)
        time.sleep(1.5)
        pictures = (time.monotonic() - start) * 25
        self.assertAlmostEqual(self.number(player) - first, pictures, delta=6 * PATIENCE)
        self.assertEqual(player.quit(), 0)

    def test_options_reach_the_device(self):
        player = self.film("cam:/dev/video0,video_size=640x480")
        # 4:3 fills the window.
        player.look_until(lambda shot: abs(shot.pixel(3, 590)[1] - 92) <= 3, "a full window")
        self.assertEqual(player.quit(), 0)

    def test_pause(self):
        player = self.film("cam:/dev/video0,video_size=320x180")
        self.await_number(player, lambda n: n > 3, 10, "pictures")
        player.key("space")
        self.picture_at_rest(player)
        at_rest = self.paused_number(player)
        time.sleep(0.7)
        self.assertEqual(self.number(player), at_rest)
        player.key("space")
        self.await_number(player, lambda n: n != at_rest, 10, "pictures again")
        self.assertEqual(player.quit(), 0)

    def test_device_that_is_pulled_out(self):
        player = self.film("cam:/dev/video0,video_size=320x180", FAKE_CAMERA_PICTURES="20")
        self.await_number(player, lambda n: n > 3, 10, "pictures")
        time.sleep(1.5)
        self.assertTrue(player.running())
        self.assertIn(number_in(player.look()), range(15, 21), "the last picture stays")
        self.assertEqual(player.quit(), 0)

    def test_device_that_is_not_there(self):
        player = self.film("cam:/dev/video7")
        player.window()
        wait_for(lambda: "Cannot display file /dev/video7!" in player.output(), 10, "the message")
        self.assertEqual(player.quit(), 0)


if __name__ == "__main__":
    unittest.main()
