// SPDX-License-Identifier: MIT
#include "gui/gl_font.h"
#include "gui/text_balloon_widget.h"
#include "gui/text_label_widget.h"
#include "support/drawing_recorder.h"
#include "support/gui_test.h"

#include <tuple>
#include <utility>

namespace {

class LabelTest : public ::testing::Test {
  protected:
    LabelTest() {
        label->bounds = {500, 600, 200, 60};
        label->text = "Text";
        std::pair<int, int> size;
        default_font.GetStringSize("Text", &size);
        width = static_cast<float>(size.first);
        height = static_cast<float>(size.second);
        setopacity(1.0F);
    }
    ~LabelTest() override { setopacity(0.0F); }

    Drawn drawn() {
        const DrawingRecorder recorder;
        label->draw();
        EXPECT_EQ(recorder.drawn.size(), 1U);
        EXPECT_EQ(recorder.open_clips(), 0);
        return recorder.text("Text");
    }

    GuiWorld world;
    object_ref<TextLabelWidget> label = new TextLabelWidget;
    float width = 0;
    float height = 0;
};

TEST_F(LabelTest, StartsLeftAndInTheMiddle) {
    EXPECT_EQ(label->horizontal_alignment, TextLabelWidget::left);
    EXPECT_EQ(label->vertical_alignment, TextLabelWidget::middle);
    EXPECT_EQ(TextLabelWidget::left, 0);
    EXPECT_EQ(TextLabelWidget::center, 1);
    EXPECT_EQ(TextLabelWidget::right, 2);
    EXPECT_EQ(TextLabelWidget::top, 0);
    EXPECT_EQ(TextLabelWidget::middle, 1);
    EXPECT_EQ(TextLabelWidget::bottom, 2);
}

TEST_F(LabelTest, AlignsHorizontally) {
    ASSERT_GT(width, 0.0F);
    EXPECT_EQ(drawn().points[0].x, 0.0F);
    label->horizontal_alignment = TextLabelWidget::center;
    EXPECT_FLOAT_EQ(drawn().points[0].x, (200.0F - 0.5F * width) / 2.0F);
    label->horizontal_alignment = TextLabelWidget::right;
    EXPECT_FLOAT_EQ(drawn().points[0].x, 200.0F - 0.5F * width);
}

TEST_F(LabelTest, AlignsVertically) {
    ASSERT_GT(height, 0.0F);
    EXPECT_FLOAT_EQ(drawn().points[0].y, (60.0F + 0.5F * height) / 2.0F);
    label->vertical_alignment = TextLabelWidget::top;
    EXPECT_FLOAT_EQ(drawn().points[0].y, 0.5F * height);
    label->vertical_alignment = TextLabelWidget::bottom;
    EXPECT_FLOAT_EQ(drawn().points[0].y, 60.0F);
}

TEST_F(LabelTest, ItsOwnScaleCountsForHeightsOnly) {
    label->scale = {1, 2};
    label->horizontal_alignment = TextLabelWidget::right;
    EXPECT_EQ(drawn().scale, 1.0F);
    EXPECT_FLOAT_EQ(drawn().points[0].x, 200.0F - 0.5F * width);
    EXPECT_FLOAT_EQ(drawn().points[0].y, (60.0F + height) / 2.0F);
    label->vertical_alignment = TextLabelWidget::top;
    EXPECT_FLOAT_EQ(drawn().points[0].y, height);
}

TEST_F(LabelTest, IsDrawnInTheTextColourWithinItsRectangle) {
    label->style = new WidgetStyle;
    label->style->text_color = 0xFF00FF00U;
    const Drawn text = drawn();
    EXPECT_EQ(text.scale, 0.5F);
    EXPECT_EQ(text.color.r, 0.0F);
    EXPECT_EQ(text.color.g, 1.0F);
    EXPECT_TRUE(text.clipped);
    EXPECT_EQ(text.clip.x, 0.0F);
    EXPECT_EQ(text.clip.y, 0.0F);
    EXPECT_EQ(text.clip.w, 200.0F);
    EXPECT_EQ(text.clip.h, 60.0F);
}

TEST_F(LabelTest, ABalloonHasATailBelow) {
    const object_ref<TextBalloonWidget> balloon(new TextBalloonWidget);
    balloon->bounds = {0, 0, 100, 20};
    balloon->text = "00:00";
    const DrawingRecorder recorder;
    balloon->draw();
    const auto fills = recorder.of_kind(Drawn::fill);
    ASSERT_EQ(fills.size(), 2U);
    EXPECT_EQ(fills[0].points.size(), 20U);
    EXPECT_EQ(fills[0].color.a, 112.0F / 255.0F);
    ASSERT_EQ(fills[1].points.size(), 3U);
    const auto outlines = recorder.of_kind(Drawn::outline);
    ASSERT_EQ(outlines.size(), 1U);
    ASSERT_EQ(outlines[0].points.size(), 23U);
    EXPECT_EQ(outlines[0].color.a, 128.0F / 255.0F);
    const pointf tail[] = {{25, 20}, {20, 40}, {15, 20}};
    for (std::size_t i = 0; i < 23; ++i) {
        const pointf want = i < 5   ? fills[0].points[i]
                            : i < 8 ? tail[i - 5]
                                    : fills[0].points[i - 3];
        EXPECT_EQ(outlines[0].points[i].x, want.x) << i;
        EXPECT_EQ(outlines[0].points[i].y, want.y) << i;
        if (i >= 5 && i < 8) {
            EXPECT_EQ(fills[1].points[i - 5].x, want.x);
            EXPECT_EQ(fills[1].points[i - 5].y, want.y);
        }
    }
    // The tail hangs from the bottom edge, which runs from right to left.
    EXPECT_NEAR(outlines[0].points[4].y, 20.0F, 1e-4);
    EXPECT_NEAR(outlines[0].points[8].y, 20.0F, 1e-4);
    EXPECT_GT(outlines[0].points[4].x, 25.0F);
    EXPECT_LT(outlines[0].points[8].x, 15.0F);
    EXPECT_EQ(recorder.text("00:00").clip.y, 0.0F);
    EXPECT_EQ(recorder.text("00:00").clip.h, 20.0F);
}

}  // namespace
