// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/video_picture.h"

#include "support/gl_fixture.h"

#include <initializer_list>

/// Sizes that show what goes wrong at edges, at odd widths and between blocks.
struct Size {
    int width;
    int height;
};
inline constexpr Size awkward_sizes[] = {{1, 1}, {3, 5}, {17, 9}, {64, 48}};

/// What a comparison found, for limits that have the measured value beside them.
struct Difference {
    float largest = 0.0F;
    float mean = 0.0F;
};
/// Of the first `channels` channels. Not-a-number differs from everything; so do images of two
/// sizes.
Difference difference(const Image& a, const Image& b, int channels = 4);
/// Relative to `b`, whose values below `smallest` count as that.
Difference relative_difference(const Image& a, const Image& b, int channels = 4,
                               float smallest = 0.01F);

/// Only 0 and 1, changing from texel to texel.
Image extreme_image(int width, int height, unsigned seed);

/// A smooth picture with edges, alpha 1: what films look like.
Image film_like_image(int width, int height, float shift_x = 0.0F, float shift_y = 0.0F);

/// Values in proportion to the grid of a picture's cells.
Image constant_image(int width, int height, Rgba value);

/// Gives `pic` the textures and grids for a picture of this size at `factor`. Vectors are (0, 0),
/// quantisers 1, nothing is in the textures.
void make_picture(VideoPicture& pic, int width, int height, int factor);

/// Random vectors up to `reach` source texels either way, and quantisers from `lowest` to
/// `highest`.
void randomise_vectors(VideoPicture& pic, int reach, unsigned seed);
void randomise_quantisers(VideoPicture& pic, int lowest, int highest, unsigned seed);

/// Brings the vectors into the picture's motion texture, a texel per cell: its own and those of the
/// next cell below on the right.
void upload_motion(VideoPicture& pic);

/// Puts an image into a texture of its size, as far as its format holds it.
void put(gl_texture_resource* texture, const Image& image);
