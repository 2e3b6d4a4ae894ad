# SPDX-License-Identifier: MIT
"""Runs the real player on a display of its own, presses its keys, and looks at its window."""

import fcntl
import functools
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from watch import Watch

VYX = os.environ["VYX_BIN"]
MEDIA = os.environ["VYX_TEST_MEDIA"]
# Sanitizers make everything slower.
PATIENCE = float(os.environ.get("VYX_PATIENCE", "1"))
SAMPLES = "/usr/share/forensics-samples/original-files"  # Debian's forensics-samples-files
FILM = SAMPLES + "/movie2/movie-hello.mp4"
CAMERA = SAMPLES + "/movie1/VID_20191220_170832.mp4"
SCREEN_WIDTH, SCREEN_HEIGHT = 1280, 1024
BITS = 8


@functools.cache
def has_classic_sdl():
    """Whether the player runs with SDL 1.2 itself, not with sdl12-compat, which loads SDL 2."""
    linked = subprocess.run(["ldd", VYX], check=False, stdout=subprocess.PIPE, text=True).stdout
    found = re.search(r"libSDL-1\.2\S* => (\S+)", linked)
    if not found:
        return False  # a script, which starts a player on a bare system
    with open(found.group(1), "rb") as library:
        return b"libSDL2-2.0" not in library.read()


def version():
    """Of the project, which the banner tells."""
    with open(os.path.join(os.path.dirname(__file__), "../../CMakeLists.txt"), encoding="utf-8") as lists:
        return re.search(r"project\(vyx VERSION (\S+)", lists.read()).group(1)


def clip(name):
    return os.path.join(MEDIA, name)


def wait_for(condition, seconds, what):
    """Waits until `condition()` is true; its value is returned."""
    deadline = time.monotonic() + seconds * PATIENCE
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {seconds * PATIENCE:.0f} s for {what}")
        time.sleep(0.02)


def preloaded(library):
    """The environment that loads a library before the player, besides those that are loaded anyway."""
    return {"LD_PRELOAD": " ".join(filter(None, (os.environ.get("LD_PRELOAD"), library)))}


class Display:
    """An X server of our own."""

    # A manager's settings with no decorations, menus or keys of its own, for clicks that go anywhere.
    BARE = ('<openbox_config xmlns="http://openbox.org/3.4/rc"><applications><application class="*">'
            "<decor>no</decor></application></applications></openbox_config>")

    def __init__(self, *options, manager=None):
        read_end, write_end = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-nolisten", "tcp", "-noreset",
             "-screen", "0", f"{SCREEN_WIDTH}x{SCREEN_HEIGHT}x24", *options],
            pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as number:
            self.name = ":" + number.readline().strip()
        # Full screen is something that a window manager does.
        self.env = dict(os.environ, DISPLAY=self.name)
        self.env.pop("LD_PRELOAD", None)
        settings = []
        if manager:
            self.settings = tempfile.NamedTemporaryFile("w", suffix=".xml")
            self.settings.write(manager)
            self.settings.flush()
            settings = ["--config-file", self.settings.name]
        self.manager = subprocess.Popen(["openbox", *settings], env=self.env, stderr=subprocess.DEVNULL)
        wait_for(lambda: "window id" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), 15,
                 "the window manager")

    def run(self, *command):
        """What a program prints that is run on this display."""
        return subprocess.run(list(map(str, command)), check=False, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, env=self.env).stdout

    def close(self):
        for process in (self.manager, self.server):
            process.terminate()
            process.wait()


class Picture:
    """What the screen shows."""

    def __init__(self, width, height, data):
        self.width, self.height, self.data = width, height, data

    def pixel(self, x, y):
        i = (y * self.width + x) * 3
        return tuple(self.data[i : i + 3])

    def brightness(self, x, y):
        return sum(self.pixel(x, y)) / 765

    def count(self, wanted, step=2):
        """How many pixels, of every `step`-th in each direction, `wanted(r, g, b)` accepts."""
        return sum(wanted(*self.pixel(x, y))
                   for y in range(0, self.height, step) for x in range(0, self.width, step))


class Player:
    """The player as a process."""

    def __init__(self, display, *arguments, env=None, user=None, cwd=None):
        environment = dict(os.environ, DISPLAY=display.name, SDL_AUDIODRIVER="dummy")
        if has_classic_sdl():
            environment["SDL_DISKAUDIODELAY"] = "21"  # ms for a buffer; SDL 2 takes its length by itself
        environment.update(env or {})
        environment.pop("WAYLAND_DISPLAY", None)
        self.watch = Watch()
        self.watch.add_to(environment)
        self.gl_fails = False  # a test makes OpenGL fail
        self.display = display
        self.log = tempfile.TemporaryFile(mode="w+")
        # The player shares the place in the file: reading from the start must not have it write there.
        flags = fcntl.fcntl(self.log, fcntl.F_GETFL)
        fcntl.fcntl(self.log, fcntl.F_SETFL, flags | os.O_APPEND)
        self.process = subprocess.Popen([VYX, *arguments], env=environment, stdout=self.log,
                                        stderr=subprocess.STDOUT, user=user, cwd=cwd)

    def output(self):
        self.log.flush()
        self.log.seek(0)
        return self.log.read()

    def processor_time(self, threads=""):
        """Seconds that its threads whose names begin like that have used."""
        used = 0
        for task in os.listdir(f"/proc/{self.process.pid}/task"):
            with open(f"/proc/{self.process.pid}/task/{task}/stat") as stat:
                name, fields = stat.read().split("(", 1)[1].rsplit(")", 1)
            if name.startswith(threads):
                used += int(fields.split()[11]) + int(fields.split()[12])
        return used / os.sysconf("SC_CLK_TCK")

    def running(self):
        return self.process.poll() is None

    def xdotool(self, *arguments):
        return self.display.run("xdotool", *arguments)

    def window(self):
        """The window's id, once it is on screen; it has the keyboard then."""
        def find():
            if not self.running():
                raise AssertionError("the player ended: " + self.output())
            return self.xdotool("search", "--onlyvisible", "--name", "VYX Video Player").split()
        window = wait_for(find, 15, "the window")[-1]
        self.xdotool("windowfocus", "--sync", window)
        return window

    def geometry(self):
        """x, y, width and height of the window."""
        text = self.display.run("xwininfo", "-id", self.window())
        names = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        return tuple(int(re.search(name + r":\s*(-?\d+)", text).group(1)) for name in names)

    def key(self, *keys):
        self.window()
        self.xdotool("key", *keys)

    def title(self):
        return self.xdotool("getwindowname", self.window()).strip()

    def look_at_screen(self):
        """A picture of everything."""
        data = subprocess.run(["import", "-window", "root", "-depth", "8", "rgb:-"], check=True,
                              stdout=subprocess.PIPE, env=self.display.env).stdout
        return Picture(SCREEN_WIDTH, SCREEN_HEIGHT, data)

    def look(self, save_as=None):
        """A picture of the window alone."""
        x, y, width, height = self.geometry()
        crop = f"{width}x{height}+{x}+{y}"
        env = self.display.env
        if save_as:
            subprocess.run(["import", "-window", "root", "-crop", crop, "+repage", save_as], check=True, env=env)
        data = subprocess.run(["import", "-window", "root", "-crop", crop, "+repage", "-depth", "8", "rgb:-"],
                              check=True, stdout=subprocess.PIPE, env=env).stdout
        assert len(data) == width * height * 3, "the window is partly off the screen"
        return Picture(width, height, data)

    def look_until(self, condition, what, seconds=10):
        """Looks at the window until `condition(picture)` holds; that picture."""
        seen = []

        def holds():
            picture = self.look()
            seen[:] = [picture] if condition(picture) else []
            return seen

        return wait_for(holds, seconds, what)[0]

    def quit(self, key="Escape"):
        """Ends the player with a key; its exit status."""
        if self.running():
            self.key(key)
        return self.wait()

    def wait(self, seconds=10):
        try:
            status = self.process.wait(seconds * PATIENCE)
            if status != 0 and "Sanitizer" in self.output():
                print(self.output(), file=sys.stderr)
            if not self.gl_fails:
                assert self.watch.errors == 0, "GL errors: " + self.output()
            return status
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise AssertionError("the player did not end; it said: " + self.output())

    def close(self):
        if self.running():
            self.process.send_signal(signal.SIGKILL)
            self.process.wait()
        self.log.close()
        self.watch.close()


def fitted(picture_width, picture_height, width, height):
    """Where a picture lies in a window: x, y, width, height, by the rule of the fitting zoom."""
    aspect = picture_width / picture_height
    w, h = round(height * aspect) & ~2, height
    if w > width:
        w, h = width, round(width / aspect) & ~2
    return (width - w) // 2, (height - h) // 2, w, h


def number_in(picture, film_width=320, film_height=180):
    """The number written into a numbered clip, None while it cannot be read for sure."""
    x, y, w, h = fitted(film_width, film_height, picture.width, picture.height)
    # An empty window would read as 0. Under the number, every film has colours or a grey.
    if all(max(picture.pixel(x + w * i // 8, y + h - 10)) < 40 for i in range(1, 8)):
        return None
    number = 0
    for bit in range(BITS):
        value = picture.brightness(x + int((bit + 0.5) * w / BITS), y + int(h * 0.05))
        if 0.2 < value < 0.7:
            return None
        if value > 0.5:
            number |= 1 << bit
    return number


def psnr_by_frame(film, select, convert, shot, area):
    """PSNR of a part of a picture file against the frames of a film, each brought to RGB by `convert`:
    a list of (PSNR, frame)."""
    x, y, w, h = area
    with tempfile.TemporaryDirectory() as folder:
        stats = os.path.join(folder, "stats")
        subprocess.run(
            ["ffmpeg", "-nostdin", "-v", "fatal", "-i", film, "-loop", "1", "-i", shot, "-an", "-filter_complex",
             f"[0:v]{select}setpts=N/25/TB,{convert.format(w=w, h=h)}[a];"
             f"[1:v]setpts=N/25/TB,crop={w}:{h}:{x}:{y},format=gbrp[b];[a][b]psnr=shortest=1:stats_file={stats}",
             "-f", "null", "-"], check=True)
        with open(stats, encoding="ascii") as lines:
            found = [re.search(r"n:(\d+).*psnr_avg:(\S+)", line) for line in lines]
        return [(float(match.group(2)), int(match.group(1)) - 1) for match in found]


# The film's luma as it is, not stretched from 16..235 to 0..255: the player does not stretch it either.
PLAIN_LUMA = "scale={w}:{h}:in_range=pc:out_range=pc,format=gbrp"

# The player's own conversion, written for ffmpeg: the planes Y, U, V take the places of G, B, R.
PLAYERS_CONVERSION = (
    "scale={w}:{h},format=yuv444p,mergeplanes=0x000102:gbrp,"
    "geq=r='clip(g(X,Y)-7.97+1.596*(r(X,Y)-127.5),0,255)'"
    ":g='clip(g(X,Y)-7.97-0.3918*(b(X,Y)-127.5)-0.813*(r(X,Y)-127.5),0,255)'"
    ":b='clip(g(X,Y)-7.97+2.0172*(b(X,Y)-127.5),0,255)'")


def compare_with_film(film, shot, area):
    """The film's frame that a screenshot shows, its PSNR by ffmpeg's conversion, and by the player's."""
    plain, frame = max(psnr_by_frame(film, "", PLAIN_LUMA, shot, area))
    exact = psnr_by_frame(film, f"select=eq(n\\,{frame}),", PLAYERS_CONVERSION, shot, area)[0][0]
    return frame, plain, exact


class PlayerTestCase(unittest.TestCase):
    """A display for the class, and players that are ended after each test."""

    @classmethod
    def setUpClass(cls):
        cls.display = Display()

    @classmethod
    def tearDownClass(cls):
        cls.display.close()

    def start(self, *arguments, env=None, user=None, cwd=None):
        player = Player(self.display, *arguments, env=env, user=user, cwd=cwd)
        self.addCleanup(player.close)
        return player

    def await_full_screen(self, player):
        """Waits until a numbered film fills the screen and goes on there."""
        x, y, w, h = fitted(320, 180, SCREEN_WIDTH, SCREEN_HEIGHT)
        numbers = set()

        def moves():
            picture = player.look_at_screen()
            fills = (picture.pixel(SCREEN_WIDTH // 2, y - 4) == (5, 5, 5)
                     and max(picture.pixel(20, y + h - 8)) > 60
                     and max(picture.pixel(SCREEN_WIDTH - 20, y + h - 8)) > 60)
            number = number_in(picture)
            if fills and number is not None:
                numbers.add(number)
            return len(numbers) > 1

        wait_for(moves, 10, "a film that fills the screen")

    def number(self, player):
        """The number on screen, once it can be read."""
        return self.await_number(player, lambda number: True, 10, "a number in the picture")

    def await_number(self, player, condition, seconds, what):
        """Waits until the number on screen satisfies `condition`; the number."""
        found = []

        def read():
            value = number_in(player.look())
            if value is not None and condition(value):
                found.append(value)
            return bool(found)

        wait_for(read, seconds, what)
        return found[0]

    def paused_number(self, player):
        """The number of a paused player, after the picture has come to rest."""
        last = [None]

        def at_rest():
            value = number_in(player.look())
            same = value is not None and value == last[0]
            last[0] = value
            return same

        wait_for(at_rest, 5, "a picture at rest")
        return last[0]

    def picture_at_rest(self, player):
        """The window of a paused player, once it stays the same for longer than a label does."""
        label_seconds = 2
        last = [None, 0.0]

        def rests(picture):
            if picture.data != last[0]:
                last[:] = picture.data, time.monotonic()
            return time.monotonic() - last[1] > label_seconds

        return player.look_until(rests, "a picture at rest")
