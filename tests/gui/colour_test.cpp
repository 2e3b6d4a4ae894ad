// SPDX-License-Identifier: MIT
#include "gui/drawing_fixture.h"

namespace {

using Color = std::array<float, 4>;

Color parts(const gl_color& c) {
    return {c.r, c.g, c.b, c.a};
}

TEST(Colours, ArePackedWithAlphaOnTop) {
    EXPECT_EQ(makecolorrgb(0x12, 0x34, 0x56), 0xFF123456U);
    EXPECT_EQ(makecolorrgb(300, -5, 128), 0xFFFF0080U);
    EXPECT_EQ(makecolorrgba(0x12, 0x34, 0x56, 0x78), 0x78123456U);
    EXPECT_EQ(makecolorrgba(-1, 256, 1000, -1000), 0x0000FFFFU);
    EXPECT_EQ(makecolorrgba(0, 0, 0, 256), 0xFF000000U);
    EXPECT_EQ(makecoloralpha(0x12345678, 511), 0xFF345678U);
    EXPECT_EQ(makecoloralpha(0x12345678, -1), 0x00345678U);
    EXPECT_EQ(makecoloralpha(0xFFFFFFFF, 0x80), 0x80FFFFFFU);
}

TEST_F(DrawingTest, APackedColourIsUnpacked) {
    const Color expected = {static_cast<float>(0x12 / 255.0), static_cast<float>(0x34 / 255.0),
                            static_cast<float>(0x56 / 255.0), static_cast<float>(0x78 / 255.0)};
    brush_color = {};
    setpencolor(0x78123456);
    EXPECT_EQ(parts(pen_color), expected);
    EXPECT_EQ(parts(brush_color), (Color{0, 0, 0, 0}));
    EXPECT_EQ(current_color(), expected) << "at once";
    pen_color = {};
    glColor4f(0, 0, 0, 0);
    setbrushcolor(0x78123456);
    EXPECT_EQ(parts(brush_color), expected);
    EXPECT_EQ(parts(pen_color), (Color{0, 0, 0, 0}));
    EXPECT_EQ(current_color(), expected);
}

TEST_F(DrawingTest, ComponentsAreNotClamped) {
    setpencolorrgb(510, -51, 255);
    EXPECT_EQ(parts(pen_color), (Color{2.0F, -51 / 255.0F, 1.0F, 1.0F}));
    setbrushcolorrgb(0, 51, 765);
    EXPECT_EQ(parts(brush_color), (Color{0.0F, 51 / 255.0F, 3.0F, 1.0F}));
    setpencolorrgba(1, 2, 3, 51);
    EXPECT_EQ(parts(pen_color), (Color{1 / 255.0F, 2 / 255.0F, 3 / 255.0F, 51 / 255.0F}));
    setbrushcolorrgba(4, 5, 6, 510);
    EXPECT_EQ(parts(brush_color), (Color{4 / 255.0F, 5 / 255.0F, 6 / 255.0F, 2.0F}));
    EXPECT_EQ(current_color(), parts(brush_color));
}

TEST_F(DrawingTest, OpacityMultipliesAlphaOnly) {
    setopacity(0.5F);
    EXPECT_EQ(current_color()[3], 1.0F) << "not before the next colour";
    glSetColor({0.25F, 0.5F, 0.75F, 0.5F});
    EXPECT_EQ(current_color(), (Color{0.25F, 0.5F, 0.75F, 0.25F}));
}

TEST_F(DrawingTest, OnlyTransparentColoursBlend) {
    for (const auto& [alpha, opacity_set, blends] :
         {std::tuple{1.0F, 1.0F, false}, std::tuple{1.0F, 0.99F, true},
          std::tuple{0.99F, 1.0F, true}, std::tuple{2.0F, 0.5F, false},
          std::tuple{0.0F, 1.0F, true}, std::tuple{1.0F, 0.0F, true}}) {
        for (const bool before : {false, true}) {
            if (before) {
                glEnable(GL_BLEND);
            } else {
                glDisable(GL_BLEND);
            }
            setopacity(opacity_set);
            glSetColor({1, 1, 1, alpha});
            EXPECT_EQ(blending(), blends) << alpha << " at opacity " << opacity_set;
        }
    }
}

TEST_F(DrawingTest, ABlendedFillLetsTheGroundThrough) {
    setbrushcolor(0xFF0000FF);
    fillrectangle(0, 0, 20, 20);
    setopacity(0.5F);
    setbrushcolor(0xFFFF0000);
    fillrectangle(0, 0, 10, 20);
    const Image image = window();
    EXPECT_NEAR(image.at(5, 5).r, 0.5F, 0.01F);
    EXPECT_NEAR(image.at(5, 5).b, 0.5F, 0.01F);
    EXPECT_EQ(image.at(15, 5).r, 0.0F);
    EXPECT_EQ(image.at(15, 5).b, 1.0F);
}

TEST_F(DrawingTest, WithoutOpacityNothingIsSeen) {
    setopacity(0);
    setbrushcolor(0xFFFFFFFF);
    fillrectangle(0, 0, 50, 50);
    EXPECT_TRUE(lit().empty());
}

// A primitive between the two must not draw in what was set last.
TEST_F(DrawingTest, OutlinesUseThePenAndFillsTheBrush) {
    setbrushcolor(0xFF00FF00);
    setpencolor(0xFFFF0000);
    fillrectangle(10, 10, 5, 5);
    setbrushcolor(0xFF00FF00);
    to_middles();
    drawline(30, 10, 40, 10);
    const Image image = window();
    EXPECT_EQ(image.at(12, 12).g, 1.0F);
    EXPECT_EQ(image.at(12, 12).r, 0.0F);
    EXPECT_EQ(image.at(35, 10).r, 1.0F);
    EXPECT_EQ(image.at(35, 10).g, 0.0F);
}

TEST(Rectangles, AreFilledInInflatedAndMoved) {
    rect r;
    makerect(&r, 1, 2, 3, 4);
    inflate_rect(&r, 5, 7);
    EXPECT_EQ(r.x, -4);
    EXPECT_EQ(r.y, -5);
    EXPECT_EQ(r.w, 13);
    EXPECT_EQ(r.h, 18);
    rectf f;
    makerectf(&f, 1.5F, 2.5F, 3.5F, 4.5F);
    inflate_rectf(&f, 0.25F, -0.5F);
    EXPECT_EQ(f.x, 1.25F);
    EXPECT_EQ(f.y, 3.0F);
    EXPECT_EQ(f.w, 4.0F);
    EXPECT_EQ(f.h, 3.5F);
    offset_rectf(&f, 1, -2);
    EXPECT_EQ(f.x, 2.25F);
    EXPECT_EQ(f.y, 1.0F);
    EXPECT_EQ(f.w, 4.0F);
    EXPECT_EQ(f.h, 3.5F);
}

TEST(Rectangles, ContainTheirNearEdgesOnly) {
    const rectf r(0, 0, 10, 10);
    const pointf right(10, 5);
    const pointf below(5, 10);
    const pointf origin(0, 0);
    const pointf left(-0.1F, 5);
    EXPECT_EQ(rectf_contains(&r, &right), 0);
    EXPECT_EQ(rectf_contains(&r, &below), 0);
    EXPECT_EQ(rectf_contains(&r, &left), 0);
    EXPECT_EQ(rectf_contains(&r, &origin), 1);
    EXPECT_FALSE(r.contains({10, 5}));
    EXPECT_TRUE(r.contains({0, 0}));
}

}  // namespace
