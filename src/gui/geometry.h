// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>

/// A point or a distance, in GUI units or pixels.
struct pointf {
    float x = 0.0F;
    float y = 0.0F;

    pointf() = default;
    pointf(float x_, float y_) : x(x_), y(y_) {}

    pointf operator+(pointf other) const { return {x + other.x, y + other.y}; }
    pointf operator-(pointf other) const { return {x - other.x, y - other.y}; }
    pointf operator-() const { return {-x, -y}; }
};

/// A rectangle by its origin and extent. The far edges are outside.
struct rectf {
    float x = 0.0F;
    float y = 0.0F;
    float w = 0.0F;
    float h = 0.0F;

    rectf() = default;
    rectf(float x_, float y_, float w_, float h_) : x(x_), y(y_), w(w_), h(h_) {}

    bool contains(pointf p) const { return p.x >= x && p.y >= y && p.x < x + w && p.y < y + h; }

    /// The middle, computed in double precision.
    pointf center() const {
        return {static_cast<float>(x + w * 0.5), static_cast<float>(y + h * 0.5)};
    }

    /// The origin.
    operator pointf() const { return {x, y}; }

    /// Moves the origin; returns a copy of the moved rectangle.
    rectf operator+=(pointf d) {  // NOLINT: a copy, not a reference
        x += d.x;
        y += d.y;
        return *this;
    }
};

/// The smallest rectangle that holds both.
inline rectf united(const rectf& a, const rectf& b) {
    const float x = std::min(a.x, b.x);
    const float y = std::min(a.y, b.y);
    return {x, y, std::max(a.x + a.w, b.x + b.w) - x, std::max(a.y + a.h, b.y + b.h) - y};
}
