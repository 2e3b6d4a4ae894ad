// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

/// Largest sides of a thumbnail, in pixels.
inline constexpr int thumbnail_width = 192;
inline constexpr int thumbnail_height = 144;

/// Width and height of a thumbnail, in pixels; both 1 at least.
struct ThumbnailSize {
    int width;
    int height;
};

/// The width of a picture over its height as it is meant to be shown. `sample_aspect` is the shape
/// of a pixel, 0 or less (or not a number) when nobody knows. Width and height are positive.
double thumbnail_aspect(int width, int height, double sample_aspect);

/// The size of the thumbnail of a picture `aspect` times as wide as high. As high as allowed, or as
/// wide, and then both with the bit of value 2 cleared (the width only where it decides).
ThumbnailSize thumbnail_size(double aspect);

/// Whether a picture of packed 24-bit pixels shows next to nothing: the variance of the red
/// components is below 20. `bytes` is its size; a picture without pixels is flat.
bool is_flat(const std::uint8_t* pixels, std::size_t bytes);
