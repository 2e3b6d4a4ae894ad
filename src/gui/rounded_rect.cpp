// SPDX-License-Identifier: MIT
#include "gui/graphics.h"

#include <cmath>

namespace {

constexpr int steps_per_turn = 16;
constexpr int points_per_arc = 5;

// Five points of a circle around `centre`, from a quarter turn's start on.
pointf* arc(pointf* out, int quarter, pointf centre, pointf radius) {
    constexpr float full_turn = 6.2831855F;
    for (int point = 0; point < points_per_arc; ++point) {
        const int step = quarter * (points_per_arc - 1) + point;
        const double angle = static_cast<float>(step) * full_turn / steps_per_turn;
        *out++ = {static_cast<float>(centre.x + radius.x * std::cos(angle)),
                  static_cast<float>(centre.y + radius.y * std::sin(angle))};
    }
    return out;
}

}  // namespace

void roundedrect(const rectf* r, const pointf* radius, pointf* out, int* count, bool relative) {
    const pointf radii[4] = {*radius, *radius, *radius, *radius};
    roundedrect2(r, radii, out, count, relative);
}

void roundedrect2(const rectf* r, const pointf radii[4], pointf* out, int* count, bool relative) {
    if (*count < rounded_points) {
        *count = 0;
        return;
    }
    *count = rounded_points;
    const float s = !relative ? 1.0F : (r->h <= r->w ? r->h : r->w);
    const auto scaled = [&](int corner) {
        return pointf(radii[corner].x * s, radii[corner].y * s);
    };
    const pointf near_near = scaled(0);
    const pointf far_near = scaled(1);
    const pointf far_far = scaled(2);
    const pointf near_far = scaled(3);
    const float right = r->x + r->w;
    const float bottom = r->y + r->h;
    out = arc(out, 0, {right - far_far.x, bottom - far_far.y}, far_far);
    out = arc(out, 1, {r->x + near_far.x, bottom - near_far.y}, near_far);
    out = arc(out, 2, {r->x + near_near.x, r->y + near_near.y}, near_near);
    arc(out, 3, {right - far_near.x, r->y + far_near.y}, far_near);
}
