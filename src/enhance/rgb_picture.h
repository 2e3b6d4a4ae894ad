// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// A picture of R, G, B bytes, top row first, without gaps.
struct RgbPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;

    std::size_t row_bytes() const { return static_cast<std::size_t>(width) * 3; }
};
