// SPDX-License-Identifier: MIT
#include "media/thumbnail_size.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float flat_variance = 20.0F;
// Shapes beyond these end in a line one pixel wide anyway, and stay far from the ends of integers.
constexpr double narrowest = 1e-4;
constexpr double widest = 1e4;

int side(double length) {
    return static_cast<int>(length + 0.5) & ~2;
}

}  // namespace

double thumbnail_aspect(int width, int height, double sample_aspect) {
    const double square = static_cast<double>(width) / height;
    const double aspect = sample_aspect * square;
    return std::isfinite(aspect) && aspect > 0.0 ? aspect : square;
}

ThumbnailSize thumbnail_size(double aspect) {
    aspect = std::clamp(aspect, narrowest, widest);
    ThumbnailSize size{side(aspect * thumbnail_height), thumbnail_height};
    if (size.width > thumbnail_width) {
        size = {thumbnail_width, side(thumbnail_width / aspect)};
    }
    return {std::max(size.width, 1), std::max(size.height, 1)};
}

bool is_flat(const std::uint8_t* pixels, std::size_t bytes) {
    const std::size_t count = bytes / 3;
    if (count == 0) return true;
    std::uint64_t sum = 0;
    std::uint64_t squares = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t red = pixels[i * 3];
        sum += red;
        squares += red * red;
    }
    const auto n = static_cast<float>(count);
    const float mean = static_cast<float>(sum) / n;
    const float variance = static_cast<float>(squares) / n - mean * mean;
    return std::abs(variance) < flat_variance;
}
