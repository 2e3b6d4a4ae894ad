# SPDX-License-Identifier: MIT
"""Runs the player and its peers on one display and measures them from outside."""

import ctypes
import json
import os
import re
import signal
import socket
import subprocess
import tempfile
import threading
import time

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BIN = os.path.join(TOP, "build/release/bin")
MEDIA = os.path.join(TOP, "build/media")
SIZE = (800, 600)
AT_CORNER, CENTRED = (400, 300), (640, 512)  # the middle of a window at the display's corner or in its middle

MPV = ["mpv", "--no-config", "--really-quiet", "--vo=gpu", "--gpu-sw=yes", "--ao=null",
       f"--geometry={SIZE[0]}x{SIZE[1]}+0+0"]
MPV_INTERPOLATION = ["--interpolation", "--video-sync=display-resample", "--display-fps=60"]
FFPLAY = ["ffplay", "-loglevel", "quiet", "-autoexit", "-x", str(SIZE[0]), "-y", str(SIZE[1]),
          "-left", "0", "-top", "0"]


class Run:
    """What a program used: processor seconds, wall seconds, MB at most, and what it printed."""

    def __init__(self, command, **environment):
        start = time.monotonic()
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                                   env=dict(os.environ, SDL_AUDIODRIVER="dummy", **environment))
        self.output = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            raise SystemExit(f"{' '.join(command)} ended with {process.returncode}")
        self.wall = time.monotonic() - start
        self.processor = usage.ru_utime + usage.ru_stime
        self.memory = usage.ru_maxrss / 1024

    def figure(self, name):
        """A line of bench_play."""
        return float(re.search(rf"^{name} (\S+)", self.output, re.MULTILINE).group(1))


def vyx(film, seconds, *options):
    return Run([os.path.join(BIN, "bench_play"), str(seconds), film, *options])


def mpv(film, seconds, *options):
    """Also `flips`, the buffer swaps, and `dropped`, pictures by its own count."""
    with tempfile.NamedTemporaryFile(mode="r") as stats:
        run = Run([*MPV, f"--length={seconds}", f"--dump-stats={stats.name}", *options, film])
        text = stats.read()
    run.flips = len(re.findall(r"\bstart video-flip\b", text))
    run.dropped = len(re.findall(r"\bsignal (?:drop-vo|drop-dec)\b", text))
    return run


def ffplay(film, seconds):
    return Run([*FFPLAY, "-t", str(seconds), film])


class Screen:
    """Looks at two spots of the display: the middle of a window at its corner, and its own."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XGetImage.restype = ctypes.c_void_p
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x11.XGetPixel.restype = ctypes.c_ulong
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))
        self.root = ctypes.c_ulong(self.x11.XDefaultRootWindow(self.display))
        # Without a background, windows would leave their pictures behind.
        self.x11.XSetWindowBackground(self.display, self.root, ctypes.c_ulong(0))
        self.x11.XClearWindow(self.display, self.root)

    def spot(self, x, y):
        all_planes, z_pixmap = ctypes.c_ulong(0xFFFFFFFF), 2
        image = ctypes.c_void_p(self.x11.XGetImage(self.display, self.root, x, y, 1, 1, all_planes, z_pixmap))
        pixel = self.x11.XGetPixel(image, 0, 0)
        self.x11.XDestroyImage(image)
        return pixel & 0xFFFFFF

    def is_bright(self, *places):
        # Films for this begin with a white picture, which no player shows by itself.
        spots = [self.spot(*place) for place in places or (AT_CORNER, CENTRED)]
        return any(min(p >> 16, p >> 8 & 255, p & 255) > 200 for p in spots)


class Changes(threading.Thread):
    """Looks at a place until it is told to stop; when it turned bright or dark."""

    def __init__(self, place):
        super().__init__(daemon=True)
        self.screen, self.place, self.times, self.over = Screen(), place, [], threading.Event()
        self.start()

    def run(self):
        last = self.screen.is_bright(self.place)
        while not self.over.is_set():
            bright = self.screen.is_bright(self.place)
            if bright != last:
                self.times.append(time.monotonic())
                last = bright
            time.sleep(0.001)

    def after(self, requests):
        """Stops; milliseconds from each request to the next change, of those that had one within a second."""
        self.over.set()
        self.join()
        waits = (next((t - request for t in self.times if t > request), 2.0) for request in requests)
        return [1e3 * wait for wait in waits if wait < 1.0]


def first_picture(screen, command):
    """Seconds from starting a program until a white picture is on the screen."""
    start = time.monotonic()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               env=dict(os.environ, SDL_AUDIODRIVER="dummy"))
    while not screen.is_bright():
        if process.poll() is not None or time.monotonic() - start > 20:
            raise SystemExit(f"{command[0]} showed nothing")
        time.sleep(0.002)
    passed = time.monotonic() - start
    process.send_signal(signal.SIGTERM)
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:  # ffplay, once in a while
        process.kill()
        process.wait()
    while screen.is_bright():
        time.sleep(0.01)
    return passed


def vyx_seeks(film, count, *options):
    """Milliseconds from each request to jump until the other half of the film is on the screen."""
    changes = Changes(CENTRED)
    run = vyx(film, 2 + count, "seeks", *options)
    return changes.after([float(t) for t in re.findall(r"^seek_requested (\S+)", run.output, re.MULTILINE)])


def mpv_seeks(film, targets):
    """The same; `targets` lie in turns in either half."""
    changes = Changes(AT_CORNER)
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "socket")
        process = subprocess.Popen([*MPV, f"--input-ipc-server={path}", film], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        while not os.path.exists(path):
            time.sleep(0.01)
        requests = []
        with socket.socket(socket.AF_UNIX) as link:
            link.connect(path)
            answers = link.makefile("r")

            def await_restart():
                while json.loads(answers.readline()).get("event") != "playback-restart":
                    pass

            time.sleep(2)
            link.setblocking(True)
            for target in targets:
                # What was said before does not count.
                link.sendall(b'{"command": ["get_property", "pid"], "request_id": 77}\n')
                while json.loads(answers.readline()).get("request_id") != 77:
                    pass
                requests.append(time.monotonic())
                link.sendall(f'{{"command": ["seek", {target}, "absolute+keyframes"]}}\n'.encode())
                await_restart()
                time.sleep(1)
        process.terminate()
        process.wait()
    return changes.after(requests)
