// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/video_picture.h"

/// Fills the enhanced texture of `cur`, `f` times its size (1 to 4), from its RGB texture, with
/// blocking and noise reduced. `ref`, which may be null, is the picture before it.
/// `denoising_level` is 0 to 60, `sharpening_level` 0 to 1, `recursive_threshold` 0 to 40. [main]
void spatial_deblocking_and_denoising(const VideoPicture* cur, const VideoPicture* ref, int f,
                                      float denoising_level, float sharpening_level,
                                      float recursive_threshold);

/// Writes `in`, sharpened by `level` (0 to 1), into `out`, which may be `in`. [main]
void sharpening_filter(gl_texture_resource* in, gl_texture_resource* out, float level);
