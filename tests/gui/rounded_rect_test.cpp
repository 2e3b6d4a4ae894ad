// SPDX-License-Identifier: MIT
#include "gui/graphics.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace {

using Outline = std::array<pointf, rounded_points>;

constexpr double degrees = 3.14159265358979 / 180.0;

// One corner: its arc's centre and radii, and where its five points start.
struct Corner {
    pointf centre;
    pointf radius;
    double start;
};

// Measured 1.52e-5 at most, half a step of the floats around 280.
constexpr double tolerance = 2e-5;

void expect_corners(const Outline& points, const std::array<Corner, 4>& corners) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Corner& c = corners[i / 5];
        const double angle = (c.start + 22.5 * static_cast<double>(i % 5)) * degrees;
        EXPECT_NEAR(points[i].x, c.centre.x + c.radius.x * std::cos(angle), tolerance) << i;
        EXPECT_NEAR(points[i].y, c.centre.y + c.radius.y * std::sin(angle), tolerance) << i;
    }
}

TEST(RoundedRectangle, AllTwentyPoints) {
    const rectf r(10, 20, 40, 30);
    const pointf radius(3, 5);
    Outline out;
    int count = rounded_points;
    roundedrect(&r, &radius, out.data(), &count, false);
    ASSERT_EQ(count, 20);
    expect_corners(out, {Corner{{47, 45}, radius, 0}, Corner{{13, 45}, radius, 90},
                         Corner{{13, 25}, radius, 180}, Corner{{47, 25}, radius, 270}});
    // The straight edges.
    EXPECT_NEAR(out[4].y, 50, tolerance);
    EXPECT_NEAR(out[5].y, 50, tolerance);
    EXPECT_NEAR(out[9].x, 10, tolerance);
    EXPECT_NEAR(out[10].x, 10, tolerance);
    EXPECT_NEAR(out[14].y, 20, tolerance);
    EXPECT_NEAR(out[15].y, 20, tolerance);
    EXPECT_NEAR(out[19].x, 50, tolerance);
    EXPECT_NEAR(out[0].x, 50, tolerance);
}

TEST(RoundedRectangle, ARelativeRadiusIsAShareOfTheSmallerSide) {
    const pointf half(0.5F, 0.5F);
    for (const rectf& r : {rectf(0, 0, 40, 20), rectf(0, 0, 20, 40)}) {
        Outline out;
        int count = rounded_points;
        roundedrect(&r, &half, out.data(), &count, true);
        ASSERT_EQ(count, 20);
        const pointf ten(10, 10);
        expect_corners(out, {Corner{{r.w - 10, r.h - 10}, ten, 0}, Corner{{10, r.h - 10}, ten, 90},
                             Corner{{10, 10}, ten, 180}, Corner{{r.w - 10, 10}, ten, 270}});
    }
    const rectf r(0, 0, 40, 20);
    Outline out;
    int count = rounded_points;
    const pointf uneven(0.1F, 0.25F);
    roundedrect(&r, &uneven, out.data(), &count, true);
    const pointf radius(2, 5);
    expect_corners(out, {Corner{{38, 15}, radius, 0}, Corner{{2, 15}, radius, 90},
                         Corner{{2, 5}, radius, 180}, Corner{{38, 5}, radius, 270}});
}

TEST(RoundedRectangle, ARadiusForEachCorner) {
    const rectf r(100, 200, 60, 80);
    const pointf radii[4] = {{1, 2}, {3, 4}, {5, 6}, {7, 8}};
    Outline out;
    int count = rounded_points;
    roundedrect2(&r, radii, out.data(), &count, false);
    ASSERT_EQ(count, 20);
    expect_corners(out, {Corner{{155, 274}, radii[2], 0}, Corner{{107, 272}, radii[3], 90},
                         Corner{{101, 202}, radii[0], 180}, Corner{{157, 204}, radii[1], 270}});

    const pointf shares[4] = {{0.1F, 0.1F}, {0.2F, 0.1F}, {0.3F, 0.1F}, {0.1F, 0.4F}};
    roundedrect2(&r, shares, out.data(), &count, true);
    expect_corners(out, {Corner{{142, 274}, {18, 6}, 0}, Corner{{106, 256}, {6, 24}, 90},
                         Corner{{106, 206}, {6, 6}, 180}, Corner{{148, 206}, {12, 6}, 270}});
}

TEST(RoundedRectangle, NeedsRoomForAllPoints) {
    const rectf r(0, 0, 10, 10);
    const pointf radii[4] = {{1, 1}, {1, 1}, {1, 1}, {1, 1}};
    for (const int room : {19, 0, -1}) {
        pointf out[1] = {{77, 77}};
        int count = room;
        roundedrect(&r, radii, out, &count, false);
        EXPECT_EQ(count, 0);
        count = room;
        roundedrect2(&r, radii, out, &count, true);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(out[0].x, 77.0F) << "nothing is written";
    }
    std::array<pointf, 25> roomy;
    roomy.fill({77, 77});
    int count = 25;
    roundedrect(&r, radii, roomy.data(), &count, false);
    EXPECT_EQ(count, 20);
    EXPECT_EQ(roomy[20].x, 77.0F);
}

}  // namespace
