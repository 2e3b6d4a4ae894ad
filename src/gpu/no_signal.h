// SPDX-License-Identifier: MIT
#pragma once

#include <SDL.h>

/// The field of the animation that stands for a film while nothing is open: the whole width of the
/// window without a sixth of its height above and below.
SDL_Rect no_signal_rectangle(int screen_width, int screen_height);

/// The time to draw the animation at, in seconds from 0 on: `ms` milliseconds, starting again after
/// every few rolls of the band over a screen of `screen_height` pixels. The square of a long time
/// would leave no digits for the noise.
float no_signal_time(Uint32 ms, int screen_height);

/// Draws the animation into the field `r` at `time` seconds. [main]
void draw_no_signal(const SDL_Rect& r, int screen_height, float time);
