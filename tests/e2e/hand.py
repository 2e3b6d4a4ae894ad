# SPDX-License-Identifier: MIT
"""A hand at the mouse, and where the player's forms and controls are, in units of a window of 800 x 600."""

import ctypes
import time

from screen_font import ScreenFont
from support import wait_for

FONT = ScreenFont()
SMALL, TITLE = 0.5, 0.65  # scales of text
NEUTRAL = (0, -200)  # a place with no form when all are closed


class Box:
    """A rectangle in GUI units, the middle of the window at (0, 0)."""

    def __init__(self, x, y, w, h):
        self.x, self.y, self.w, self.h = x, y, w, h

    def inside(self, x, y, w, h):
        return Box(self.x + x, self.y + y, w, h)

    @property
    def middle(self):
        return self.x + self.w / 2, self.y + self.h / 2


class Form:
    """One of the forms that are opened and closed."""

    def __init__(self, title, box, controls):
        self.title, self.box, self.controls = title, box, controls

    def moved(self, dx, dy):
        return Form(self.title, Box(self.box.x + dx, self.box.y + dy, self.box.w, self.box.h), self.controls)

    @property
    def title_bar(self):
        return self.box.inside(4, 10, self.box.w - 8, FONT.line_height * TITLE)

    def control(self, name):
        rectangle = self.controls[name]
        return self.box.inside(*rectangle[:4])

    def on_slider(self, name, share):
        """The place of a click that sets a slider to this share of its range."""
        area, width = self.control(name), self.controls[name][4]
        # The very end belongs to the slider no more.
        return area.x + min(share * width, width - 0.01), area.y + area.h / 2

    def option(self, name, index):
        """The middle of an option of a list."""
        area, options = self.control(name), self.controls[name][4]
        widths = [SMALL * FONT.width(option) + 12 for option in options]
        shrink = min(1, area.w / sum(widths))
        return area.x + shrink * (sum(widths[:index]) + widths[index] / 2), area.y + area.h / 2

    def _title(self):
        """Text, left end, lower edge and scale."""
        bar = self.title_bar
        text = f"<{self.title}>"
        return text, bar.x + (bar.w - FONT.width(text) * TITLE) / 2, bar.y + bar.h, TITLE

    def _button(self, text):
        x, y = self.control(text).middle
        return text, x - FONT.width(text) * SMALL / 2, y + FONT.line_height * SMALL / 2, SMALL

    def shown(self, picture, scale=1):
        """Whether the form is in the picture of the window, all there. Small windows are not for reading."""
        text, x, y, size = self._title()
        return FONT.shows_scaled(picture, text, *to_window(picture, x, y, scale), size * scale) > 0.8

    def texts_stand_out(self, picture, scale=1):
        """How much its title and the text of its button "Close" do."""
        return tuple(FONT.stands_out(picture, text, *to_window(picture, x, y, scale), size * scale)
                     for text, x, y, size in (self._title(), self._button("Close")))


def slider(x, y, w, label=0):
    return x, y, w, 24, w - label


def options(x, y, w, *texts):
    return x, y, w, 24, texts


def button(x, y, w):
    return x, y, w, 24


VIDEO = Form("Video settings", Box(-252, -160, 504, 320), {
    "Brightness": slider(150, 50, 340), "Contrast": slider(150, 80, 340), "Sharpness": slider(150, 110, 340),
    "Spatial upscaling": options(150, 140, 150, "OFF", "2x", "3x", "4x"),
    "Algo": options(385, 140, 150, "SR", "Denoising"),
    "Temporal upscaling": options(150, 170, 150, "OFF", "2x", "3x", "4x", "MAX"),
    "Advanced": button(375, 170, 115),
    "Spatial zoom": options(150, 200, 150, "FIT", "CROP", "1x", "2x", "4x"),
    "VSync": options(150, 230, 150, "OFF", "ON", "ADAPTIVE"),
    "Status": options(415, 230, 150, "OFF", "ON"),
    "Demo mode": options(415, 260, 150, "OFF", "ON"),
    "Close": button(200, 280, 100)})  # fmt: skip
AUDIO = Form("Audio settings", Box(-200, -165, 400, 360), {
    "Volume": slider(150, 50, 230, 60), "Balance": slider(150, 80, 170), "Bass": slider(150, 110, 230, 60),
    "Mid": slider(150, 140, 230, 60), "Treble": slider(150, 170, 230, 60),
    "Enhance stereo": slider(150, 200, 230), "Noise reduction": slider(150, 230, 200),
    "Audio latency": slider(150, 260, 230, 60), "Close": button(150, 310, 100)})  # fmt: skip
ADVANCED = Form("Advanced settings", Box(-250, -130, 500, 260), {
    "Upscaling algorithm": options(230, 50, 150, "SR", "Denoising"),
    "Denoising/deblocking level": slider(230, 80, 260),
    "Motion interpolation method": options(230, 110, 180, "Blending", "4nb", "8nb"),
    "Offload decoding tasks to GPU": options(280, 140, 150, "OFF", "ON"),
    "MPEG4/H264 inloop deblocking filter": options(280, 170, 150, "OFF", "ON"),
    "Close": button(200, 210, 100)})  # fmt: skip

TRANSPORT = Box(-250, 235, 500, 50)
BUTTONS = {name: TRANSPORT.inside(x, 15, 30, 24).middle for name, x in
           (("previous", 10), ("rewind", 45), ("pause", 80), ("play", 115), ("fast forward", 150), ("next", 185))}
POSITION = TRANSPORT.inside(220, 15, 220, 24)
VOLUME = TRANSPORT.inside(445, 15, 50, 24)
MENU = Box(-390, -290, 174, 43)
ICONS = {name: MENU.inside(x, 5, 34, 34).middle for name, x in
         (("files", 10), ("video", 49), ("audio", 88), ("full screen", 127))}


def scale_of(width, height):
    return min(width / 800, height / 600)


def to_window(picture, x, y, scale=1):
    return x * scale + picture.width / 2, y * scale + picture.height / 2


def transport_shown(picture):
    """By its play button, whose triangle is white."""
    x, y = BUTTONS["previous"]
    return all(min(picture.pixel(*map(int, to_window(picture, x + dx, y + 1)))) > 200 for dx in (-6, 2))


def menu_shown(picture):
    """By its fourth icon, a white frame."""
    left, top = to_window(picture, MENU.x, MENU.y)
    white = sum(min(picture.pixel(x, y)) > 180 for x in range(int(left), int(left) + 174)
                for y in range(int(top), int(top) + 43))
    return white > 150


class Hand:
    """Moves the pointer over one player's window."""

    def __init__(self, player):
        self.player = player
        self.clicked_at = 0.0
        self.look_again()

    def look_again(self):
        """To be called when the window has moved or changed its size."""
        self.window = self.player.geometry()

    def on_screen(self, place):
        x, y, width, height = self.window
        scale = scale_of(width, height)
        return int(x + width / 2 + place[0] * scale), int(y + height / 2 + place[1] * scale)

    def do(self, *commands):
        self.player.xdotool(*commands)

    def move(self, place):
        self.do("mousemove", *self.on_screen(place))

    def click(self, place, number=1):
        """One click, which is no double click together with the one before."""
        time.sleep(max(0.0, self.clicked_at + 0.5 - time.monotonic()))
        self.do("mousemove", *self.on_screen(place), "click", number)
        self.clicked_at = time.monotonic()

    def press(self, place):
        self.do("mousemove", *self.on_screen(place), "mousedown", 1)

    def release(self):
        self.do("mouseup", 1)

    def drag(self, start, end, steps=6):
        """All the way with the button held, and lets go."""
        commands = ["mousemove", *self.on_screen(start), "mousedown", 1]
        for i in range(1, steps + 1):
            place = tuple(a + (b - a) * i / steps for a, b in zip(start, end))
            commands += ["mousemove", *self.on_screen(place)]
        self.do(*commands, "mouseup", 1)

    def set_slider(self, form, name, share):
        self.click(form.on_slider(name, share))

    def choose(self, form, name, index):
        self.click(form.option(name, index))


class CursorImage(ctypes.Structure):
    _fields_ = [("x", ctypes.c_short), ("y", ctypes.c_short), ("width", ctypes.c_ushort),
                ("height", ctypes.c_ushort), ("xhot", ctypes.c_ushort), ("yhot", ctypes.c_ushort),
                ("serial", ctypes.c_ulong), ("pixels", ctypes.POINTER(ctypes.c_ulong)),
                ("atom", ctypes.c_ulong), ("name", ctypes.c_char_p)]


class Cursor:
    """The pointer's picture, as the X server shows it."""

    def __init__(self, display):
        self.x11, self.fixes = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXfixes.so.3")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.fixes.XFixesGetCursorImage.restype = ctypes.POINTER(CursorImage)
        self.connection = ctypes.c_void_p(self.x11.XOpenDisplay(display.name.encode()))

    def visible(self):
        image = self.fixes.XFixesGetCursorImage(self.connection).contents
        return any(image.pixels[i] >> 24 & 0xFF for i in range(image.width * image.height))

    def await_visible(self, visible, seconds=10):
        wait_for(lambda: self.visible() == visible, seconds, f"a pointer that is {'' if visible else 'not '}shown")

    def close(self):
        self.x11.XCloseDisplay(self.connection)
