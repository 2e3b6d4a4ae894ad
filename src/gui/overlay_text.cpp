// SPDX-License-Identifier: MIT
#include "gui/overlay_text.h"

#include "gui/gl_font.h"
#include "gui/graphics.h"

namespace {

const pointf diagonals[] = {{-1.0F, -1.0F}, {-1.0F, 1.0F}, {1.0F, -1.0F}, {1.0F, 1.0F}};

}  // namespace

void draw_overlay_text(const OverlayText& text) {
    setopacity(1.0F);
    // The colour comes first: an opaque one ends the blending that the characters need.
    if (text.outlined) {
        glSetColor({0.0F, 0.0F, 0.0F, text.alpha});
        default_font.Begin();
        for (const pointf d : diagonals)
            default_font.DrawString(text.text, text.scale, text.x + d.x, text.y + d.y);
        default_font.End();
    }
    glSetColor({1.0F, 1.0F, 1.0F, text.alpha});
    default_font.Begin();
    default_font.DrawString(text.text, text.scale, text.x, text.y);
    default_font.End();
}
