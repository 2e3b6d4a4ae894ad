// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"
#include "gpu/video_picture.h"

/// The factor and the offset that the settings "contrast" and "brightness" stand for.
struct ColourAdjustment {
    float c;  ///< 2 to the power "contrast"
    float b;  ///< "brightness"
};
ColourAdjustment colour_adjustment();

/// Converts `staging` (one channel, 3/2 of the height of `rgb`, planes packed as
/// shader_YUV420p_to_RGB reads them) into `rgb`, contrast and brightness included. [main]
void convert_yuv420p_to_rgb(gl_texture_resource* staging, gl_texture_resource* rgb);

/// Applies the settings "brightness" and "contrast" to the picture's RGB texture in place, when one
/// of them is not 0 and the picture is not marked converted; marks it. [main]
void brightness_contrast_enhancement(VideoPicture* pic);

/// Draws `original` over the left part of `output`, up to a red line: in the middle, or, with
/// `show_original`, behind the right edge. The two may differ in size. [main]
void show_demo_overlay(gl_texture_resource* output, gl_texture_resource* original,
                       bool show_original);

/// Makes the seeking effect the current program, with `texIn` on unit 0. `height` is the height of
/// the picture on screen in pixels, `time` in seconds. End it with `glUseProgram(0)`. [main]
void begin_seeking_effect(int height, int screen_height, float time);
