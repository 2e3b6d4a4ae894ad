// SPDX-License-Identifier: MIT
#include "gui/transport_icons.h"

#include "gui/graphics.h"

namespace {

constexpr unsigned white = 0xFFFFFFFFU;

// Half the height of every triangle, and the line on which they all lie.
constexpr float reach = 5.0F;
constexpr float axis = 13.0F;

void triangle(float tip, float base) {
    const pointf corners[] = {{tip, axis}, {base, axis - reach}, {base, axis + reach}};
    fillpolyf(corners, 3);
}

void bar(float x) {
    fillrectanglef(x, axis - reach, 2.0F, 2.0F * reach);
}

}  // namespace

void draw_previous_icon() {
    bar(8);
    triangle(10, 20);
}

void draw_rewind_icon() {
    triangle(5, 15);
    triangle(15, 25);
}

void draw_pause_icon() {
    fillrectanglef(10, axis - reach, 10, 2.0F * reach);
}

void draw_play_icon() {
    triangle(20, 10);
}

void draw_fast_forward_icon() {
    triangle(15, 5);
    triangle(25, 15);
}

void draw_next_icon() {
    triangle(20, 10);
    bar(20);
}

void draw_volume_wedge(float width, float height, float share, unsigned rest) {
    constexpr float margin = 2.0F;
    const float spacing = (width - 2.0F * margin) / wedge_lines;
    // Lines go through the middle of pixels and start there, so that each lights whole ones.
    const float bottom = height - margin - 0.5F;
    const float tallest = height - 2.0F * margin;
    for (int i = 0; i < wedge_lines; ++i) {
        const float column = static_cast<float>(i) + 0.5F;
        const float x = margin + column * spacing;
        setpencolor(x <= share * width ? white : rest);
        drawlinef(x, bottom, x, bottom - tallest * static_cast<float>(i + 1) / wedge_lines);
    }
}
