// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"

/// The visible area of the window in GUI units: a virtual 800 x 600 screen centred on the origin.
/// Set on every change of the window's size. [main]
extern rectf screenRectangle;
