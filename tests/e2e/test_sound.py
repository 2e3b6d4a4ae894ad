# SPDX-License-Identifier: MIT
"""What is heard: the player's sound, recorded by SDL's disk driver, against ffmpeg's decode of the file."""

import array
import os
import statistics
import subprocess
import tempfile
import unittest

from support import PlayerTestCase, clip, has_classic_sdl, wait_for

WINDOW = 512  # samples that have to agree for two places to be the same


def decode(path, *filters):
    """A file's sound as ffmpeg decodes it: interleaved 16-bit samples, two channels."""
    data = subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-i", path, "-map", "0:a:0",
                           *filters, "-f", "s16le", "-"], check=True, stdout=subprocess.PIPE).stdout
    return array.array("h", data)


def both_sides(mono):
    stereo = array.array("h", bytes(4 * len(mono)))
    stereo[::2] = stereo[1::2] = mono
    return stereo


def close(a, b, step):
    return all(abs(x - y) <= step for x, y in zip(a, b))


def find(part, whole, start, end, step):
    """The first even place of `whole` from `start` to `end` that `part` agrees with; None without one."""
    # Two samples far apart rule out nearly everything.
    first, last = part[0], part[-1]
    for at in range(start & ~1, min(end, len(whole) - len(part) + 1), 2):
        if (abs(whole[at] - first) <= step and abs(whole[at + len(part) - 1] - last) <= step
                and close(part, whole[at : at + len(part)], step)):
            return at
    return None


def first_sound(samples):
    return next((i & ~1 for i, sample in enumerate(samples) if abs(sample) > 200), len(samples))


def level(samples):
    """The median RMS of a twentieth of a second, in which both tones of the clip have whole periods."""
    def rms(at):
        return (sum(sample * sample for sample in samples[at : at + 4800]) / 4800) ** 0.5
    return statistics.median(rms(at) for at in range(0, len(samples) - 4799, 4800))


class Sound(PlayerTestCase):
    def start_recording(self, path, output):
        """A player whose sound goes to a file, and a function that tells how many samples are there."""
        player = self.start(path, env={"SDL_AUDIODRIVER": "disk", "SDL_DISKAUDIOFILE": output})
        return player, lambda: os.path.getsize(output) // 2 if os.path.exists(output) else 0

    def recorded(self, output):
        with open(output, "rb") as file:
            data = file.read()
        return array.array("h", data[: len(data) & ~3])

    def record(self, path, until):
        """Plays a file until `until(player, size)` returns; the samples."""
        with tempfile.TemporaryDirectory() as folder:
            output = os.path.join(folder, "sound.raw")
            player, size = self.start_recording(path, output)
            until(player, size)
            self.assertEqual(player.quit(), 0)
            return self.recorded(output)

    def record_samples(self, path, count):
        return self.record(path, lambda player, size: wait_for(lambda: size() >= count, 30, "sound"))

    def compare_clips(self, names, decoded, step):
        """Some files, each in a player of its own at the same time, against `decoded(path)`."""
        with tempfile.TemporaryDirectory() as folder:
            started = []
            for name in names:
                expected = decoded(clip(name))
                output = os.path.join(folder, name)
                started.append((name, expected, output, *self.start_recording(clip(name), output)))
            for name, expected, output, player, size in started:
                wait_for(lambda: size() >= len(expected) + 48000, 60, name)
            for name, expected, output, player, size in started:
                player.process.terminate()
                self.assertEqual(player.wait(), 0)
                with self.subTest(name):
                    self.assert_equal_sound(self.recorded(output), expected, step, name)

    def assert_equal_sound(self, heard, expected, step, what):
        """The first of `expected` that is not silence, and all after it, are in `heard` at one place."""
        begin = first_sound(expected)
        part = expected[begin : begin + WINDOW]
        at = find(part, heard, max(0, first_sound(heard) - 2 * WINDOW), len(heard), step)
        self.assertIsNotNone(at, f"{what}: the beginning is not there")
        length = min(len(expected) - begin, len(heard) - at)
        self.assertGreaterEqual(length, 0.9 * (len(expected) - begin), what)
        worst = max(abs(x - y) for x, y in zip(heard[at : at + length], expected[begin : begin + length]))
        self.assertLessEqual(worst, step, what)

    def test_mono_and_stereo_files_sound_as_they_are(self):
        # One step: floats are cut to 16 bits here and rounded there. Measured: 1, and 0 for FLAC and PCM.
        plain = ["-af", "aresample=dither_method=none", "-c:a", "pcm_s16le"]
        for layout in ("mono", "stereo"):
            def decoded(path):
                samples = decode(path, *plain)
                return both_sides(samples) if layout == "mono" else samples

            self.compare_clips([f"sound_{codec}_{layout}.{extension}" for codec, extension in
                                (("aac", "m4a"), ("mp3", "mp3"), ("vorbis", "ogg"), ("opus", "opus"),
                                 ("ac3", "ac3"))], decoded, 1)
            self.compare_clips([f"sound_flac_{layout}.flac", f"sound_pcm_{layout}.wav"], decoded, 0)

    def test_surround_is_mixed_down(self):
        # The channels are cut to 16 bits first. Then front goes to its side as it is, centre and back by
        # 1/sqrt(2), low tones not at all; all of it is divided by the sum, so that nothing exceeds full scale.
        # Measured: 1.
        cut = "|".join(f"trunc(val({channel})*32768)/32768" for channel in range(6))
        mix = (f"aformat=dblp,aeval='{cut}':c=same,"
               "pan=stereo|FL=0.414213562*c0+0.292893219*c2+0.292893219*c4"
               "|FR=0.414213562*c1+0.292893219*c2+0.292893219*c5")
        self.compare_clips([f"sound_{codec}_5.1.{extension}" for codec, extension in
                            (("aac", "m4a"), ("vorbis", "ogg"), ("opus", "opus"), ("flac", "flac"),
                             ("pcm", "wav"), ("ac3", "ac3"))],
                           lambda path: decode(path, "-af", mix + ",aresample=dither_method=none",
                                               "-c:a", "pcm_s16le"), 1)

    def test_a_film_sounds_as_its_file_between_corrections(self):
        # Where the device's pace is not that of the pictures, sound is corrected by some milliseconds now and
        # then; the rest is the file's sound, in its order.
        film = decode(clip("chirps.mkv"))
        heard = self.record_samples(clip("chirps.mkv"), len(film))
        begin = first_sound(heard)
        same = place = 0
        pieces = range(begin, min(begin + len(film) - 48000, len(heard)) - WINDOW, WINDOW)
        for at in pieces:
            part = heard[at : at + WINDOW]
            found = find(part, film, place, place + 2, 0)
            if found is None:  # a correction is shorter than a second
                found = find(part, film, max(0, place - 96000), place + 96000, 0)
            same += found is not None
            place = (place if found is None else found) + WINDOW
        # Measured: 0.97 to 0.99; the more often pictures are late, the more often sound is corrected.
        self.assertGreater(same / len(pieces), 0.5)

    def test_volume_keys_change_the_level(self):
        presses = 3

        def until(player, size):
            player.window()
            wait_for(lambda: size() > 48000, 30, "sound")
            player.key(*["Down"] * presses)
            start = size()
            wait_for(lambda: size() > start + 96000, 30, "more sound")

        heard = self.record(clip("tones_75s.mkv"), until)
        begin = first_sound(heard)
        before = level(heard[begin + 4800 : begin + 33600])
        after = level(heard[-48000:])
        # A decibel of the setting is a tenth of a power of ten. Measured: 0.500 to 0.503 of 0.501.
        self.assertAlmostEqual(after / before, 10 ** (-0.1 * presses), delta=0.01)

    def test_pause_is_silent(self):
        def until(player, size):
            player.window()
            wait_for(lambda: size() > 48000, 30, "sound")
            player.key("space")
            start = size()
            wait_for(lambda: size() > start + 192000, 30, "silence")
            player.key("space")
            start = size()
            wait_for(lambda: size() > start + 96000, 30, "sound again")

        heard = self.record(clip("tones_75s.mkv"), until)
        begin = first_sound(heard)
        quiet = [i for i in range(begin, len(heard) - 9600, 9600) if not any(heard[i : i + 9600])]
        self.assertGreater(len(quiet), 10)
        self.assertEqual(quiet, list(range(quiet[0], quiet[-1] + 1, 9600)), "one pause")
        self.assertGreater(level(heard[-9600:]), 5000)

    def test_a_file_without_a_picture_is_heard_to_its_end_before_it_starts_again(self):
        name = clip("sound_pcm_stereo.wav")
        expected = decode(name)
        heard = self.record_samples(name, 2 * len(expected) + 96000)
        begin = find(expected[400 : 400 + WINDOW], heard, 0, len(heard), 0)
        self.assertIsNotNone(begin)
        end = begin - 400 + len(expected)
        self.assertEqual(heard[begin:end], expected[400:])
        again = find(expected[400 : 400 + WINDOW], heard, end, len(heard), 0)
        self.assertIsNotNone(again, "it starts again")
        self.assertFalse(any(heard[end : again - 400]), "silence between")
        self.assertEqual(heard[again : again + 48000], expected[400:48400])

    def test_without_a_sound_device(self):
        film = self.start(clip("h264.mp4"), env={"SDL_AUDIODRIVER": "nothing"})
        first = self.number(film)
        self.await_number(film, lambda number: number != first, 10, "another picture")
        complaint = "SDL_OpenAudio: .*\n" if has_classic_sdl() else "SDL_OpenAudio: .+\n"  # that gives no reason
        self.assertRegex(film.output(), complaint)
        self.assertEqual(film.quit(), 0)
        sound = self.start(clip("tone.wav"), env={"SDL_AUDIODRIVER": "nothing"})
        wait_for(lambda: "Cannot display file" in sound.output(), 20, "the failure message")
        self.assertRegex(sound.output(), complaint)
        self.assertEqual(sound.quit(), 0)


if __name__ == "__main__":
    unittest.main()
