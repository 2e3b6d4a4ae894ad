// SPDX-License-Identifier: MIT
#include "gui/drawing_fixture.h"

#include <limits>

namespace {

class ClippingTest : public DrawingTest {
  protected:
    using Box = std::array<int, 4>;

    static Box scissor() {
        Box box{};
        glGetIntegerv(GL_SCISSOR_BOX, box.data());
        return box;
    }
    static bool clips() { return glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE; }
    static Box stored(int level) {
        const rectf& r = clipping_stack[level];
        return {static_cast<int>(r.x), static_cast<int>(r.y), static_cast<int>(r.w),
                static_cast<int>(r.h)};
    }
    Pixels fill_all() {
        clear();
        fillrectangle(0, 0, window_width, window_height);
        return lit();
    }
};

TEST_F(ClippingTest, WindowCoordinatesStartAtTheBottomLeft) {
    float x = 10;
    float y = 20;
    glConvertToWindowCoords(&x, &y);
    EXPECT_NEAR(x, 10, 1e-4);
    EXPECT_NEAR(y, 220, 1e-4);
    translate_transform(100, 50);
    scale_transform(2, 3);
    x = 10;
    y = 20;
    glConvertToWindowCoords(&x, &y);
    EXPECT_NEAR(x, 120, 1e-4);
    EXPECT_NEAR(y, 240 - 110, 1e-4);
    glViewport(5, 7, window_width / 2, window_height / 2);
    x = 10;
    y = 20;
    glConvertToWindowCoords(&x, &y);
    EXPECT_NEAR(x, 5 + 60, 1e-4);
    EXPECT_NEAR(y, 7 + 65, 1e-4);
}

TEST_F(ClippingTest, ABoxIsStoredWithItsLowerCornerFirst) {
    push_clippingrectangle();
    set_cliprectanglef(10, 20, 30, 40);
    EXPECT_EQ(clipping_depth, 1);
    EXPECT_NEAR(clipping_stack[1].x, 10, 1e-4);
    EXPECT_NEAR(clipping_stack[1].y, 180, 1e-4);
    EXPECT_NEAR(clipping_stack[1].w, 30, 1e-4);
    EXPECT_NEAR(clipping_stack[1].h, 40, 1e-4);
    EXPECT_TRUE(clips());
}

// Halves, so that no driver's rounding decides.
TEST_F(ClippingTest, TheScissorBoxIsTruncated) {
    set_cliprectanglef(10.5F, 20.25F, 30.5F, 40.5F);
    EXPECT_EQ(scissor(), (Box{10, 179, 30, 40}));
    EXPECT_NEAR(clipping_stack[0].y, 179.25, 1e-4) << "the stack keeps fractions";
    set_cliprectanglef(-0.5F, 100.5F, 30.5F, 140);
    EXPECT_EQ(scissor(), (Box{0, 0, 30, 140})) << "towards zero, not down";
}

TEST_F(ClippingTest, DrawingStaysInside) {
    push_clippingrectangle();
    add_cliprectanglef(9.5F, 19.5F, 30.5F, 40);
    EXPECT_EQ(scissor(), (Box{9, 180, 30, 40}));
    EXPECT_EQ(fill_all().size(), 0U + 30 * 40) << "clearing is clipped as well";
    pop_clippingrectangle();
    EXPECT_EQ(unlike(fill_all(), block(0, 0, window_width, window_height)), Pixels());
}

TEST_F(ClippingTest, AnInnerBoxReplacesTheOuterOne) {
    for (const auto set : {set_cliprectanglef, add_cliprectanglef, or_cliprectanglef}) {
        push_clippingrectangle();
        set(10.25F, 10.25F, 20, 20);
        push_clippingrectangle();
        set(100.25F, 100.25F, 50, 50);
        EXPECT_EQ(scissor()[0], 100) << "outside the outer one";
        EXPECT_EQ(scissor()[2], 50);
        pop_clippingrectangle();
        EXPECT_EQ(clipping_depth, 1);
        EXPECT_TRUE(clips());
        EXPECT_EQ(scissor(), stored(1));
        EXPECT_EQ(scissor()[0], 10);
        pop_clippingrectangle();
        EXPECT_EQ(clipping_depth, 0);
        EXPECT_FALSE(clips()) << "not the box of level 0";
    }
}

TEST_F(ClippingTest, LeavingMoreThanWasEnteredIsHarmless) {
    glEnable(GL_SCISSOR_TEST);
    pop_clippingrectangle();
    EXPECT_EQ(clipping_depth, 0);
    EXPECT_FALSE(clips());
    pop_clippingrectangle();
    EXPECT_EQ(clipping_depth, 0);
}

TEST_F(ClippingTest, DepthEndsAt128) {
    for (int i = 0; i < 128; ++i)
        push_clippingrectangle();
    EXPECT_EQ(clipping_depth, 128);
    push_clippingrectangle();
    EXPECT_EQ(clipping_depth, 128);
    set_cliprectanglef(10.25F, 20.25F, 30, 40);
    EXPECT_EQ(scissor()[0], 10);
    EXPECT_EQ(stored(127)[0], 10) << "the last slot serves the deepest level";
    EXPECT_EQ(stored(126)[0], 0);
    pop_clippingrectangle();
    EXPECT_EQ(clipping_depth, 127);
    EXPECT_EQ(scissor(), stored(127));
    while (clipping_depth > 0)
        pop_clippingrectangle();
    EXPECT_FALSE(clips());
}

TEST_F(ClippingTest, NegativeExtentsClipEverything) {
    set_cliprectanglef(100.25F, 100.25F, -30, -40);
    EXPECT_EQ(scissor()[2], 0);
    EXPECT_EQ(scissor()[3], 0);
    fillrectangle(0, 0, window_width, window_height);
    glDisable(GL_SCISSOR_TEST);
    EXPECT_TRUE(lit().empty());
}

TEST_F(ClippingTest, SizesBeyondIntegersAreDefined) {
    set_cliprectanglef(-1e30F, -1e30F, 2e30F, 2e30F);
    EXPECT_GT(scissor()[2], window_width);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    set_cliprectanglef(nan, nan, nan, nan);
    EXPECT_EQ(scissor(), (Box{0, 0, 0, 0}));
}

}  // namespace
