# SPDX-License-Identifier: MIT
"""What each control of the settings forms does to the picture or to the sound."""

import array
import cmath
import math
import os
import statistics
import tempfile
import time
import unittest

from films import BANDS, Films
from hand import ADVANCED, AUDIO, FONT, VIDEO, Hand, to_window
from support import PlayerTestCase, wait_for

SECOND = 2 * 48000  # samples of both channels
OUTSIDE = range(90, 130)  # rows of the picture above every form


def mean(values):
    values = list(values)
    return sum(values) / len(values)


def level(picture):
    return mean(picture.brightness(x, y) for y in OUTSIDE for x in range(20, 780, 3))


def contrast(picture):
    average = level(picture)
    return mean((picture.brightness(x, y) - average) ** 2 for y in OUTSIDE for x in range(20, 780, 3)) ** 0.5


def detail(picture):
    """Mean difference of neighbours: sharpening raises it, smoothing lowers it."""
    return mean(abs(picture.brightness(x, y) - picture.brightness(x + 2, y))
                for y in OUTSIDE for x in range(20, 780, 3))


def rows(picture):
    return picture.data[OUTSIDE[0] * picture.width * 3 : OUTSIDE[-1] * picture.width * 3]


def differ(now, before):
    """Whether two parts of pictures are not the same. Measured: 0 for the same still film and settings, 0.11 at
    least (3x super-resolution, above the form, where the film is smooth) for others."""
    return mean(abs(a - b) for a, b in zip(now[::7], before[::7])) > 0.03


def tone(samples, frequency):
    """The amplitude of a frequency in one channel: the median of tenths of a second, since sound leaps where it
    is brought together with the pictures."""
    turn = cmath.exp(-2j * math.pi * frequency / 48000)
    found = []
    for start in range(0, len(samples) - 4799, 4800):
        phase, total = 1, 0
        for sample in samples[start : start + 4800]:
            total += sample * phase
            phase *= turn
        found.append(2 * abs(total) / 4800)
    return statistics.median(found)


def rms(samples):
    return (sum(sample * sample for sample in samples) / len(samples)) ** 0.5


class Controls(PlayerTestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.films = Films()

    @classmethod
    def tearDownClass(cls):
        cls.films.close()
        super().tearDownClass()

    def open_form(self, film, form, key, **options):
        player = self.start(self.films[film], **options)
        player.window()
        hand = Hand(player)
        player.key(key)
        player.look_until(form.shown, form.title, 20)
        # Nothing but the form over the picture: the banner goes after some seconds.
        player.look_until(lambda shot: FONT.shows(shot, "VYX Player", 50, 50) < 0.2, "no banner", 20)
        return player, hand

    def changes(self, player, hand, action, measure, condition, what):
        """Does something at the mouse; what is measured in the picture has to change as `condition` wants."""
        before = measure(player.look())
        action()
        player.look_until(lambda shot: condition(measure(shot), before), what, 20)

    def test_sliders_of_the_picture(self):
        player, hand = self.open_form("still.mp4", VIDEO, "F2")
        for name, share, measure, condition in (
                ("Brightness", 0.7, level, lambda now, before: now > before + 0.1),
                ("Brightness", 0.3, level, lambda now, before: now < before - 0.2),
                ("Brightness", 0.49, level, lambda now, before: now > before + 0.1),
                ("Contrast", 0.3, contrast, lambda now, before: now < 0.8 * before),
                ("Contrast", 0.49, contrast, lambda now, before: now > 1.2 * before),
                ("Sharpness", 1, detail, lambda now, before: now > 1.1 * before),
                ("Sharpness", 0, detail, lambda now, before: now < 0.9 * before)):
            self.changes(player, hand, lambda name=name, share=share: hand.set_slider(VIDEO, name, share),
                         measure, condition, f"{name} at {share}")
        self.assertEqual(player.quit(), 0)

    def test_filters_of_the_picture(self):
        player, hand = self.open_form("still.mp4", VIDEO, "F2")
        for name, index in (("Algo", 1), ("Algo", 0), ("Spatial upscaling", 1), ("Spatial upscaling", 0), ("Algo", 1)):
            self.changes(player, hand, lambda name=name, index=index: hand.choose(VIDEO, name, index), rows, differ,
                         f"{name}: {index}")
        hand.click(VIDEO.control("Advanced").middle)
        player.look_until(ADVANCED.shown, ADVANCED.title)
        for share in (0.02, 0.9):
            self.changes(player, hand,
                         lambda share=share: hand.set_slider(ADVANCED, "Denoising/deblocking level", share),
                         rows, differ, f"a picture denoised at {share}")
        for name, index in (("Upscaling algorithm", 0), ("Upscaling algorithm", 1), ("Upscaling algorithm", 0),
                            ("MPEG4/H264 inloop deblocking filter", 0), ("MPEG4/H264 inloop deblocking filter", 1)):
            self.changes(player, hand, lambda name=name, index=index: hand.choose(ADVANCED, name, index), rows, differ,
                         f"{name}: {index}")
        self.assertEqual(player.quit(), 0)

    def test_zoom_demo_and_status(self):
        player, hand = self.open_form("still.mp4", VIDEO, "F2")

        def top(picture):
            """The first row of the picture in the window's middle."""
            return next((y for y in range(0, 300) if max(picture.pixel(700, y)) > 20), None)

        # 320 x 180: fitted it is 450 high, 180 at 1x, 360 at 2x, and more than the window cropped or at 4x.
        for index, first, near in ((1, 0, 2), (0, 75, 3), (4, 0, 2), (0, 75, 3)):
            hand.choose(VIDEO, "Spatial zoom", index)
            player.look_until(lambda shot, first=first, near=near: top(shot) is not None
                              and abs(top(shot) - first) <= near, f"zoom {index}", 20)
        hand.choose(VIDEO, "Spatial zoom", 2)  # as wide as 320 pixels, all of it under the form
        player.look_until(lambda shot: all(max(shot.pixel(700, y)) < 20 for y in range(100, 500, 20)), "zoom 1x", 20)
        hand.choose(VIDEO, "Spatial zoom", 3)
        player.look_until(lambda shot: all(max(shot.pixel(724, y)) < 20 for y in range(130, 470, 20))
                          and any(max(shot.pixel(715, y)) > 20 for y in range(130, 470, 20)), "zoom 2x", 20)
        hand.choose(VIDEO, "Spatial zoom", 0)
        player.look_until(lambda shot: top(shot) == 75 or top(shot) == 76, "the fitted picture", 20)

        def red(picture):
            return sum(r > 200 and g < 60 and b < 60 for r, g, b in (picture.pixel(401, y) for y in OUTSIDE))

        hand.choose(VIDEO, "Demo mode", 1)
        player.look_until(lambda shot: red(shot) > 30, "the red line")
        hand.choose(VIDEO, "Demo mode", 0)
        player.look_until(lambda shot: red(shot) == 0, "no red line")
        hand.choose(VIDEO, "Status", 1)
        bracket = 750 - FONT.width("]")
        player.look_until(lambda shot: FONT.shows(shot, "]", bracket, 50) > 0.9, "the status line")
        hand.choose(VIDEO, "Status", 0)
        player.look_until(lambda shot: FONT.shows(shot, "]", bracket, 50) < 0.2, "no status line")
        for index, text in ((0, "ON"), (1, "ADAPTIVE"), (2, "OFF")):  # the key goes on from what was chosen
            hand.choose(VIDEO, "VSync", index)
            self.await_choice(player, VIDEO, "VSync", index)
            player.key("v")
            player.look_until(lambda shot, text=text: FONT.shows(shot, "VSync " + text, 50, 50) > 0.9, text)
        self.assertEqual(player.quit(), 0)

    @staticmethod
    def await_choice(player, form, name, index):
        """Waits until an option is red."""
        def chosen(picture):
            x, y = to_window(picture, *form.option(name, index))
            r, g, b = picture.pixel(int(x), int(y) - 9)
            return r > 90 and g < 60 and b < 60

        player.look_until(chosen, f"option {index} of {name}")

    def test_offloading_changes_no_picture(self):
        player, hand = self.open_form("still.mp4", ADVANCED, "F4")
        before = level(player.look())
        for index in (0, 1):
            hand.choose(ADVANCED, "Offload decoding tasks to GPU", index)
            self.await_choice(player, ADVANCED, "Offload decoding tasks to GPU", index)
            # Measured: the same to 0.001.
            self.assertAlmostEqual(level(player.look()), before, delta=0.03)
        self.assertEqual(player.quit(), 0)

    # Between pictures

    def test_a_large_picture_in_a_small_window_is_whole_again_in_full_screen(self):
        player, hand = self.open_form("stripes_1080p.mp4", VIDEO, "F2")
        hand.choose(VIDEO, "Temporal upscaling", 0)
        player.key("F2")

        def edges(picture):
            """How many neighbours in the middle row differ, where the window is before and in full screen."""
            row = [picture.brightness(x, picture.height // 2)
                   for x in range(picture.width // 2 - 300, picture.width // 2 + 300)]
            return sum(abs(left - right) > 0.1 for left, right in zip(row, row[1:]))

        # 800 x 450 have no room for stripes; what single pixels would catch of them is no pattern of the film.
        player.look_until(lambda shot: not VIDEO.shown(shot) and edges(shot) == 0, "even grey")
        player.key("space")
        time.sleep(0.5)
        player.key("F12")
        # 1280 x 720 show some of them, although the film stands still.
        wait_for(lambda: edges(player.look_at_screen()) > 100, 10, "stripes")
        self.assertEqual(player.quit(), 0)

    def test_interpolation(self):
        player, hand = self.open_form("clock.avi", ADVANCED, "F4")
        # What the methods do between two pictures is a matter for tests that choose the moment: the window shows
        # each moment for some milliseconds only.
        for index in (0, 2, 1):
            hand.choose(ADVANCED, "Motion interpolation method", index)
            self.await_choice(player, ADVANCED, "Motion interpolation method", index)
        hand.click(ADVANCED.control("Close").middle)
        player.look_until(lambda shot: not ADVANCED.shown(shot), "no form")
        # Measured: 21 and 99. Every picture once, and several between two.
        for index, wanted in ((0, lambda rate: 10 < rate < 28), (4, lambda rate: rate > 32)):
            player.key("F2")
            player.look_until(VIDEO.shown, VIDEO.title)
            hand.choose(VIDEO, "Temporal upscaling", index)
            self.await_choice(player, VIDEO, "Temporal upscaling", index)
            hand.choose(VIDEO, "Status", 1)
            hand.click(VIDEO.control("Close").middle)
            player.look_until(lambda shot: not VIDEO.shown(shot), "no form")
            self.await_frame_rate(player, wanted)
        self.assertEqual(player.quit(), 0)

    def await_frame_rate(self, player, condition):
        """Waits until the number in the status line is as wanted for 2 s: it is a mean of some 30 redraws, and
        with a form open they follow each other as fast as they can."""
        since = None

        def holds(picture):
            nonlocal since
            text = FONT.read_right_aligned(picture, 750, 50, "AUDIOVEFPS:+-.[] 0123456789")
            if "[FPS:" in text:
                as_wanted = condition(int(text.split("[FPS:")[1][:3]))
                since = (since or time.monotonic()) if as_wanted else None
            return since and time.monotonic() - since > 2

        player.look_until(holds, "the rate", 30)

    # Sound

    def listen(self, film, settings, wait=SECOND // 2):
        """A second of sound, (left, right, when it began by the clock), with the settings as they are, and after
        each of `settings`: (slider, share)."""
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "sound.raw")
            player, hand = self.open_form(film, AUDIO, "F3",
                                          env={"SDL_AUDIODRIVER": "disk", "SDL_DISKAUDIOFILE": path})

            def size():
                return os.path.getsize(path) // 2

            def after(start, length):
                # The driver's pace is not quite that of the clock, by which the film plays.
                wait_for(lambda: size() >= start, 30, "sound")
                begun = time.monotonic() - (size() - start) / SECOND
                wait_for(lambda: size() >= start + length, 30, "a second of sound")
                return start, begun

            places = [after(size(), SECOND)]
            for name, share in settings:
                hand.set_slider(AUDIO, name, share)
                # What is mixed already has the old setting.
                places.append(after(size() + wait, SECOND))
            self.assertEqual(player.quit(), 0)
            with open(path, "rb") as file:
                data = file.read()
            samples = array.array("h", data[: len(data) & ~3])
            return [(samples[at & ~1 : (at & ~1) + SECOND : 2], samples[at & ~1 | 1 : (at & ~1) + SECOND : 2],
                     begun) for at, begun in places]

    def test_volume_and_balance(self):
        plain, quiet, left, right = self.listen("tones.avi", [("Volume", 0.6), ("Balance", 0), ("Balance", 1)])
        self.assertAlmostEqual(rms(quiet[0]) / rms(plain[0]), 0.1, delta=0.02)  # 10 dB of power
        self.assertGreater(rms(left[0]), 5 * rms(left[1]))
        self.assertGreater(rms(right[1]), 5 * rms(right[0]))

    def test_equaliser(self):
        names = ("Bass", "Mid", "Treble")
        settings = [setting for name in names for setting in ((name, 0.2), (name, 0.8))]
        heard = self.listen("tones.avi", settings)
        plain = [tone(heard[0][0], frequency) for frequency in BANDS]
        for band, name in enumerate(names):
            low = [tone(heard[1 + 2 * band][0], frequency) for frequency in BANDS]
            ratios = [now / before for now, before in zip(low, plain)]
            # The bands overlap; the one at the other end keeps its tone.
            # Measured: 0.002, 0.13 and 0.03; the other end 1.000 and 1.002.
            self.assertLess(ratios[band], 0.3, ratios)
            if band != 1:
                self.assertGreater(ratios[2 - band], 0.8, ratios)

    def test_stereo_and_noise(self):
        narrow, wide = self.listen("tones.avi", [("Enhance stereo", 0), ("Enhance stereo", 1)])[1:]

        def side_share(heard):
            side = rms([a - b for a, b in zip(*heard[:2])])
            return side / rms([a + b for a, b in zip(*heard[:2])])

        # Measured: 0 and 0.76.
        self.assertGreater(side_share(wide), 0.3 + side_share(narrow))
        plain, clean = self.listen("tones.avi", [("Noise reduction", 0.5)])
        noise = [rms([a - b for a, b in zip(*heard[:2])]) for heard in (plain, clean)]
        # Measured: 0 of 2,430, at half of the range.
        self.assertLess(noise[1], 0.1 * noise[0])

    def test_latency_moves_the_sound(self):
        # The pitch rises by 20 Hz in a second: it tells which moment of the film is heard.
        heard = self.listen("rising.avi", [("Audio latency", 0.9), ("Audio latency", 0.5)], 6 * SECOND)

        def pitch(samples):
            crossings = [i for i in range(1, len(samples)) if samples[i - 1] < 0 <= samples[i]]
            return (len(crossings) - 1) * 48000 / (crossings[-1] - crossings[0])

        places = [pitch(left) / 20 - begun for left, _, begun in heard]
        moved = [later - before for before, later in zip(places, places[1:])]
        # Measured: 0.35 to 0.43 and -0.34 to -0.42, with a load of 10 on two cores.
        self.assertAlmostEqual(moved[0], 0.4, delta=0.2)
        self.assertAlmostEqual(moved[1], -0.4, delta=0.2)


if __name__ == "__main__":
    unittest.main()
