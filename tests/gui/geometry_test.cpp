// SPDX-License-Identifier: MIT
#include "gui/geometry.h"

#include <gtest/gtest.h>

namespace {

TEST(Geometry, PointsAddAndSubtract) {
    const pointf sum = pointf(1, 2) + pointf(3, 5);
    EXPECT_EQ(sum.x, 4.0F);
    EXPECT_EQ(sum.y, 7.0F);
    const pointf difference = pointf(1, 2) - pointf(3, 5);
    EXPECT_EQ(difference.x, -2.0F);
    EXPECT_EQ(difference.y, -3.0F);
    const pointf negated = -pointf(1, -2);
    EXPECT_EQ(negated.x, -1.0F);
    EXPECT_EQ(negated.y, 2.0F);
}

TEST(Geometry, FarEdgesOfARectangleAreOutside) {
    const rectf r(10, 20, 30, 40);
    EXPECT_TRUE(r.contains({10, 20}));
    EXPECT_TRUE(r.contains({39.5F, 59.5F}));
    EXPECT_FALSE(r.contains({40, 30}));
    EXPECT_FALSE(r.contains({15, 60}));
    EXPECT_FALSE(r.contains({9.9F, 30}));
    EXPECT_FALSE(rectf().contains({0, 0}));
}

TEST(Geometry, CentreOriginAndMove) {
    rectf r(10, 20, 30, 40);
    EXPECT_EQ(r.center().x, 25.0F);
    EXPECT_EQ(r.center().y, 40.0F);
    const pointf origin = r;
    EXPECT_EQ(origin.x, 10.0F);
    EXPECT_EQ(origin.y, 20.0F);
    rectf copy = (r += pointf(1, -2));
    copy.x = 99;
    EXPECT_EQ(copy.x, 99.0F);
    EXPECT_EQ(r.x, 11.0F) << "the result is a copy";
    EXPECT_EQ(r.y, 18.0F);
    EXPECT_EQ(r.w, 30.0F);
}

}  // namespace
