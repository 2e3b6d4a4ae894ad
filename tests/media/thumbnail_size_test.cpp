// SPDX-License-Identifier: MIT
#include "media/thumbnail_size.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

void expect_size(double aspect, int width, int height) {
    const ThumbnailSize size = thumbnail_size(aspect);
    EXPECT_EQ(size.width, width) << aspect;
    EXPECT_EQ(size.height, height) << aspect;
}

TEST(ThumbnailSize, UsualShapes) {
    expect_size(16.0 / 9.0, 192, 108);
    expect_size(4.0 / 3.0, 192, 144);
    expect_size(1.0, 144, 144);
    expect_size(2.39, 192, 80);
    expect_size(1920.0 / 804.0, 192, 80);
    expect_size(1.85, 192, 104);  // 192 / 1.85 + 0.5 = 104.3
    expect_size(5.0 / 4.0, 180, 144);
    expect_size(9.0 / 16.0, 81, 144);
}

TEST(ThumbnailSize, BitOfValueTwoIsClearedAndNoOther) {
    expect_size(147.0 / 144.0, 145, 144);
    expect_size(146.0 / 144.0, 144, 144);
    expect_size(145.0 / 144.0, 145, 144);
    expect_size(144.0 / 144.0, 144, 144);
    expect_size(192.0 / 107.0, 192, 105);
    expect_size(192.0 / 106.0, 192, 104);
    expect_size(192.0 / 105.0, 192, 105);
}

TEST(ThumbnailSize, WidthDecidesAfterItsBitIsCleared) {
    expect_size(193.0 / 144.0, 192, 141);  // 192 / (193 / 144) + 0.5 = 143.75, its bit cleared
    expect_size(194.0 / 144.0, 192, 144);  // 194 without the bit is 192
    expect_size(195.0 / 144.0, 192, 140);  // 193 without it; 192 / (195 / 144) + 0.5 = 142.3
}

TEST(ThumbnailSize, RoundsHalvesUp) {
    expect_size(140.5 / 144.0, 141, 144);
    expect_size(140.49 / 144.0, 140, 144);
}

TEST(ThumbnailSize, ExtremeShapesKeepAPixel) {
    const double infinity = std::numeric_limits<double>::infinity();
    expect_size(1.0 / 4000.0, 1, 144);
    expect_size(2.0 / 144.0, 1, 144);  // the bit was all there was
    expect_size(4000.0, 192, 1);
    expect_size(1e300, 192, 1);
    expect_size(infinity, 192, 1);
    expect_size(0.0, 1, 144);
    expect_size(-1.0, 1, 144);
}

TEST(ThumbnailAspect, PixelsHaveAShape) {
    EXPECT_DOUBLE_EQ(thumbnail_aspect(1920, 1080, 0.0), 16.0 / 9.0);
    EXPECT_DOUBLE_EQ(thumbnail_aspect(1920, 1080, 1.0), 16.0 / 9.0);
    EXPECT_DOUBLE_EQ(thumbnail_aspect(720, 576, 16.0 / 15.0), 4.0 / 3.0);
    EXPECT_DOUBLE_EQ(thumbnail_aspect(720, 576, 64.0 / 45.0), 16.0 / 9.0);
}

TEST(ThumbnailAspect, NonsenseCountsAsSquare) {
    EXPECT_DOUBLE_EQ(thumbnail_aspect(640, 480, -2.0), 4.0 / 3.0);
    EXPECT_DOUBLE_EQ(thumbnail_aspect(640, 480, NAN), 4.0 / 3.0);
    EXPECT_DOUBLE_EQ(thumbnail_aspect(640, 480, INFINITY), 4.0 / 3.0);
}

// Pixels whose red is `low` and `high` in turn; green and blue vary wildly.
std::vector<std::uint8_t> stripes(std::uint8_t low, std::uint8_t high) {
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < 1000; ++i) {
        bytes.push_back(i % 2 ? high : low);
        bytes.push_back(static_cast<std::uint8_t>(i * 37));
        bytes.push_back(static_cast<std::uint8_t>(i * 91));
    }
    return bytes;
}

bool flat(const std::vector<std::uint8_t>& bytes) {
    return is_flat(bytes.data(), bytes.size());
}

TEST(ThumbnailFlatness, VarianceOfRedDecides) {
    // Two values d apart, each half of the time, vary by d * d / 4.
    EXPECT_TRUE(flat(stripes(100, 100)));
    EXPECT_TRUE(flat(stripes(100, 108)));   // 16
    EXPECT_FALSE(flat(stripes(100, 109)));  // 20.25
    EXPECT_FALSE(flat(stripes(0, 255)));
    EXPECT_TRUE(flat(stripes(247, 255)));
    EXPECT_FALSE(flat(stripes(246, 255)));
}

// Pixels of these values of red, black otherwise.
std::vector<std::uint8_t> reds(const std::vector<int>& values) {
    std::vector<std::uint8_t> bytes;
    for (const int red : values)
        bytes.insert(bytes.end(), {static_cast<std::uint8_t>(red), 0, 0});
    return bytes;
}

TEST(ThumbnailFlatness, TwentyIsNotFlat) {
    EXPECT_TRUE(flat(reds({0, 4, 4, 12})));   // mean of squares 44, square of the mean 25
    EXPECT_FALSE(flat(reds({0, 4, 8, 12})));  // 56 and 36
}

TEST(ThumbnailFlatness, NoPixelsAreFlat) {
    EXPECT_TRUE(is_flat(nullptr, 0));
    const std::uint8_t two[] = {0, 255};
    EXPECT_TRUE(is_flat(two, 2));
}

}  // namespace
