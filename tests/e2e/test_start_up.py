# SPDX-License-Identifier: MIT
"""What keeps the player from starting is said in its words, with status 1."""

import os
import subprocess
import unittest

from support import PATIENCE, VYX, Display, PlayerTestCase, clip


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
