// SPDX-License-Identifier: MIT
#pragma once

// What stands on the transport bar's buttons, in the current brush and a box of 30 x 24 GUI units
// from the origin, and the wedge of its volume slider. [main]

void draw_previous_icon();
void draw_rewind_icon();
void draw_pause_icon();
void draw_play_icon();
void draw_fast_forward_icon();
void draw_next_icon();

/// Lines of the volume wedge.
inline constexpr int wedge_lines = 46;

/// Vertical lines that grow from left to right in a box of `width` x `height`: white for the first
/// `share` (0 to 1) of the width, in the packed colour `rest` after that.
void draw_volume_wedge(float width, float height, float share, unsigned rest);
