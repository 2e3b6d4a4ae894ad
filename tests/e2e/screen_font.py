# SPDX-License-Identifier: MIT
"""Reads the player's text in pictures of its window, with the player's own font file."""

import math
import os
import struct

FONT_FILE = os.path.join(os.path.dirname(__file__), "..", "..", "src", "gui", "default_font.glf")


class Glyph:
    """How much of each pixel a character covers at scale 1, rows from the top."""

    def __init__(self, record, texels, width, height):
        w, h, left, top, right, bottom = record
        self.width, self.height = round(w * width), round(h * height)
        first = round(left * width)
        # A row is left out at the top and the bottom; the rest is spread over the whole height.
        top, bottom = top * height + 1, bottom * height - 1
        self.top, self.bottom, self.first = top, bottom, first
        self.rows = []
        for row in range(self.height):
            at = top + (bottom - top) * (row + 0.5) / self.height - 0.5
            upper, part = int(at // 1), at % 1
            self.rows.append([
                (1 - part) * texels[upper * width + first + x] + part * texels[(upper + 1) * width + first + x]
                for x in range(self.width)])  # fmt: skip


class ScreenFont:
    def __init__(self):
        with open(FONT_FILE, "rb") as file:
            data = file.read()
        _, width, height, self.first, last = struct.unpack_from("<5i", data)
        count = last - self.first + 1
        start = 24 + 24 * count
        texels = [value / 255 for value in data[start : start + 2 * width * height : 2]]
        self.texels, self.atlas_width = texels, width
        self.glyphs = {
            chr(self.first + i): Glyph(struct.unpack_from("<6f", data, 24 + 24 * i), texels, width, height)
            for i in range(count)}  # fmt: skip
        self.line_height = self.glyphs["A"].height

    def width(self, text):
        return sum(self.glyphs[c].width for c in text)

    def shows(self, picture, text, x, y):
        """How much of the text's strokes is white in the picture, 0 to 1. (x, y) is the lower left corner
        of the text."""
        white = strokes = 0
        for c in text:
            glyph = self.glyphs[c]
            for row, values in enumerate(glyph.rows):
                for column, coverage in enumerate(values):
                    if coverage < 0.9:
                        continue
                    strokes += 1
                    white += min(picture.pixel(x + column, y - glyph.height + row)) > 190
            x += glyph.width
        return white / strokes

    def shows_centred(self, picture, text, line=0):
        """The same for a line of a subtitle in a window of 800 x 600."""
        x = (picture.width - self.width(text)) // 2
        return self.shows(picture, text, x, picture.height - 80 + line * self.line_height)

    def read_right_aligned(self, picture, right, y, alphabet, background=5):
        """The opaque text over a plain background that ends at `right`, with its lower edge at `y`."""
        rows = [picture.data[row * picture.width * 3 : (row + 1) * picture.width * 3 : 3]
                for row in range(y - self.line_height, y)]  # fmt: skip
        wanted = {c: [[255 * part * part + background * (1 - part) for part in row] for row in self.glyphs[c].rows]
                  for c in alphabet}  # fmt: skip
        text = ""
        while not text.startswith("   "):
            best = min((self._difference(rows, wanted[c], right - self.glyphs[c].width), c)
                       for c in alphabet if self.glyphs[c].width <= right)
            if best[0] > 6:
                break
            text = best[1] + text
            right -= self.glyphs[best[1]].width
        return text.strip()

    def covered(self, text, x, y, scale):
        """How much of each pixel a text covers, {(x, y): 0 to 1}, that widgets draw with its lower left corner
        at (x, y). Widgets are half a pixel further right and down than the numbers say."""
        pixels = {}
        for c in text:
            glyph = self.glyphs[c]
            width, height = glyph.width * scale, glyph.height * scale
            for py in range(math.ceil(y - height), math.ceil(y)):
                for px in range(math.ceil(x), math.ceil(x + width)):
                    v = glyph.top + (glyph.bottom - glyph.top) * (py - y + height) / height - 0.5
                    pixels[px, py] = self._texel(glyph.first + (px - x) / scale - 0.5, v)
            x += width
        return pixels

    def _texel(self, u, v):
        column, row = math.floor(u), math.floor(v)
        across, down = u - column, v - row

        def at(x, y):
            return self.texels[y * self.atlas_width + x] if 0 <= x < self.atlas_width and y >= 0 else 0

        upper = at(column, row) * (1 - across) + at(column + 1, row) * across
        lower = at(column, row + 1) * (1 - across) + at(column + 1, row + 1) * across
        return upper * (1 - down) + lower * down

    def shows_scaled(self, picture, text, x, y, scale):
        """How much a text of a widget looks like itself, 0 to 1: its strokes are as white as they should be,
        and what lies between them is not."""
        strokes = white = gaps = dark = 0
        for (px, py), coverage in self.covered(text, x, y, scale).items():
            if not (0 <= px < picture.width and 0 <= py < picture.height):
                return 0
            value = min(picture.pixel(px, py))
            if coverage > 0.8:
                strokes += 1
                white += value > 0.8 * 255 * coverage * coverage
            elif coverage < 0.05:
                gaps += 1
                dark += value < 160
        return min(white / strokes, dark / gaps) if strokes and gaps else 0

    def stands_out(self, picture, text, x, y, scale):
        """How much brighter a text's strokes are than what lies between them, as a share of white. What is half
        faded is half as bright."""
        strokes, gaps = [], []
        for (px, py), coverage in self.covered(text, x, y, scale).items():
            if not (0 <= px < picture.width and 0 <= py < picture.height):
                return 0
            if coverage > 0.8:
                strokes.append(min(picture.pixel(px, py)) / (255 * coverage * coverage))
            elif coverage < 0.05:
                gaps.append(min(picture.pixel(px, py)) / 255)
        return sum(strokes) / len(strokes) - sum(gaps) / len(gaps) if strokes and gaps else 0

    def read_scaled(self, picture, pattern, x, y, scale):
        """The digits that stand in place of the "0" in `pattern`, over a plain dark background. All digits
        are equally wide. None where it is not like that."""
        text = list(pattern)
        worst = 0
        for place, c in enumerate(pattern):
            left = x + self.width(pattern[:place]) * scale
            found = min((self._mean_difference(picture, candidate, left, y, scale), candidate)
                        for candidate in ("0123456789" if c == "0" else c))
            worst = max(worst, found[0])
            text[place] = found[1]
        return "".join(text) if worst < 12 else None

    def _mean_difference(self, picture, c, x, y, scale):
        pixels = self.covered(c, x, y, scale).items()
        return sum(abs(min(picture.pixel(*place)) - 255 * part * part) for place, part in pixels) / len(pixels)

    @staticmethod
    def _difference(rows, wanted, x):
        """Mean difference of pixels from those wanted; of two that fit alike the wider one is better."""
        width = len(wanted[0])
        total = sum(abs(found - value) for row, values in zip(rows, wanted)
                    for found, value in zip(row[x : x + width], values))  # fmt: skip
        return total / (width * len(wanted)) - 0.01 * width
