// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"
#include "gpu/video_picture.h"

/// Compose the picture shown at `phase` (0: the previous picture, T: the current one) between two
/// decoded pictures into `out`, which has the size of the pictures' sources. T is 1 to 5. [main]

/// The current picture as it is.
void temporal_upscaling_off(gl_texture_resource* out, const VideoPicture* cur);

/// A cross-fade.
void temporal_upscaling_blend(gl_texture_resource* out, const VideoPicture* cur,
                              const VideoPicture* prev, int phase, int T);

/// The previous picture carried along by the vector of each block, without overlap.
void temporal_upscaling_motioncompensated(gl_texture_resource* out, const VideoPicture* cur,
                                          const VideoPicture* prev, float phase, int T);

/// The same, blended with what the vectors of the four or eight neighbouring blocks predict.
void temporal_upscaling_motioncompensated_overlapping_blocks_4nb(gl_texture_resource* out,
                                                                 const VideoPicture* cur,
                                                                 const VideoPicture* prev,
                                                                 float phase, int T);
void temporal_upscaling_motioncompensated_overlapping_blocks_8nb(gl_texture_resource* out,
                                                                 const VideoPicture* cur,
                                                                 const VideoPicture* prev,
                                                                 float phase, int T);

/// Interpolation methods: the values of the setting, and none at all.
inline constexpr int method_blend = 0;
inline constexpr int method_4_neighbours = 1;
inline constexpr int method_8_neighbours = 2;
inline constexpr int method_off = 255;

/// A picture between two others that has not been drawn yet.
struct DirectInterpolation {
    int method = method_off;
    const VideoPicture* cur = nullptr;
    const VideoPicture* prev = nullptr;
    float phase = 0.0F;
    int T = 1;
};

/// Draws it, by one of the three methods, into what is bound as a quad from (0, 0) to (`width`,
/// `height`) in the current transformation. Where that has fewer pixels than the pictures have
/// texels, less is computed than by drawing the picture and then reducing it.
void draw_interpolated(const DirectInterpolation& picture, int width, int height);
