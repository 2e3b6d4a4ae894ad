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
