# SPDX-License-Identifier: MIT
"""What keeps the player from starting is said in its words, with status 1."""

import os
import signal
import subprocess
import tempfile
import unittest

from support import PATIENCE, VYX, Display, PlayerTestCase, clip, wait_for


class StartUp(PlayerTestCase):
    def fails(self, *arguments, env=None, display=None):
        environment = dict(os.environ, DISPLAY=(display or self.display).name, SDL_AUDIODRIVER="dummy")
        environment.update(env or {})
        result = subprocess.run([VYX, *arguments], env=environment, text=True, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, timeout=30 * PATIENCE, check=False)
        self.assertEqual(result.returncode, 1, result.stderr)
        return result.stderr

    def test_missing_file(self):
        self.assertEqual(self.fails("/nowhere/film.mkv"), "File does not exist: '/nowhere/film.mkv'!\n")
        self.assertEqual(self.fails("/nowhere/100%s%n.mkv"), "File does not exist: '/nowhere/100%s%n.mkv'!\n")

    def test_camera_without_a_driver(self):
        self.assertEqual(self.fails("cam:1394"), "Failed to open: 'cam:1394'!\n")

    def test_no_display(self):
        environment = {"DISPLAY": ":9999", "SDL_VIDEODRIVER": "x11"}
        environment.pop("WAYLAND_DISPLAY", None)
        self.assertRegex(self.fails(env=environment), r"^Could not initialize SDL - .+\n$")

    def test_missing_extensions(self):
        wants_shaders = self.fails(env={"MESA_EXTENSION_OVERRIDE": "-GL_ARB_fragment_program"})
        self.assertEqual(wants_shaders,
                         "OpenGL extension 'ARB_fragment_program' is not present.\n"
                         "Fragment shader support is required to run VYXVideoPlayer!\n"
                         "Check if OpenGL is configured properly.\n")
        wants_rectangles = self.fails(env={"MESA_EXTENSION_OVERRIDE": "-GL_ARB_texture_rectangle"})
        self.assertEqual(wants_rectangles,
                         "OpenGL extension 'ARB_texture_rectangle' is not present.\n"
                         "This extension is required to run VYXVideoPlayer!\n"
                         "Check if OpenGL is configured properly.\n")

    def test_of_two_missing_extensions_the_first_is_told(self):
        said = self.fails(env={"MESA_EXTENSION_OVERRIDE": "-GL_ARB_fragment_program -GL_ARB_texture_rectangle"})
        self.assertTrue(said.startswith("OpenGL extension 'ARB_fragment_program' is not present.\n"), said)
        self.assertNotIn("ARB_texture_rectangle", said)

    def test_says_what_draws(self):
        player = self.start()
        player.window()
        wait_for(lambda: "High quality media player\n" in player.output(), 10, "the banner")
        self.assertRegex(player.output(),
                         r"(?m)^OPENGL VENDOR = .+\nOPENGL RENDERER = .+\nOPENGL VERSION = .+\n"
                         r"VYX Player v1\.01\nHigh quality media player\n")
        # A larger window shows the same as the first: a blue field between dark edges.
        player.xdotool("windowsize", "--sync", player.window(), 1000, 700)
        wait_for(lambda: player.geometry()[2:] == (1000, 700), 5, "the new size")

        def empty(shot):
            edges = ((5, 5), (995, 5), (5, 695), (995, 695), (500, 650))
            field = ((2, 120), (997, 120), (900, 300), (500, 580))
            return (all(shot.pixel(x, y) == (5, 5, 5) for x, y in edges)
                    and all(80 < shot.pixel(x, y)[2] < 140 for x, y in field))

        player.look_until(empty, "a window without a film")
        self.assertEqual(player.quit(), 0)

    def test_gl_errors_are_noticed(self):
        player = self.start(clip("h264.mp4"), env={"GL_WATCH_MISTAKE": "1"})
        wait_for(lambda: player.watch.swaps > 5, 10, "pictures")
        self.assertEqual(player.watch.errors, 1)
        with self.assertRaisesRegex(AssertionError, "GL errors"):
            player.quit()

    def test_preloading_can_be_ended(self):
        with tempfile.TemporaryDirectory() as folder:
            fifo = os.path.join(folder, "silent")
            os.mkfifo(fifo)
            writer = os.open(fifo, os.O_RDWR)
            self.addCleanup(os.close, writer)
            for end in (lambda player: player.process.send_signal(signal.SIGTERM),
                        lambda player: player.key("Escape")):
                player = self.start("--preload", fifo)
                x, y, w, h = player.geometry()
                # More events than the library's queue holds.
                moves = (("mousemove", x + 10 + i % (w - 20), y + 10 + i % (h - 20)) for i in range(200))
                player.xdotool(*(word for move in moves for word in move))
                end(player)
                self.assertEqual(player.wait(5), 0)

    def test_no_opengl(self):
        display = Display("-extension", "GLX")
        try:
            self.assertEqual(self.fails(clip("h264.mp4"), display=display),
                             "SDL: could not set video mode - exiting\n")
        finally:
            display.close()

    def test_no_sound_device(self):
        player = self.start(clip("h264.mp4"), env={"SDL_AUDIODRIVER": "nonsense"})
        first = self.number(player)
        self.await_number(player, lambda n: n != first, 5, "the film to play silently")
        self.assertEqual(player.quit(), 0)


if __name__ == "__main__":
    unittest.main()
