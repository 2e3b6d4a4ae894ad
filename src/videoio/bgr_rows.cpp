// SPDX-License-Identifier: MIT
#include "videoio/bgr_rows.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace {

// Two packed pixels at a time, as long as eight bytes of the row are left to read: what is written
// beyond the second pixel comes from the third and is written again. Returns the pixels done.
int convert_pairs(const std::uint8_t* row, int width, std::uint8_t* out) {
    constexpr std::uint64_t greens = 0x000000FF0000FF00;
    constexpr std::uint64_t firsts = 0x00000000FF0000FF;
    constexpr std::uint64_t lasts = 0x0000FF0000FF0000;
    int x = 0;
    for (; x + 3 <= width; x += 2, row += 6, out += 6) {
        std::uint64_t rgb = 0;
        std::memcpy(&rgb, row, sizeof rgb);
        const std::uint64_t bgr = (rgb & greens) | (rgb >> 16 & firsts) | (rgb << 16 & lasts);
        std::memcpy(out, &bgr, sizeof bgr);
    }
    return x;
}

}  // namespace

std::int64_t padded_row_bytes(int width) {
    return (std::int64_t{width} * 3 + 3) / 4 * 4;
}

void convert_to_bgr(const std::uint8_t* row, int pixel_stride, int width, std::uint8_t* out) {
    int x = 0;
    if (pixel_stride == 3 && std::endian::native == std::endian::little) {
        x = convert_pairs(row, width, out);
    }
    const std::uint8_t* pixel = row + std::ptrdiff_t{x} * pixel_stride;
    for (std::uint8_t* bgr = out + std::ptrdiff_t{x} * 3; x < width; ++x) {
        bgr[0] = pixel[2];
        bgr[1] = pixel[1];
        bgr[2] = pixel[0];
        pixel += pixel_stride;
        bgr += 3;
    }
    const std::ptrdiff_t bytes = std::ptrdiff_t{width} * 3;
    std::memset(out + bytes, 0, static_cast<std::size_t>(padded_row_bytes(width) - bytes));
}
