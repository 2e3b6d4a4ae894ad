// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"
#include "gui/kept_drawing.h"

#include <string>
#include <vector>

/// A text over the picture, in the coordinates that are in force.
struct OverlayText {
    std::string text;
    float x = 0.0F;
    float y = 0.0F;  ///< bottom edge of the first line
    float scale = 1.0F;
    float alpha = 1.0F;
    bool outlined = false;  ///< in black by one unit, against bright pictures

    bool operator==(const OverlayText&) const = default;
};

/// Draws the text in white. Sets the opacity of everything drawn later to 1. [main]
void draw_overlay_text(const OverlayText& text);

/// Texts that stay for many frames. They are drawn once and kept: an outline alone draws each
/// character four times. Holds GL objects: [main] only.
class LastingTexts {
  public:
    void draw(const std::vector<OverlayText>& texts);

  private:
    std::vector<OverlayText> last_;
    KeptDrawing kept_;
    bool is_kept_ = false;
};
