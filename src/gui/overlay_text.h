// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A text over the picture, in the coordinates that are in force.
struct OverlayText {
    std::string text;
    float x = 0.0F;
    float y = 0.0F;  ///< bottom edge of the first line
    float scale = 1.0F;
    float alpha = 1.0F;
    bool outlined = false;  ///< in black by one unit, against bright pictures
};

/// Draws the text in white. Sets the opacity of everything drawn later to 1. [main]
void draw_overlay_text(const OverlayText& text);
