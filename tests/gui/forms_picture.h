// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"

#include "support/png_picture.h"

#include <functional>

/// Everything inside `area` (pixels, y downwards) of what `draw` draws over plain dark green in a
/// picture of `width` x `height`, without a window's help. Needs a GL context; leaves the window
/// current.
PngPicture drawn_picture(int width, int height, const rectf& area,
                         const std::function<void()>& draw);
