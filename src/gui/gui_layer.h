// SPDX-License-Identifier: MIT
#pragma once

/// Draws the interface over what is in the window, with smooth lines through the middle of pixels.
/// Leaves blending and smoothing off. [main]
void draw_gui();
