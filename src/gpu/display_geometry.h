// SPDX-License-Identifier: MIT
#pragma once

#include <SDL.h>

/// Width of the whole picture over its height, from its size and the shape of its pixels
/// (`sample_aspect`, 0 or less: square).
double display_aspect(int width, int height, double sample_aspect);

/// Where a picture lies in the window.
///
/// `zoom` is the setting "spatial zoom": 0 fits the picture, 1 fills the window, 2 to 4 show it at
/// 1, 2 and 4 times its enhanced size (`height` x `factor`). The rectangle is centred and may be
/// larger than the screen; its sides are cut to what an `SDL_Rect` can hold.
SDL_Rect destination_rectangle(int zoom, int height, double aspect, int factor, int screen_width,
                               int screen_height);

/// Width and height of a picture of aspect `aspect` that fits into the given area, the value 2
/// cleared from the side that is computed.
SDL_Rect fit_rectangle(double aspect, int area_width, int area_height);

/// State of the animation between two sizes of the picture.
struct ZoomAnimation {
    SDL_Rect old_rect{0, 0, 0, 0};
    bool running = false;
    Uint32 start_ms = 0;
};

/// Moves `r` back towards the rectangle shown before: a change takes 125 ms. `now_ms` is the time
/// in milliseconds.
void animate_zoom(ZoomAnimation& zoom, SDL_Rect& r, int screen_width, int screen_height,
                  Uint32 now_ms);

/// The same with the window's own animation, size and clock. [main]
void video_scaling_animation(SDL_Rect& r);

/// Forgets the rectangle shown before, so that a new film does not grow out of the last one. [main]
void reset_video_scaling_animation();
