// SPDX-License-Identifier: MIT
#include "gui/widget_style.h"

#include "support/drawing_recorder.h"
#include "support/gui_test.h"

namespace {

class StyleTest : public ::testing::Test {
  protected:
    void SetUp() override { setopacity(1.0F); }
    void TearDown() override { setopacity(0.0F); }

    static void expect_color(gl_color c, int r, int g, int b, int a) {
        EXPECT_FLOAT_EQ(c.r, float(r) / 255.0F);
        EXPECT_FLOAT_EQ(c.g, float(g) / 255.0F);
        EXPECT_FLOAT_EQ(c.b, float(b) / 255.0F);
        EXPECT_FLOAT_EQ(c.a, float(a) / 255.0F);
    }

    GuiWorld world;
    object_ref<WidgetStyle> style = new WidgetStyle;
};

TEST_F(StyleTest, DefaultsAreTheOnesOfTheTable) {
    EXPECT_EQ(style->corner_radius.x, 6.0F);
    EXPECT_EQ(style->corner_radius.y, 6.0F);
    EXPECT_EQ(style->knob_size.x, 12.0F);
    EXPECT_EQ(style->knob_size.y, 12.0F);
    EXPECT_EQ(style->small_text_scale, 0.5F);
    EXPECT_EQ(style->text_scale, 0.65F);
    EXPECT_EQ(style->text_color, 0xFFFFFFFFU);
    EXPECT_EQ(style->second_text_color, 0xFFFFFFFFU);
    EXPECT_EQ(style->highlight_color, 0xEF800000U);
    EXPECT_EQ(style->light_gray, 0xFFC0C0C0U);
}

TEST_F(StyleTest, BackgroundsAreBrushesAndTheBorderIsAPen) {
    style->SetDefaultBackground();
    expect_color(brush_color, 0, 0, 0, 112);
    style->SetHighlightBackground();
    expect_color(brush_color, 0x80, 0, 0, 0xEF);
    style->SetGrayedBackground();
    expect_color(brush_color, 80, 80, 80, 200);
    style->SetDefaultBorder();
    expect_color(pen_color, 255, 255, 255, 128);
    expect_color(brush_color, 80, 80, 80, 200);
}

TEST_F(StyleTest, RoundedRectanglesHaveTwentyPointsAndTheStylesRadius) {
    DrawingRecorder recorder;
    style->corner_radius = {5, 3};
    style->FillRoundedRect(10, 20, 100, 50);
    style->DrawRoundedRect(rectf(10, 20, 100, 50));
    ASSERT_EQ(recorder.drawn.size(), 2U);
    EXPECT_EQ(recorder.drawn[0].kind, Drawn::fill);
    EXPECT_EQ(recorder.drawn[1].kind, Drawn::outline);
    for (const Drawn& d : recorder.drawn) {
        ASSERT_EQ(d.points.size(), 20U);
        EXPECT_NEAR(d.points[0].x, 110.0F, 1e-4);
        EXPECT_NEAR(d.points[0].y, 67.0F, 1e-4) << "the radius is in units";
        EXPECT_NEAR(d.points[4].x, 105.0F, 1e-4);
        EXPECT_NEAR(d.points[4].y, 70.0F, 1e-4);
    }
}

class CountingStyle : public WidgetStyle {
  public:
    using WidgetStyle::DrawRoundedRect;
    using WidgetStyle::FillRoundedRect;
    void DrawRoundedRect(rectf r) override { outlined = r; }
    void FillRoundedRect(rectf r) override { filled = r; }

    rectf outlined, filled;
};

TEST_F(StyleTest, AnotherStyleNeedsToReplaceOneOfEachPairOnly) {
    const object_ref<CountingStyle> other(new CountingStyle);
    other->DrawRoundedRect(1, 2, 3, 4);
    other->FillRoundedRect(5, 6, 7, 8);
    EXPECT_EQ(other->outlined.y, 2.0F);
    EXPECT_EQ(other->outlined.h, 4.0F);
    EXPECT_EQ(other->filled.x, 5.0F);
    EXPECT_EQ(other->filled.w, 7.0F);
}

TEST_F(StyleTest, AWidgetMadeBeforeThereIsAStyleGetsOneWhenDrawn) {
    defaultStyle = nullptr;
    const object_ref<ButtonWidget> button(new ButtonWidget);
    EXPECT_TRUE(button->style.IsNull());
    const DrawingRecorder recorder;
    button->draw();
    ASSERT_FALSE(defaultStyle.IsNull());
    EXPECT_EQ(static_cast<WidgetStyle*>(button->style), static_cast<WidgetStyle*>(defaultStyle));
}

}  // namespace
