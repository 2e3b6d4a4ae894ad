// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"

#include <span>
#include <string>

/// Width of `text` and height of one line in the font of all text, in units at scale 1. Needs no GL
/// context. [main]
pointf text_size(const std::string& text);

/// Draws text in `color`, its left end at x, its bottom at y. The current clipping holds. [main]
void draw_text(const std::string& text, unsigned color, float scale, pointf position);

/// A text and where it stands. The text is someone else's.
struct PlacedText {
    const std::string* text;
    pointf position;
};

/// Several at once: the font's texture is switched on and off only once. [main]
void draw_texts_together(std::span<const PlacedText> texts, unsigned color, float scale);

/// One, seen only within `clip`, a rectangle of the current coordinates. [main]
void draw_clipped_text(const std::string& text, unsigned color, float scale, pointf position,
                       const rectf& clip);

/// Where text of `size`, drawn at `scale`, stands in the middle of `area`.
pointf centered_text(pointf size, float scale, const rectf& area);
