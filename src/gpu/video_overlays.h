// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/video_picture.h"

/// Draws a red arrow per cell over the picture, in the picture's pixels. [main]
void draw_motion_vectors(const VideoPicture& pic);

/// Tints every cell red, the more the coarser it was quantised. [main]
void draw_quantization(const VideoPicture& pic);

/// Length of the two strokes of the arrow of a vector, in pixels.
float arrow_stroke_length(MotionVector v);
