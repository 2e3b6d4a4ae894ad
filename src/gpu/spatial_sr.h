// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/video_picture.h"

/// Enlarges the RGB texture of `cur` by `factor` (1 to 4) into its enhanced texture. `ref`, which
/// may be null, is the picture before it. [main]
void spatial_sr(const VideoPicture* cur, const VideoPicture* ref, int factor);
