// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// Bytes of a row of `width` pixels with three bytes each, filled up to a multiple of 4.
std::int64_t padded_row_bytes(int width);

/// Writes a row of `width` pixels as B, G, R and fills it up with zeros to `padded_row_bytes`.
/// `pixel_stride` is the distance from R to the next pixel's R in `row`. The two do not overlap.
void convert_to_bgr(const std::uint8_t* row, int pixel_stride, int width, std::uint8_t* out);
