// SPDX-License-Identifier: MIT
#include "gui/widget_text.h"

#include "gui/gl_font.h"
#include "gui/graphics.h"

#include <utility>

pointf text_size(const std::string& text) {
    std::pair<int, int> size;
    default_font.GetStringSize(text, &size);
    return {static_cast<float>(size.first), static_cast<float>(size.second)};
}

void draw_text(const std::string& text, unsigned color, float scale, pointf position) {
    const PlacedText placed{&text, position};
    draw_texts_together({&placed, 1}, color, scale);
}

void draw_texts_together(std::span<const PlacedText> texts, unsigned color, float scale) {
    if (texts.empty()) return;
    // Before Begin: an opaque colour would end the blending that letters need.
    setpencolor(color);
    default_font.Begin();
    for (const PlacedText& placed : texts)
        default_font.DrawString(*placed.text, scale, placed.position.x, placed.position.y);
    default_font.End();
}

void draw_clipped_text(const std::string& text, unsigned color, float scale, pointf position,
                       const rectf& clip) {
    push_clippingrectangle();
    add_cliprectanglef(clip.x, clip.y, clip.w, clip.h);
    draw_text(text, color, scale, position);
    pop_clippingrectangle();
}

pointf centered_text(pointf size, float scale, const rectf& area) {
    return {area.x + (area.w - scale * size.x) / 2.0F, area.y + (area.h + scale * size.y) / 2.0F};
}
