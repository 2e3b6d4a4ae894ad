// SPDX-License-Identifier: MIT
#include "gui/artwork.h"

#include "gui/graphics.h"

#include <GL/glew.h>

#include <cmath>
#include <numbers>

namespace {

constexpr unsigned white = 0xFFFFFFFF;
constexpr float pi = std::numbers::pi_v<float>;
constexpr float full_turn = 6.2831855F;
constexpr float ten_degrees = 0.17453292F;

pointf polar(float radius, float angle) {
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

void horizontal_line(float x0, float x1, float y) {
    drawline(static_cast<int>(x0), static_cast<int>(y), static_cast<int>(x1), static_cast<int>(y));
}

// A quarter of a tooth, whose outer edge runs from one scale to the other.
void tooth_slice(float angle, float scale, float next_scale) {
    constexpr float outer = 12.0F;
    constexpr float inner = 4.0F;
    const float next = angle + ten_degrees;
    const pointf corners[] = {polar(outer * scale, angle), polar(inner, angle), polar(inner, next),
                              polar(outer * next_scale, next)};
    fillpolyf(corners, 4);
}

void sound_wave(float radius) {
    glBegin(GL_LINE_STRIP);
    for (int k = -4; k <= 4; ++k) {
        const pointf p = polar(radius, static_cast<float>(k) * pi / 16.0F);
        glVertex2f(p.x, p.y);
    }
    glEnd();
}

}  // namespace

void artwork_draw_menuicon(float t) {
    setpencolor(white);
    const rectf frame(6, 6, 22, 22);
    const pointf radius(4, 4);
    pointf outline[rounded_points];
    int count = rounded_points;
    roundedrect(&frame, &radius, outline, &count, false);
    drawpolyf(outline, count);
    horizontal_line(frame.x, frame.x + frame.w, frame.y + 5);
    for (float f = std::fmod(t, 4.0F) + 8; f < 21; f += 4)
        horizontal_line(frame.x + 7, frame.x + frame.w - 3, frame.y + f);
}

void artwork_draw_optionicon(float t) {
    constexpr int teeth = 9;
    constexpr int slices = 4;
    const auto scale = [](int slice) {
        return 1.0F - 0.25F * std::sin(static_cast<float>(slice) * pi / 4.0F);
    };
    setbrushcolor(white);
    translate_transform(17, 17);
    rotate_transform(t);
    for (int i = 0; i < teeth; ++i) {
        for (int j = 0; j < slices; ++j) {
            const float place = static_cast<float>(i) + static_cast<float>(j) / slices;
            tooth_slice(place * full_turn / teeth, scale(j), scale(j + 1));
        }
    }
    rotate_transform(-t);
    translate_transform(-17, -17);
}

void artwork_draw_audioicon(float t) {
    setbrushcolor(white);
    translate_transform(15, 17);
    fillrectanglef(-12, -4.5F, 7, 9);
    const pointf cone[] = {{-5, -4.5F}, {3, -11}, {3, 11}, {-5, 4.5F}};
    fillpolyf(cone, 4);
    for (float f = std::fmod(t, 3.0F); f < 10; f += 3)
        sound_wave(f + 7);
    translate_transform(-15, -17);
}

void artwork_draw_fullscreenicon(float t, int mode) {
    const bool inwards = mode != 0;
    const float base = inwards ? 9.0F : 5.0F;
    const float tip = inwards ? 5.0F : 9.0F;
    const float f = std::fmod(t, 3.0F);
    setbrushcolor(white);
    translate_transform(17, 17);
    rotate_transform(12 * t);
    fillrectanglef(-3, -3, 6, 6);
    const pointf arrow[] = {{base + f, -3}, {tip + f, 0}, {base + f, 3}};
    for (int i = 0; i < 4; ++i) {
        fillpolyf(arrow, 3);
        rotate_transform(90);
    }
    translate_transform(-17, -17);
    rotate_transform(-12 * t);
}
