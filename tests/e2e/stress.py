# SPDX-License-Identifier: MIT
"""A user who does anything at any time, the same for the same seed."""

import os
import random
import tempfile
import time

from hand import ADVANCED, AUDIO, BUTTONS, FONT, ICONS, NEUTRAL, POSITION, VIDEO, VOLUME, Box, Hand
from support import CAMERA, FILM, PATIENCE, SCREEN_HEIGHT, SCREEN_WIDTH, wait_for

# Every codec and container, odd sizes, sound alone, films of which little or nothing can be read.
SMALL = ("h264.mp4", "mpeg4.avi", "mpeg1.mpg", "mpeg2.mpg", "mpeg4_qpel.mp4", "hevc.mkv", "vp9.webm", "mjpeg.avi",
         "q7_wmv2.avi", "ten_bit.mkv", "chroma_422.mkv", "rgb.mkv", "grey.mkv", "odd_853x481.mkv", "size_1x1.mkv",
         "size_16x8.mkv", "size_change.ts", "aspect_anamorphic.mkv", "no_keys.mkv", "raw.h264", "tones_75s.mkv",
         "sound_gap.mkv", "broken_sound.mkv", "undecodable_sound.mkv", "sound_aac_5.1.m4a", "sound_mp3_stereo.mp3",
         "sound_opus_mono.opus", "cover.mp3", "text.mp4", "empty.mp4", "truncated.mkv", "truncated.mp4")
LARGE = (FILM, CAMERA)
WINDOWS = ((800, 600), (800, 600), (640, 480), (300, 600), (1000, 400), (64, 48), (1200, 900))
KEYS = ("space", "space", "l", "m", "q", "o", "s", "d", "v", "i", "x", "Up", "Down", "Right", "Left", "F1", "F2", "F3",
        "F4")  # fmt: skip
FASTER = ("Shift_R", "Control_R", "Alt_R")
FOLDERS = 4  # one in the other, each with every film: going up in the browser leaves none of them soon
BATCH = 20


def link_films(folder, films):
    os.makedirs(folder, exist_ok=True)
    for film in films:
        # The browser's rows end in what it takes for films; ffmpeg looks at the contents.
        name = os.path.basename(film)
        if not name.endswith((".avi", ".mp4", ".mkv", ".mpg")):
            name += ".mkv"
        os.symlink(film, os.path.join(folder, name))


class FilmFolders:
    """Films in folders that lie in each other."""

    def __init__(self, films):
        self.root = tempfile.TemporaryDirectory(prefix="vyx-stress")
        self.path = self.root.name
        for _ in range(FOLDERS):
            self.path = os.path.join(self.path, "films")
            link_films(self.path, films)

    def close(self):
        self.root.cleanup()


class RandomUser:
    """Gives commands without waiting for what they do."""

    def __init__(self, player, seed):
        self.player, self.dice = player, random.Random(seed)
        self.hand = Hand(player)
        self.given = 0

    def place(self):
        """Somewhere in the window; often where something is."""
        dice = self.dice
        anywhere = (dice.uniform(-399, 399), dice.uniform(-299, 299))
        form = dice.choice((VIDEO, AUDIO, ADVANCED))
        control = form.control(dice.choice(sorted(form.controls)))
        within = (dice.uniform(control.x, control.x + control.w), control.middle[1])
        button = dice.choice([*BUTTONS.values(), *ICONS.values()])
        slider = dice.choice((POSITION, VOLUME))
        row = (dice.uniform(-390, 300), dice.uniform(-230, 240))  # of the browser
        foot = Box(-400, 250, 400, 40).middle
        return dice.choice((anywhere, within, within, button, button,
                            (dice.uniform(slider.x, slider.x + slider.w), slider.middle[1]), row, foot))

    def to(self, place):
        return ["mousemove", *self.hand.on_screen(place)]

    def command(self):
        """The words of one command for xdotool."""
        dice = self.dice
        kind = dice.random()
        if kind < 0.3:
            return ["key", dice.choice(KEYS)]
        if kind < 0.36:  # scanning, for a while or not at all
            key = dice.choice(("Right", "Left"))
            return ["keydown", key, "sleep", dice.choice((0, 0.05, 0.3)), "keyup", key]
        if kind < 0.42:
            keys = [word for key in FASTER for word in ("keydown", key)]
            return keys + ["key", dice.choice(("KP_Add", "KP_Subtract"))] + [
                word for key in FASTER for word in ("keyup", key)]
        if kind < 0.66:
            return self.to(self.place()) + ["click", dice.choice((1, 1, 1, 1, 2, 3, 4, 5))]
        if kind < 0.76:
            return self.to(self.place()) + ["mousedown", 1] + self.to(self.place()) + ["mouseup", 1]
        if kind < 0.84:
            return self.to(POSITION.middle) + ["mousedown", 1] + self.to(
                (dice.uniform(POSITION.x, POSITION.x + POSITION.w), POSITION.middle[1])) + ["mouseup", 1]
        if kind < 0.92:
            return self.to(BUTTONS[dice.choice(("next", "previous"))]) + ["click", 1]
        if kind < 0.94:
            return self.to(self.place()) + ["click", "--repeat", 2, "--delay", 20, 1]
        if kind < 0.96:
            return ["key", "F12"]
        if kind < 0.98:
            return ["windowsize", self.window, *dice.choice(WINDOWS)]
        return ["sleep", dice.choice((0.01, 0.1, 0.4))]

    def act(self, commands, seconds):
        """That many commands, or as many as fit into the time, some at a time; after each batch the player has to
        show pictures."""
        self.window = self.player.window()
        deadline = time.monotonic() + seconds
        while commands > 0 and time.monotonic() < deadline:
            batch = [self.command() for _ in range(min(BATCH, commands))]
            commands -= len(batch)
            self.given += len(batch)
            self.hand.do(*(word for words in batch for word in words))
            self.await_pictures(2)
            self.hand.look_again()

    def await_pictures(self, count):
        """The watchdog. A software driver can take minutes over a picture of 1080p enlarged four times; it has to go
        on all the time."""
        watch = self.player.watch
        begun = watch.swaps
        while watch.swaps - begun < count:
            before = watch.waits + watch.swaps

            def goes_on(before=before):
                assert self.player.running(), f"ended after {self.given} commands: " + self.player.output()
                return watch.waits + watch.swaps > before

            wait_for(goes_on, 40, f"pictures after {self.given} commands")

    # Afterwards

    def calm_down(self):
        """Lets go of everything and brings the window back to its size."""
        for key in ("Right", "Left", *FASTER):
            self.hand.do("keyup", key)
        self.hand.do("mouseup", 1)
        deadline = time.monotonic() + 60 * PATIENCE
        while self.player.geometry()[2:] != (800, 600):
            assert time.monotonic() < deadline, "the window does not come back"
            if self.player.geometry()[2:] == (SCREEN_WIDTH, SCREEN_HEIGHT):
                self.player.key("F12")
            else:
                self.hand.do("windowsize", self.window, 800, 600)
            time.sleep(0.5)
        self.hand.look_again()

    def answers(self):
        """Whether the player still does what it is told: a label comes, and a film plays."""
        label = "Volume: -40.00 dB"
        forms = ("F1", "F2", "F1", "F3", "F1", "F2", "F1", "F4") * 2  # every set of open ones
        for key in forms:
            self.player.key(*["Down"] * 55)
            if self.comes(lambda: FONT.shows(self.player.look(), label, 50, 50) > 0.9):
                break
            self.player.key(key)
        else:
            return False
        return any(self.plays_next() for _ in range(20))

    def plays_next(self):
        self.hand.move(BUTTONS["next"])
        captions = self.player.watch.captions
        self.hand.click(BUTTONS["next"])
        if not self.comes(lambda: self.player.watch.captions > captions):
            return False
        self.hand.move(NEUTRAL)
        before = self.player.look().data
        return self.comes(lambda: self.player.look().data != before)

    @staticmethod
    def comes(condition):
        try:
            return wait_for(condition, 4, "it")
        except AssertionError:
            return False
