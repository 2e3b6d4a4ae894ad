# SPDX-License-Identifier: MIT
"""Forms, menu and transport bar under a hand at the mouse."""

import os
import random
import tempfile
import time
import unittest

from films import Films, seconds_in
from hand import (ADVANCED, AUDIO, BUTTONS, FONT, ICONS, NEUTRAL, POSITION, SMALL, TRANSPORT, VIDEO, VOLUME, Cursor,
                  Hand, menu_shown, scale_of, to_window, transport_shown)
from support import PATIENCE, PlayerTestCase, clip, wait_for

NEAR_EDGE = (-390, 0)
BROWSER_CLOSE = (-400 + 170, -300 + 572)


def browser_shown(picture):
    return FONT.shows_scaled(picture, "VYX Media Browser", *to_window(picture, -380, -255), SMALL) > 0.8


def balloon_text(picture, pattern, centre):
    """The digits in a balloon over a plain dark background whose text's middle is at `centre`."""
    x = centre - SMALL * FONT.width(pattern) / 2
    bottom = TRANSPORT.y - 28 + (20 + SMALL * FONT.line_height) / 2
    return FONT.read_scaled(picture, pattern, *to_window(picture, x, bottom), SMALL)


class Mouse(PlayerTestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.films = Films()

    @classmethod
    def tearDownClass(cls):
        cls.films.close()
        super().tearDownClass()

    def play(self, film, **options):
        player = self.start(film, **options)
        player.window()
        return player, Hand(player)

    def hover(self, player, hand, place, shown):
        """Moves the pointer over a bar, which shows itself then."""
        hand.move(place)
        player.look_until(shown, "the bar under the pointer")

    def seconds(self, player, condition=lambda seconds: True, what="the time in the picture", patience=10):
        found = []

        def shows(picture):
            found[:] = [seconds_in(picture)]
            return found[0] is not None and condition(found[0])

        player.look_until(shows, what, patience)
        return found[0]

    # Forms

    def paused(self, film):
        """A player that shows nothing but a picture at rest, and that picture."""
        player, hand = self.play(film)
        hand.move(NEUTRAL)
        self.number(player)
        player.key("space")
        return player, hand, self.picture_at_rest(player)

    def await_as_before(self, player, before, what, top=80):
        """The window as it was, below the menu and above the transport bar."""
        part = slice(top * before.width * 3, 500 * before.width * 3)
        player.look_until(lambda shot: shot.data[part] == before.data[part], what)

    def test_keys_open_and_close_each_form(self):
        player, _, before = self.paused(clip("h264.mp4"))
        for key, shown in (("F1", browser_shown), ("F2", VIDEO.shown), ("F3", AUDIO.shown), ("F4", ADVANCED.shown)):
            for _ in range(2):
                player.key(key)
                player.look_until(shown, f"the form of {key}")
                player.key(key)
                self.await_as_before(player, before, f"no form of {key}", 0)
        self.assertEqual(player.quit(), 0)

    def test_the_menu_opens_and_closes_forms(self):
        player, hand, before = self.paused(clip("h264.mp4"))
        for icon, form in (("video", VIDEO), ("audio", AUDIO)):
            for way_out in ("icon", "Close"):
                self.hover(player, hand, ICONS[icon], menu_shown)
                hand.click(ICONS[icon])
                player.look_until(form.shown, form.title)
                if way_out == "icon":
                    self.hover(player, hand, ICONS[icon], menu_shown)
                hand.click(ICONS[icon] if way_out == "icon" else form.control("Close").middle)
                self.await_as_before(player, before, "no " + form.title)
        for _ in range(2):  # the browser lies over the menu
            self.hover(player, hand, ICONS["files"], menu_shown)
            hand.click(ICONS["files"])
            player.look_until(browser_shown, "the media browser")
            hand.click(BROWSER_CLOSE)
            self.await_as_before(player, before, "no media browser")
        self.assertEqual(player.quit(), 0)

    def test_the_advanced_settings_take_the_place_of_the_others(self):
        player, hand, before = self.paused(clip("h264.mp4"))
        for _ in range(2):
            player.key("F2")
            player.look_until(VIDEO.shown, VIDEO.title)
            hand.click(VIDEO.control("Advanced").middle)
            player.look_until(lambda shot: ADVANCED.shown(shot) and not VIDEO.shown(shot), ADVANCED.title)
            hand.click(ADVANCED.control("Close").middle)
            self.await_as_before(player, before, "no form")
        self.assertEqual(player.quit(), 0)

    def test_a_dragged_form_stays_in_the_window(self):
        player, hand = self.play(clip("h264.mp4"))
        player.key("F2")
        player.look_until(VIDEO.shown, VIDEO.title)
        form = VIDEO
        for dx, dy in ((-500, 0), (0, -500), (900, 0), (0, 900), (-900, -900)):
            x, y = form.title_bar.middle
            hand.drag((x, y), (max(-399, min(x + dx, 399)), max(-299, min(y + dy, 299))))
            x = max(-400, min(form.box.x + dx, 400 - form.box.w))
            y = max(-300, min(form.box.y + dy, 300 - form.box.h))
            form = form.moved(x - form.box.x, y - form.box.y)
            player.look_until(form.shown, f"the form at ({x}, {y})")
        hand.click(form.option("Status", 1))
        player.look_until(lambda shot: FONT.shows(shot, "]", 750 - FONT.width("]"), 50) > 0.9, "the status line")
        self.assertEqual(player.quit(), 0)

    def test_a_form_has_its_texts_while_it_is_dragged(self):
        player, hand, _ = self.paused(clip("h264.mp4"))
        player.key("F2")
        player.look_until(VIDEO.shown, VIDEO.title)
        x, y = VIDEO.title_bar.middle
        hand.press((x, y))
        for dx, dy in ((60, 30), (-90, -70), (110, 100)):
            hand.move((x + dx, y + dy))
            form = VIDEO.moved(dx, dy)
            # Measured: 0.85 to 1.
            player.look_until(lambda shot, form=form: form.shown(shot) and min(form.texts_stand_out(shot)) > 0.5,
                              "the texts of the form in the hand")
        hand.release()
        player.look_until(form.shown, "the form where it was let go")
        self.assertEqual(player.quit(), 0)

    def shots_of_a_fade(self, player, before):
        """What is seen of the form that a key shows or hides, until that is over."""
        shots = []
        player.key("F2")

        def is_over(shot):
            if shot.data == before.data or VIDEO.shown(shot):
                return len(shots) > 0
            shots.append(shot)
            return False

        try:
            player.look_until(is_over, "a look at the form while it fades", 1)
        except AssertionError:
            pass  # it was over at the first look
        return shots

    def test_a_form_has_its_texts_while_it_fades(self):
        player, _, before = self.paused(clip("h264.mp4"))
        # It grows out of the middle of the window, to the square root of its opacity.
        sizes = [size / 400 for size in range(280, 396)]
        faded = {"shown": False, "hidden": False}

        def look():
            for way in faded:
                for shot in self.shots_of_a_fade(player, before):
                    texts, size = max((VIDEO.texts_stand_out(shot, size), size) for size in sizes)
                    # Measured: 0.87 to 0.97 of the opacity; 0.05 where there is no text.
                    faded[way] |= min(texts) > 0.6 * size * size
            return all(faded.values())

        wait_for(look, 60, "the texts of a form while it fades in and out")
        self.assertEqual(player.quit(), 0)

    def test_forms_follow_the_window(self):
        player, hand = self.play(clip("h264.mp4"))
        player.key("F2")
        player.look_until(VIDEO.shown, VIDEO.title)
        form = VIDEO
        for width, height in ((1200, 500), (640, 480), (500, 900), (1200, 500)):
            player.xdotool("windowsize", "--sync", player.window(), width, height)
            wait_for(lambda size=(width, height): player.geometry()[2:] == size, 10, "the new size")
            hand.look_again()
            scale = scale_of(width, height)
            player.look_until(lambda shot, form=form, scale=scale: form.shown(shot, scale), f"the form, {width} wide")
        # What lies outside of a smaller window comes back into it.
        x, y = form.title_bar.middle
        right = width / 2 / scale
        hand.drag((x, y), (right - 1, y))
        form = form.moved(right - form.box.w - form.box.x, 0)
        player.look_until(lambda shot: form.shown(shot, scale), "the form at the right edge")
        player.xdotool("windowsize", "--sync", player.window(), 800, 600)
        wait_for(lambda: player.geometry()[2:] == (800, 600), 10, "the window's first size")
        hand.look_again()
        form = form.moved(400 - form.box.w - form.box.x, 0)
        player.look_until(form.shown, "the form inside the small window")
        hand.click(form.control("Close").middle)
        player.look_until(lambda shot: not form.shown(shot), "no form")
        self.assertEqual(player.quit(), 0)

    # Menu, pointer, full screen

    def bring_bars(self, player, hand, edge):
        """Clicks near an edge until both bars are there: one that is still fading away does not come back."""
        for _ in range(4):
            hand.click(edge)
            try:
                return player.look_until(lambda shot: transport_shown(shot) and menu_shown(shot), "bars", 3)
            except AssertionError:
                hand.move(NEUTRAL)
        return self.fail(f"no bars after clicks at {edge}")

    def test_bars_come_with_a_click_and_go_when_the_mouse_has_left(self):
        player, hand = self.play(clip("h264.mp4"))
        first = self.number(player)
        hand.click(NEUTRAL)
        self.await_number(player, lambda number: number != first, 10, "another picture")
        self.assertFalse(transport_shown(player.look()), "a click in the middle is no click near an edge")
        for edge in ((-390, 0), (390, 0), (0, -290), (0, 290)):
            self.bring_bars(player, hand, edge)
            hand.move(NEUTRAL)
            player.look_until(lambda shot: not transport_shown(shot) and not menu_shown(shot), "no bars", 15)
        for place, shown in ((TRANSPORT.middle, transport_shown), (ICONS["files"], menu_shown)):
            hand.move(place)
            player.look_until(shown, "the bar under the pointer")
            hand.move(NEUTRAL)
            player.look_until(lambda shot, shown=shown: not shown(shot), "no bar", 15)
        self.assertEqual(player.quit(), 0)

    def test_full_screen_by_icon_and_double_click_and_the_pointer_goes(self):
        player, hand = self.play(clip("h264.mp4"))
        cursor = Cursor(self.display)
        self.addCleanup(cursor.close)
        self.hover(player, hand, ICONS["full screen"], menu_shown)
        hand.click(ICONS["full screen"])
        self.await_full_screen(player)
        hand.look_again()
        cursor.await_visible(True)
        hand.move(NEUTRAL)
        cursor.await_visible(False, 15)  # when the bars have gone
        hand.click(NEUTRAL)
        cursor.await_visible(True)
        time.sleep(0.3)  # so that this click and the next two are not two double clicks
        hand.do("mousemove", *hand.on_screen((0, 100)), "click", "--repeat", 2, "--delay", 60, 1)
        wait_for(lambda: player.geometry()[2:] == (800, 600), 10, "the window")
        hand.look_again()
        player.key("F3")
        player.look_until(AUDIO.shown, AUDIO.title)
        hand.do("mousemove", *hand.on_screen((0, 170)), "click", "--repeat", 2, "--delay", 60, 1)
        player.look_until(AUDIO.shown, "the form")
        self.assertEqual(player.geometry()[2:], (800, 600), "a double click on a form is for the form")
        self.assertEqual(player.quit(), 0)

    # Transport bar

    def test_pause_play_and_scan_buttons(self):
        player, hand = self.play(self.films["clock.avi"])
        self.hover(player, hand, BUTTONS["next"], transport_shown)
        hand.click(BUTTONS["pause"])
        self.picture_at_rest(player)
        at = self.seconds(player)
        hand.click(BUTTONS["play"])
        self.seconds(player, lambda seconds: at < seconds < at + 10, "the film to go on from there")
        hand.press(BUTTONS["fast forward"])
        self.seconds(player, lambda seconds: seconds > at + 25, "a place far ahead")
        hand.release()
        at = self.seconds(player, lambda seconds: seconds > 25)
        later = self.seconds(player, lambda seconds: at < seconds, "ordinary playback")
        hand.press(BUTTONS["rewind"])
        at = self.seconds(player, lambda seconds: seconds < later - 10, "the way back")
        # Let go elsewhere, it ends as well.
        hand.move(NEUTRAL)
        hand.release()
        low = []

        def turns(seconds):
            low[:] = [min(low + [seconds])]
            return seconds > low[0] + 0.5

        self.seconds(player, turns, "ordinary playback again")
        self.assertEqual(player.quit(), 0)

    def drag_position(self, player, hand, share):
        """Drags the knob there; the time that the balloon showed before it was let go, in seconds."""
        target = (POSITION.x + share * POSITION.w, POSITION.middle[1])
        hand.do("mousemove", *hand.on_screen((POSITION.x + 0.1 * POSITION.w, target[1])), "mousedown", 1,
                "mousemove", *hand.on_screen((target[0] - 5, target[1])), "mousemove", *hand.on_screen(target))
        texts = []

        def reads(picture):
            # The knob's left end goes from 0 to its width before the right end.
            middle = POSITION.x + share * (POSITION.w - 12) + 6 - 20 + 50
            texts[:] = [text for offset in (0, -0.5, 0.5, -1, 1)
                        if (text := balloon_text(picture, "00:00:00:000", middle + offset))]
            return texts

        player.look_until(reads, "a balloon with the time")
        hand.release()
        hours, minutes, seconds, ms = map(int, texts[0].split(":"))
        return (hours * 60 + minutes) * 60 + seconds + ms / 1000

    def test_the_position_slider_seeks_to_the_time_in_the_balloon(self):
        player, hand = self.play(self.films["clock.avi"])
        self.seconds(player)
        self.hover(player, hand, BUTTONS["next"], transport_shown)
        for share in (0.5, 0.2, 0.85):
            wanted = self.drag_position(player, hand, share)
            self.assertAlmostEqual(wanted, 75 * share, delta=0.7, msg="the time under the pointer")
            landed = self.seconds(player, lambda seconds, wanted=wanted: abs(seconds - wanted) < 5, "the new place")
            # A picture is taken up to some tenths of a second after the first of the new ones.
            self.assertLess(abs(landed - wanted), 1 + 0.5 * PATIENCE, f"{landed} for {wanted}")
        self.assertEqual(player.quit(), 0)

    def test_seeking_among_distant_key_pictures_lands_at_the_time(self):
        player, hand = self.play(self.films["clock_10s.mp4"])
        self.seconds(player)
        self.hover(player, hand, BUTTONS["next"], transport_shown)
        for share in (0.5, 0.3):
            before = self.seconds(player)
            wanted = self.drag_position(player, hand, share)
            landed = self.seconds(player, lambda seconds, before=before: abs(seconds - before) > 8, "the new place")
            self.assertLess(abs(landed - wanted), 1 + 0.5 * PATIENCE, f"{landed} for {wanted}")
        self.assertEqual(player.quit(), 0)

    def test_the_volume_wedge(self):
        with tempfile.TemporaryDirectory() as folder:
            sound = os.path.join(folder, "sound.raw")
            player, hand = self.play(self.films["clock.avi"],
                                     env={"SDL_AUDIODRIVER": "disk", "SDL_DISKAUDIOFILE": sound})
            self.hover(player, hand, BUTTONS["next"], transport_shown)
            hand.drag((VOLUME.x + 45, VOLUME.middle[1]), (VOLUME.x + 25, VOLUME.middle[1]))
            bottom = TRANSPORT.y - 28 + (20 + SMALL * FONT.line_height) / 2
            text = "Vol: -15.00 dB"
            left = VOLUME.x + 50 - SMALL * FONT.width(text) / 2
            player.look_until(lambda shot: FONT.shows_scaled(shot, text, *to_window(shot, left, bottom), SMALL) > 0.8,
                              "a balloon with the volume")
            # White up to the volume, red from there on.
            shot = player.look()
            colours = [shot.pixel(*map(int, to_window(shot, VOLUME.x + x, VOLUME.y + 20))) for x in (15, 20, 30, 40)]
            self.assertEqual([min(colour) > 200 for colour in colours], [True, True, False, False], colours)
            player.key("Up")
            player.look_until(lambda shot: FONT.shows(shot, "Volume: -14.00 dB", 50, 50) > 0.9, "the volume's label")
            self.assertEqual(player.quit(), 0)

    # Everything at once

    def test_three_hundred_random_clicks_and_keys(self):
        dice = random.Random(20)
        player, hand = self.play(clip("h264.mp4"))
        self.number(player)
        keys = ["space", "l", "m", "q", "o", "s", "d", "v", "i", "Up", "Down", "Right", "Left", "F1", "F2", "F3", "F4"]
        targets = list(BUTTONS.values()) + list(ICONS.values())[:3] + [NEAR_EDGE, BROWSER_CLOSE]
        forms = (VIDEO, AUDIO, ADVANCED)
        actions = 0
        while actions < 300:
            commands = []
            for _ in range(10):
                place = dice.choice([
                    (dice.uniform(-399, 399), dice.uniform(-299, 299)), dice.choice(targets),
                    dice.choice(list(dice.choice(forms).box.inside(*rectangle[:4]).middle
                                     for form in forms for rectangle in form.controls.values()))])
                kind = dice.random()
                if kind < 0.3:
                    commands += ["key", dice.choice(keys)]
                elif kind < 0.7:
                    commands += ["mousemove", *hand.on_screen(place), "click", dice.choice([1, 1, 1, 1, 2, 3, 4, 5])]
                elif kind < 0.95:
                    end = (dice.uniform(-399, 399), dice.uniform(-299, 299))
                    commands += ["mousemove", *hand.on_screen(place), "mousedown", 1, "mousemove",
                                 *hand.on_screen(end), "mouseup", 1]
                else:
                    commands += ["key", "F12"]
                actions += 1
            hand.do(*commands)
            self.assertTrue(player.running(), player.output())
            hand.look_again()
        self.assertEqual(player.quit(), 0, player.output())
        self.assertNotRegex(player.output(), "Sanitizer|runtime error")


if __name__ == "__main__":
    unittest.main()
