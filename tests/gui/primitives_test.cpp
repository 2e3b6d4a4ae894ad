// SPDX-License-Identifier: MIT
#include "gui/drawing_fixture.h"

namespace {

TEST_F(DrawingTest, FillsCoverTheirRectangle) {
    const Pixels expected = block(10, 20, 30, 40);
    const rectf r(10, 20, 30, 40);
    fillrectangle(10, 20, 30, 40);
    EXPECT_EQ(unlike(lit(), expected), Pixels());
    clear();
    fillrectanglef(10.25F, 20.25F, 30, 40);
    EXPECT_EQ(unlike(lit(), expected), Pixels()) << "the middles of pixels decide";
    clear();
    fillrectanglerc(&r);
    EXPECT_EQ(unlike(lit(), expected), Pixels());
}

TEST_F(DrawingTest, OutlinesReachTheFarEdges) {
    const Pixels expected = frame(10, 20, 31, 41);
    const rectf r(10, 20, 30, 40);
    to_middles();
    rectangle(10, 20, 30, 40);
    EXPECT_EQ(unlike(lit(), expected), Pixels());
    clear();
    rectanglef(10, 20, 30, 40);
    EXPECT_EQ(unlike(lit(), expected), Pixels());
    clear();
    rectanglerc(&r);
    EXPECT_EQ(unlike(lit(), expected), Pixels());
}

TEST_F(DrawingTest, LinesLeaveTheirLastPixel) {
    to_middles();
    drawline(10, 20, 15, 20);
    EXPECT_EQ(unlike(lit(), block(10, 20, 5, 1)), Pixels());
    clear();
    drawlinef(10, 20, 10, 27);
    EXPECT_EQ(unlike(lit(), block(10, 20, 1, 7)), Pixels());
}

TEST_F(DrawingTest, PolygonsAreClosed) {
    const pointf corners[] = {{10, 20}, {30, 20}, {30, 50}, {10, 50}};
    to_middles();
    drawpolyf(corners, 4);
    Pixels missing = unlike(lit(), frame(10, 20, 21, 31));
    missing.erase({30, 50});  // a driver may leave out a pixel where two lines meet: llvmpipe does
    EXPECT_EQ(missing, Pixels());
    clear();
    drawpolyf(corners, 0);
    EXPECT_TRUE(lit().empty());
}

TEST_F(DrawingTest, PolygonsAreFilled) {
    const pointf square[] = {{10, 20}, {30, 20}, {30, 50}, {10, 50}};
    fillpolyf(square, 4);
    EXPECT_EQ(unlike(lit(), block(10, 20, 20, 30)), Pixels());
    clear();
    const pointf triangle[] = {{10, 10}, {50, 10}, {10, 50}};
    fillpolyf(triangle, 3);
    const Pixels half = lit();
    // Drivers choose among the 40 pixels whose middles lie on the long edge.
    EXPECT_GE(half.size(), 780U);
    EXPECT_LE(half.size(), 820U);
    EXPECT_TRUE(half.contains({11, 11}));
    EXPECT_FALSE(half.contains({48, 48}));
    clear();
    fillpolyf(square, 0);
    EXPECT_TRUE(lit().empty());
}

// Draws with a rectangle texture of this size bound, whose texels all differ.
class TexturedFillTest : public DrawingTest {
  protected:
    void SetUp() override {
        DrawingTest::SetUp();
        texture_ = upload(image_, GL_RGBA);
        glBindTexture(GL_TEXTURE_RECTANGLE, texture_->name());
        glTexParameteri(GL_TEXTURE_RECTANGLE, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_RECTANGLE, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glEnable(GL_TEXTURE_RECTANGLE);
    }
    void TearDown() override {
        glDisable(GL_TEXTURE_RECTANGLE);
        glBindTexture(GL_TEXTURE_RECTANGLE, 0);
        texture_ = nullptr;
        DrawingTest::TearDown();
    }
    float difference_at(int x, int y) {
        const Image shown = window();
        const Image part = make_image(image_.width(), image_.height(),
                                      [&](int i, int j) { return shown.at(x + i, y + j); });
        return largest_difference(part, image_, 3);
    }

    const Image image_ = as_8_bits(random_image(17, 9, 3));
    object_ref<gl_texture_resource> texture_;
};

// Measured 0 in each.
TEST_F(TexturedFillTest, ATexelIsAUnit) {
    fillrectangle(30, 40, 17, 9);
    EXPECT_LE(difference_at(30, 40), 0.002F);
    clear();
    fillrectanglef(50, 60, 17, 9);
    EXPECT_LE(difference_at(50, 60), 0.002F);
    clear();
    const rectf r(70, 80, 17, 9);
    fillrectanglerc(&r);
    EXPECT_LE(difference_at(70, 80), 0.002F);
    clear();
    const pointf corners[] = {{47, 49}, {30, 49}, {30, 40}, {47, 40}};
    fillpolyf(corners, 4);
    EXPECT_LE(difference_at(30, 40), 0.002F) << "from the minimum corner, whichever comes first";
}

TEST(PolygonBounds, HaveNoExtent) {
    rectf bounds(9, 9, 9, 9);
    const pointf triangle[] = {{0, 0}, {4, 1}, {2, 5}};
    getpolygonbounds(&bounds, triangle, 3);
    EXPECT_EQ(bounds.x, 0.0F);
    EXPECT_EQ(bounds.y, 0.0F);
    EXPECT_EQ(bounds.w, 0.0F);
    EXPECT_EQ(bounds.h, 0.0F);
}

TEST(PolygonBounds, StartAtTheMinimumCorner) {
    rectf bounds;
    const pointf points[] = {{3, 7}, {-4, 9}, {12, -5}};
    getpolygonbounds(&bounds, points, 3);
    EXPECT_EQ(bounds.x, -4.0F);
    EXPECT_EQ(bounds.y, -5.0F);
    EXPECT_EQ(bounds.w, 0.0F);
    EXPECT_EQ(bounds.h, 0.0F);
    getpolygonbounds(&bounds, points, 1);
    EXPECT_EQ(bounds.x, 3.0F);
    EXPECT_EQ(bounds.y, 7.0F);
    getpolygonbounds(&bounds, points, 0);
    EXPECT_EQ(bounds.x, 3.0F) << "untouched";
}

TEST_F(DrawingTest, ShapesWithoutADrawingLeaveTheFrame) {
    const rectf r(10, 10, 50, 50);
    const pointf points[] = {{10, 10}, {60, 10}, {60, 60}, {10, 60}};
    ellipse(10, 10, 50, 50);
    fillellipse(10, 10, 50, 50);
    ellipsef(10, 10, 50, 50);
    fillellipsef(10, 10, 50, 50);
    ellipserc(&r);
    fillellipserc(&r);
    drawarcf(10, 10, 50, 50, 0, 270);
    drawarcrc(&r, 0, 270);
    drawpie(&r, 0, 270);
    fillpie(&r, 0, 270);
    drawcurvef(points, 4);
    drawpath();
    fillpath();
    EXPECT_TRUE(lit().empty());
    fillrectangle(20, 20, 10, 10);
    EXPECT_EQ(unlike(lit(), block(20, 20, 10, 10)), Pixels()) << "drawing would have been seen";
}

TEST_F(DrawingTest, TransformsWithoutAnEffectLeaveTheMatrix) {
    translate_transform(3, 4);
    const auto before = matrix();
    set_transform(1, 2, 3, 4, 5, 6);
    rotate_pretransform(30);
    scale_pretransform(2, 3);
    translate_pretransform(5, 6);
    EXPECT_EQ(matrix(), before);
}

TEST_F(DrawingTest, TheLastTransformAppliesFirst) {
    push_transform();
    translate_transform(100, 50);
    scale_transform(2, 3);
    fillrectangle(1, 2, 10, 10);
    EXPECT_EQ(unlike(lit(), block(102, 56, 20, 30)), Pixels());
    clear();
    pop_transform();
    fillrectangle(1, 2, 10, 10);
    EXPECT_EQ(unlike(lit(), block(1, 2, 10, 10)), Pixels());
    clear();
    scale_transform(2, 3);
    translate_transform(10, 5);
    fillrectangle(1, 2, 10, 10);
    EXPECT_EQ(unlike(lit(), block(22, 21, 20, 30)), Pixels());
    clear();
    set_identity_transform();
    fillrectangle(1, 2, 10, 10);
    EXPECT_EQ(unlike(lit(), block(1, 2, 10, 10)), Pixels());
}

TEST_F(DrawingTest, RotationIsInDegreesAndClockwiseOnTheScreen) {
    translate_transform(100, 100);
    rotate_transform(90);
    fillrectangle(0, 0, 30, 10);
    // x goes down, y to the left.
    EXPECT_EQ(unlike(lit(), block(90, 100, 10, 30)), Pixels());
}

TEST_F(DrawingTest, TransformsLeaveDepthAlone) {
    scale_transform(2, 3);
    translate_transform(4, 5);
    rotate_transform(45);
    const auto m = matrix();
    EXPECT_EQ(m[10], 1.0F);
    EXPECT_EQ(m[14], 0.0F);
}

}  // namespace
