// SPDX-License-Identifier: MIT
#include "gui/overlay_text.h"

#include "gui/gl_font.h"
#include "gui/graphics.h"
#include "gui/widget_text.h"

namespace {

const pointf diagonals[] = {{-1.0F, -1.0F}, {-1.0F, 1.0F}, {1.0F, -1.0F}, {1.0F, 1.0F}};

rectf area_of(const std::vector<OverlayText>& texts) {
    rectf all;
    for (const OverlayText& text : texts) {
        const pointf size = text_size(text.text);
        const rectf line(text.x, text.y - size.y * text.scale, size.x * text.scale,
                         size.y * text.scale);
        all = &text == texts.data() ? line : united(all, line);
    }
    return all;
}

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

void LastingTexts::draw(const std::vector<OverlayText>& texts) {
    const auto draw_all = [&texts] {
        for (const OverlayText& text : texts)
            draw_overlay_text(text);
    };
    if (texts != last_) {
        last_ = texts;
        is_kept_ = false;
        draw_all();
        return;
    }
    if (texts.empty()) return;
    if (!is_kept_) is_kept_ = kept_.make(area_of(texts), draw_all);
    if (is_kept_) {
        kept_.draw();
    } else {
        draw_all();
    }
}
