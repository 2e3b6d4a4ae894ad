# SPDX-License-Identifier: MIT
"""What lies over the picture, and what is shown without one."""

import os
import re
import tempfile
import unittest

from screen_font import ScreenFont
from support import PlayerTestCase, clip, number_in, version, wait_for

FONT = ScreenFont()
WHITE = 0.9  # of the strokes, where a text is shown
ABSENT = 0.5
STATUS_ALPHABET = "AUDIOVEFPS:+-.[] 0123456789"


def brightest(picture, x0, y0, x1, y1):
    return max(picture.pixel(x, y)[0] for y in range(y0, y1) for x in range(x0, x1))


def label_brightness(picture):
    return brightest(picture, 45, 20, 250, 52)


class Overlays(PlayerTestCase):
    def film_with_subtitles(self, name, subtitles):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        film = os.path.join(folder.name, "film" + os.path.splitext(name)[1])
        os.symlink(clip(name), film)
        with open(os.path.join(folder.name, "film.srt"), "w", encoding="ascii") as file:
            file.write(subtitles)
        return film

    def test_label_appears_fades_and_goes(self):
        player = self.start(clip("h264.mp4"))
        player.look_until(lambda shot: FONT.shows(shot, "VYX Player v" + version(), 50, 50) > WHITE
                          and FONT.shows(shot, "High quality", 50, 50 + FONT.line_height) > WHITE,
                          "the banner")
        player.look_until(lambda shot: label_brightness(shot) <= 5, "the banner to go")
        volume = 0

        def fades():
            nonlocal volume
            volume += 1
            player.key("Up")
            text = f"Volume: +{volume}.00 dB"
            player.look_until(lambda shot: FONT.shows(shot, text, 50, 50) > WHITE, text)
            seen = []
            player.look_until(lambda shot: seen.append(label_brightness(shot)) or seen[-1] <= 5,
                              "the label to go")
            self.assertEqual(seen, sorted(seen, reverse=True), "it never gets brighter")
            return any(20 < value < 235 for value in seen)

        wait_for(fades, 60, "a look at the label while it fades")
        self.assertEqual(player.quit(), 0)

    def read_status(self, player, pattern):
        """The numbers in the status line once it is of this form."""
        found = []

        def matches(picture):
            found[:] = [re.fullmatch(pattern, FONT.read_right_aligned(picture, 750, 50, STATUS_ALPHABET))]
            return found[0]

        player.look_until(matches, f"a status line like {pattern}")
        return found[0].groups()

    def test_status_line(self):
        player = self.start(clip("tones_75s.mkv"))
        self.number(player)
        player.key("s")
        pattern = r"AUDIO:([+-]\d+\.\d{3}) VIDEO:([+-]\d+\.\d{3}) \[FPS:(\d{3})\]"

        def settled():
            audio, video, fps = map(float, self.read_status(player, pattern))
            self.assertEqual(video, 0, "the pictures are the master")
            return abs(audio) < 0.3 and fps

        wait_for(settled, 20, "sound near the pictures")
        readings = set()
        wait_for(lambda: readings.add(self.read_status(player, pattern)) or len(readings) > 2, 20,
                 "a line that changes")
        player.key("s")
        player.look_until(lambda shot: brightest(shot, 500, 20, 760, 52) <= 5, "no status line")
        self.assertEqual(player.quit(), 0)

    def test_time_counts_while_scanning(self):
        player = self.start(clip("tones_75s.mkv"))
        self.number(player)
        player.window()
        for key, ahead in (("Right", True), ("Left", False)):
            player.xdotool("keydown", key)
            times = []

            def counts(times=times):
                hours, minutes, seconds, ms = map(
                    int, self.read_status(player, r"(\d\d):(\d\d):(\d\d):(\d{3})"))
                at = ((hours * 60 + minutes) * 60 + seconds) * 1000 + ms
                if not times or times[-1] != at:
                    times.append(at)
                return len(times) >= 4

            wait_for(counts, 30, "times")
            player.xdotool("keyup", key)
            self.assertEqual(times[1:], sorted(times[1:], reverse=not ahead), key)
            self.assertGreater(abs(times[-1] - times[1]), 900, "steps of a second")
        player.look_until(lambda shot: brightest(shot, 500, 20, 760, 52) <= 5, "no time")
        self.assertEqual(player.quit(), 0)

    def test_subtitle_shows_at_its_times_and_after_seeks(self):
        film = self.film_with_subtitles(
            "h264.mp4", "1\n00:00:01,200 --> 00:00:02,200\n<i>First line</i>\nand second\n\n")
        player = self.start(film)
        # It stays until 2.7 s and fades in the last half second. Subtitles follow the newest packet, which is
        # up to 0.4 s ahead of the picture that is shown.
        zones = {"before": (0, 15), "during": (31, 44), "after": (70, 95)}

        def pass_through(what):
            seen = set()

            def look():
                picture = player.look()
                number = number_in(picture)
                for zone, (first, last) in zones.items():
                    if number is None or not first <= number <= last:
                        continue
                    seen.add(zone)
                    for line, text in enumerate(("First line", "and second")):
                        share = FONT.shows_centred(picture, text, line)
                        if zone == "during":
                            self.assertGreater(share, WHITE, f"{what}, picture {number}: {text}")
                        else:
                            self.assertLess(share, ABSENT, f"{what}, picture {number}: {text}")
                return len(seen) == len(zones)

            wait_for(look, 60, f"pictures before, with and after the subtitle, {what}")

        pass_through("from the start")
        self.await_number(player, lambda n: n > 85, 30, "the end")
        self.await_number(player, lambda n: n < 15, 30, "the beginning again")
        pass_through("after the film has started again")
        self.await_number(player, lambda n: n > 60, 30, "a place behind the subtitle")
        player.window()
        player.xdotool("keydown", "Left")
        self.await_number(player, lambda n: n < 15, 30, "the way back")
        player.xdotool("keyup", "Left")
        pass_through("after the way back")
        self.assertEqual(player.quit(), 0)

    def test_sound_alone_shows_moving_waveforms(self):
        for name in ("sound_pcm_stereo.wav", "sound_mp3_mono.mp3", "cover.mp3"):
            with self.subTest(name):
                player = self.start(clip(name))

                def waveform(picture):
                    return [(x, y) for y in range(30, 480, 3) for x in range(60, 740, 4)
                            if picture.pixel(x, y) == (0, 128, 255)]

                first = player.look_until(lambda shot: len(waveform(shot)) > 300, "a waveform")
                before = waveform(first)
                player.look_until(lambda shot: len(waveform(shot)) > 300 and waveform(shot) != before,
                                  "the waveform to move")
                self.assertEqual(first.pixel(20, 300), (5, 5, 5))
                # 600 units of its frame are 700 pixels: the name is larger than other text.
                self.assertGreater(brightest(first, 60, 480, 300, 520), 200, "the file's name")
                self.assertEqual(player.quit(), 0)

    def test_no_file_shows_a_band_of_noise_that_rolls(self):
        player = self.start()

        def rows(picture):
            """Rows of the field with noise."""
            return [y for y in range(100, 500)
                    if sum(picture.pixel(x, y)[0] > 12 for x in range(0, 800, 8)) > 20]

        # The band is 31 pixels high; its weakest rows show nothing.
        def whole(found):
            return 15 < len(found) <= 32 and 102 < found[0] and found[-1] < 497

        first = player.look_until(lambda shot: whole(rows(shot)), "the band", 30)
        self.assertEqual(first.pixel(400, 50), (5, 5, 5))
        self.assertEqual(first.pixel(400, 550), (5, 5, 5))
        free = [y for y in range(101, 499) if all(abs(y - row) > 40 for row in rows(first))]
        self.assertEqual(first.pixel(400, free[len(free) // 2]), (0, 0, 102))
        place = rows(first)[0]

        # Its weak edges come and go. It needs 12 s for the 600 pixels of a roll.
        def further_down(picture):
            found = rows(picture)
            return whole(found) and 20 < (found[0] - place) % 600 < 300

        player.look_until(further_down, "the band further down", 30)
        self.assertEqual(player.quit(), 0)


if __name__ == "__main__":
    unittest.main()
