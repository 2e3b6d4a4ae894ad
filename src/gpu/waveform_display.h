// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"

#include <SDL.h>

#include <array>
#include <span>

/// The picture of the waveforms, in texels.
inline constexpr int waveform_width = 600;
inline constexpr int waveform_height = 450;
/// Channels shown at most.
inline constexpr int waveform_channels = 2;

/// One channel: an amplitude, nominally -1 to 1, for each column of the picture.
using Waveform = std::array<float, waveform_width>;

/// Where the waveforms lie in the window. `zoom` and `factor` (1 to 4) are those of a picture of
/// 600 x 450: 0 and 1 fit it into the upper seven eighths, 2 to 4 show it at 1, 2 and 4 times its
/// enlarged size.
SDL_Rect waveform_rectangle(int zoom, int factor, int screen_width, int screen_height);

/// Makes `tex` a picture for waveforms, empty when it is new. [main]
void alloc_waveforms(object_ref<gl_texture_resource>& tex);

/// Lets what is drawn in the picture fade by one step. [main]
void fade_waveforms(gl_texture_resource* tex);

/// Draws one vertical line per column and channel, the first channel's at the lowest texel rows.
/// The height of the picture is shared evenly; a line for an amplitude of 1 is half a share
/// long. [main]
void draw_waveforms(gl_texture_resource* tex, std::span<const Waveform> channels);

/// Draws the picture into the window as a quad from (0, 0) to (600, 450), its lowest texel row at
/// the top, through the effect of a picture that is scanned where `seeking`. `height` is what the
/// quad measures on screen in pixels, `time` in seconds. [main]
void show_waveforms(gl_texture_resource* tex, bool seeking, int height, int screen_height,
                    float time);
