// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"

#include <algorithm>

/// The visible area of the window in GUI units: a virtual 800 x 600 screen centred on the origin.
/// Set on every change of the window's size. [main]
extern rectf screenRectangle;

/// Pixels per GUI unit in a window of this size.
inline float gui_scale(float width, float height) {
    return std::min(height / 600.0F, width / 800.0F);
}
