# SPDX-License-Identifier: MIT
"""Calls fail that never should. The player says so, shows or plays less, goes on or ends with its status; it
neither hangs nor crashes."""

import os
import tempfile
import time
import unittest

from support import PATIENCE, PlayerTestCase, clip, has_classic_sdl, preloaded, wait_for

FAULTS = os.environ["FAULTS"]
SANITIZED = PATIENCE > 1  # sanitizers keep their own allocator: of memory, only what C++ asks for fails
CANNOT_DISPLAY = "\nThe file format is either not supported or\nthe content can not be read.\n"
# Who starts threads for SDL.
SDL = "libSDL-1.2" if has_classic_sdl() else "libSDL2-2.0"
FFMPEG_FILES, FFMPEG_MEMORY = "libavformat", "libavutil"


def grey(picture):
    """Whether nothing is in the picture but the colour of an empty window."""
    return picture.count(lambda r, g, b: max(r, g, b) > 40, step=8) == 0


class FaultsTestCase(PlayerTestCase):
    def film(self, fault, name="h264.mp4", *options):
        """A film under a fault. Files that the player writes land in a folder of their own."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        player = self.start(*options, *([clip(name)] if name else []), cwd=folder.name,
                            env={**preloaded(FAULTS), "VYX_FAULT": fault})
        player.folder = folder.name
        player.gl_fails = fault.startswith(("texture", "shader", "program", "mapping"))
        return player

    def failed(self, player, call):
        """Waits until the call has failed for the first time."""
        wait_for(lambda: f"[fault] {call} " in player.output(), 15, f"{call} to fail")

    def says(self, player, text, seconds=15):
        wait_for(lambda: text in player.output(), seconds, f"the player to say {text!r}")

    def goes_on(self, player):
        """Pictures follow each other."""
        first = self.number(player)
        self.await_number(player, lambda number: number != first, 15, "the film to go on")

    def ends(self, player, status=0):
        """Escape ends the player within a second."""
        player.window()
        start = time.monotonic()
        self.assertEqual(player.quit(), status, player.output())
        self.assertLess(time.monotonic() - start, 2 * PATIENCE)

    def cannot_start(self, fault, message):
        player = self.film(fault)
        self.assertEqual(player.wait(15), 1, player.output())
        self.assertIn(message, player.output())


class StartUp(FaultsTestCase):
    def test_sdl(self):
        self.cannot_start("SDL_Init:1", "Could not initialize SDL - made-up fault\n")

    def test_the_timers_thread(self):
        self.cannot_start(f"pthread_create@{SDL}:1", "Could not initialize SDL - ")

    def test_the_window(self):
        self.cannot_start("SDL_VideoMode:1", "SDL: could not set video mode - exiting\n")

    def test_full_screen_is_refused(self):
        player = self.film("SDL_VideoMode:2+1")
        self.goes_on(player)
        player.key("F12")
        self.failed(player, "SDL_VideoMode")
        self.says(player, "SDL: could not set video mode\n")
        self.goes_on(player)
        self.ends(player)


class Threads(FaultsTestCase):
    def test_no_thread_for_the_file(self):
        player = self.film(f"pthread_create@{SDL}:2+1")
        self.failed(player, "pthread_create")
        # The animation without a film.
        player.look_until(lambda picture: not grey(picture), "the animation")
        self.ends(player)

    def test_any_other_thread(self):
        """Of pictures, of sound and of thumbnails, in the order in which they happen to start."""
        for nth in (3, 4, 5):
            with self.subTest(nth=nth):
                player = self.film(f"pthread_create@{SDL}:{nth}+1")
                self.failed(player, "pthread_create")
                player.look_until(lambda picture: not grey(picture), "a film or its sound")
                self.ends(player)

    def test_no_threads_for_decoding(self):
        player = self.film(f"pthread_create@{FFMPEG_MEMORY}:1")
        self.failed(player, "pthread_create")
        self.goes_on(player)
        self.ends(player)

    def test_no_thread_at_all_for_pictures_and_sound(self):
        player = self.film(f"pthread_create@{SDL}:3")
        self.says(player, "SDL_OpenAudio: ")
        self.says(player, ": could not open codecs\n")
        self.says(player, CANNOT_DISPLAY)
        self.ends(player)


class Sound(FaultsTestCase):
    def test_a_film_plays_silently(self):
        player = self.film("SDL_OpenAudio:1")
        self.says(player, "SDL_OpenAudio: made-up fault\n")
        self.goes_on(player)
        self.ends(player)

    def test_a_file_of_sound_fails(self):
        player = self.film("SDL_OpenAudio:1", "tone.wav")
        self.says(player, "SDL_OpenAudio: made-up fault\n")
        self.says(player, "tone.wav: could not open codecs\n")
        self.says(player, CANNOT_DISPLAY)
        self.ends(player)


class Events(FaultsTestCase):
    def test_a_full_queue_is_waited_for(self):
        player = self.film("SDL_PushEvent@vyx:1+100")
        self.failed(player, "SDL_PushEvent")
        self.goes_on(player)
        self.ends(player)

    def test_a_queue_that_stays_full(self):
        player = self.film("SDL_PushEvent@vyx:50")
        self.failed(player, "SDL_PushEvent")
        self.ends(player)

    def test_no_timers(self):
        player = self.film("SDL_AddTimer:1")
        self.failed(player, "SDL_AddTimer")
        self.goes_on(player)
        self.ends(player)


class Files(FaultsTestCase):
    def test_nothing_can_be_read(self):
        player = self.film(f"read@{FFMPEG_FILES}:1")
        self.failed(player, "read")
        self.says(player, CANNOT_DISPLAY)
        self.ends(player)

    def test_reading_fails_in_the_middle(self):
        player = self.film(f"read@{FFMPEG_FILES}:8", "mjpeg.avi")
        self.failed(player, "read")
        self.number(player)  # what was read before is shown
        self.ends(player)

    def test_one_read_fails(self):
        player = self.film(f"read@{FFMPEG_FILES}:8+1", "mjpeg.avi")
        self.failed(player, "read")
        self.ends(player)

    def test_seeking_fails(self):
        player = self.film(f"lseek@{FFMPEG_FILES}:1", "mpeg4.avi")
        self.failed(player, "lseek")
        player.key("Right")
        self.ends(player)

    def test_thumbnails_cannot_be_read(self):
        player = self.film("read@vyx:1")
        self.number(player)
        player.key("F1")  # the clip's folder
        self.failed(player, "read")
        self.ends(player)

    def test_subtitles_cannot_be_read(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        film = os.path.join(folder.name, "film.mp4")
        os.symlink(clip("h264.mp4"), film)
        with open(os.path.join(folder.name, "film.srt"), "w", encoding="ascii") as text:
            text.write("1\n00:00:00,000 --> 00:01:00,000\nText\n\n")
        player = self.film("read@vyx:1", film)
        self.failed(player, "read")
        self.goes_on(player)
        self.ends(player)


class Graphics(FaultsTestCase):
    def log(self, player):
        with open(os.path.join(player.folder, "GLShader.log"), encoding="ascii") as text:
            return text.read()

    def test_no_memory_for_textures(self):
        player = self.film("texture:1")
        self.failed(player, "texture")
        self.ends(player)

    def test_some_textures_are_missing(self):
        player = self.film("texture:4+6", "h264.mp4", "--denoising", "20")
        self.failed(player, "texture")
        self.ends(player)

    def test_shaders_do_not_compile(self):
        player = self.film("shader:1")
        self.failed(player, "shader")
        log = os.path.join(player.folder, "GLShader.log")
        wait_for(lambda: os.path.exists(log) and os.path.getsize(log) > 50, 10, "the log")
        heading = "Shader info log\n===============\n"
        self.assertTrue(self.log(player).startswith(heading + "a made-up log with %s and %n in it\n"), self.log(player))
        self.ends(player)

    def test_one_shader_does_not_compile(self):
        player = self.film("shader:1+1")
        self.failed(player, "shader")
        self.goes_on(player)  # it is compiled again with the next picture
        self.ends(player)

    def test_programs_do_not_link(self):
        player = self.film("program:1", "h264.mp4", "--denoising", "20")
        self.failed(player, "program")
        log = os.path.join(player.folder, "GLShader.log")
        wait_for(lambda: os.path.exists(log) and os.path.getsize(log) > 50, 10, "the log")
        heading = "Program info log\n================\n"
        self.assertTrue(self.log(player).startswith(heading + "a made-up log with %s and %n in it\n"), self.log(player))
        self.ends(player)

    def test_no_pixel_buffer_can_be_mapped(self):
        player = self.film("mapping:1")
        self.failed(player, "mapping")
        self.ends(player)

    def test_some_pixel_buffers_cannot_be_mapped(self):
        player = self.film("mapping:5+8")
        self.failed(player, "mapping")
        self.goes_on(player)
        self.ends(player)


class Memory(FaultsTestCase):
    def settle(self, player, call):
        """Whatever came of the fault: a running player that can be ended, or its end with a message."""
        wait_for(lambda: f"[fault] {call} " in player.output() or not player.running(), 15, f"{call} to fail")
        self.assertIn(f"[fault] {call} ", player.output())
        ended = []

        def has_settled():
            if not player.running():
                ended.append(True)
            return ended or player.xdotool("search", "--onlyvisible", "--name", "VYX Video Player").split()

        wait_for(has_settled, 15, "a window or the end")
        if not ended:
            try:
                status = player.quit()
            except AssertionError:
                if player.running():
                    raise
                status = player.wait()  # it ended before the key
        else:
            status = player.wait()
        self.assertIn(status, (0, 1), player.output())
        if status == 1:
            self.assertIn("Out of memory - exiting\n", player.output())
        return status

    # The objects that exist before main are made with about 100 allocations, where the C++ library ends the
    # process; the window, the forms and the film take about 600, and playing goes on with 30 per second.
    def test_of_the_player_once(self):
        statuses = set()
        for nth in range(160, 640, 40):
            with self.subTest(nth=nth):
                statuses.add(self.settle(self.film(f"memory@vyx:{nth}+1"), "memory"))
        self.assertIn(1, statuses)

    def test_of_the_player_from_then_on(self):
        for nth in (180, 320, 480, 600, 660):
            with self.subTest(nth=nth):
                self.settle(self.film(f"memory@vyx:{nth}"), "memory")

    @unittest.skipIf(SANITIZED, "the sanitizer's allocator has to stay")
    def test_of_the_decoders(self):
        for nth in (1, 20, 50, 100, 150, 200, 300, 400, 500, 700):
            for count in ("+1", "+5", ""):
                with self.subTest(nth=nth, count=count):
                    self.settle(self.film(f"av_malloc@{FFMPEG_MEMORY}:{nth}{count}"), "av_malloc")


if __name__ == "__main__":
    unittest.main()
