// SPDX-License-Identifier: MIT
#include "gui/option_list_widget.h"

#include "gui/gl_font.h"
#include "support/drawing_recorder.h"
#include "support/gui_test.h"

#include <utility>

namespace {

using Actions = std::vector<EventTypes::Action>;

float width_of(const std::string& text) {
    std::pair<int, int> size;
    default_font.GetStringSize(text, &size);
    return static_cast<float>(size.first);
}

class OptionListTest : public GuiTest {
  protected:
    OptionListTest() {
        form->addLabel(10, 140, 140, 24, "Spatial upscaling:");
        list->bounds = {150, 140, 200, 24};
        for (const char* text : {"OFF", "2x", "3x", "4x"})
            list->add_option(text);
        list->value = new Value("factor", 0, 3, 0);
        form->add(list);
        setopacity(1.0F);
    }
    ~OptionListTest() override { setopacity(0.0F); }

    object_ref<OptionListWidget> list = new OptionListWidget;
};

TEST_F(OptionListTest, OptionsStandSideBySide) {
    list->layout();
    ASSERT_EQ(list->option_rectangles.size(), 4U);
    float x = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const rectf& r = list->option_rectangles[i];
        EXPECT_FLOAT_EQ(r.x, x);
        EXPECT_EQ(r.y, 0.0F);
        EXPECT_FLOAT_EQ(r.w, 0.5F * width_of(list->option_texts[i]) + 12.0F);
        EXPECT_EQ(r.h, 24.0F);
        x += r.w;
    }
    EXPECT_LT(x, 200.0F);
}

TEST_F(OptionListTest, TooManyAreSqueezedIntoTheWidth) {
    list->layout();
    const auto natural = list->option_rectangles;
    const float total = natural[3].x + natural[3].w;
    list->bounds.w = total / 2.0F;
    list->layout();
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(list->option_rectangles[i].x, natural[i].x / 2.0F, 1e-3);
        EXPECT_NEAR(list->option_rectangles[i].w, natural[i].w / 2.0F, 1e-3);
    }
}

TEST_F(OptionListTest, AClickWorksBeforeTheFirstDrawing) {
    EXPECT_TRUE(list->option_rectangles.empty());
    world.click(find_options(form, "Spatial upscaling:"), "2x");
    world.pass(0.2);
    EXPECT_EQ(list->value->getValue(), 1.0F);
}

TEST_F(OptionListTest, ThePlainPressDoesNothing) {
    EXPECT_FALSE(list->mousedown({5, 5}, 1));
    EXPECT_FALSE(list->mousemove({5, 5}, 0));
    EXPECT_FALSE(list->mousemove({5, 5}, 3));
    EXPECT_FALSE(list->animating);
    EXPECT_TRUE(list->mousemove({1000, 5}, 1)) << "beside all of them";
    EXPECT_FALSE(list->animating);
}

TEST_F(OptionListTest, ThreePlacesTakeATenthOfASecondThroughFractionsAndOneEvent) {
    world.click(list, "4x");
    EXPECT_TRUE(list->animating);
    EXPECT_EQ(list->target, 3);
    EXPECT_NEAR(list->step_time, 0.1 / 3, 1e-9);
    form->dirty = false;
    std::vector<float> seen;
    for (int i = 0; i < 5; ++i) {
        gui.tick(0.04);
        seen.push_back(list->value->getValue());
        EXPECT_EQ(form->actions().size(), i < 2 ? 0U : 1U) << "after " << i + 1 << " ticks";
    }
    EXPECT_TRUE(form->dirty);
    EXPECT_NEAR(seen[0], 1.2F, 1e-3);
    EXPECT_NEAR(seen[1], 2.4F, 1e-3);
    EXPECT_EQ(seen[2], 3.0F);
    EXPECT_EQ(seen[4], 3.0F);
    EXPECT_FALSE(list->animating);
    EXPECT_EQ(form->actions(), Actions{EventTypes::value_changed});
    EXPECT_EQ(form->events[0].sender, list);
}

TEST_F(OptionListTest, EveryJumpTakesATenthOfASecond) {
    for (const auto& [from, to] : {std::pair(0, 1), {0, 2}, {3, 0}, {3, 2}, {1, 3}}) {
        list->value->setValue(static_cast<float>(from));
        world.click(list, list->option_texts[static_cast<std::size_t>(to)]);
        world.pass(0.095, 0.005);
        EXPECT_TRUE(list->animating) << from << " to " << to;
        world.pass(0.01, 0.005);
        EXPECT_FALSE(list->animating) << from << " to " << to;
        EXPECT_EQ(list->value->getValue(), static_cast<float>(to));
    }
    EXPECT_EQ(form->actions().size(), 5U);
}

TEST_F(OptionListTest, ClickingTheChosenOneTellsNothing) {
    world.click(list, "OFF");
    world.pass(0.2);
    EXPECT_FALSE(list->animating);
    EXPECT_TRUE(form->actions().empty());
}

TEST_F(OptionListTest, DraggingOverOptionsEndsAtTheLast) {
    world.press(middle_of(list, "OFF"));
    world.move(middle_of(list, "3x"));
    world.move(middle_of(list, "2x"));
    world.pass(0.3);
    EXPECT_EQ(list->value->getValue(), 1.0F);
    world.release({0, 0});
}

TEST_F(OptionListTest, DisabledOptionsCannotBeChosen) {
    list->option_enabled[2] = false;
    world.click(list, "3x");
    EXPECT_FALSE(list->animating);
    world.pass(0.2);
    EXPECT_EQ(list->value->getValue(), 0.0F);
}

TEST_F(OptionListTest, ATargetBeyondTheSettingEndsAtItsEnd) {
    list->value = new Value("", 0, 1, 0);
    world.click(list, "4x");
    world.pass(0.2);
    EXPECT_FALSE(list->animating);
    EXPECT_EQ(list->value->getValue(), 1.0F);
    EXPECT_EQ(form->actions(), Actions{EventTypes::value_changed});
}

TEST_F(OptionListTest, IsDrawnWithRoundedEndsAndTheChosenOneHighlighted) {
    list->value->setValue(1);
    list->option_enabled[2] = false;
    const DrawingRecorder recorder;
    list->draw();
    const auto fills = recorder.of_kind(Drawn::fill);
    const auto outlines = recorder.of_kind(Drawn::outline);
    ASSERT_EQ(fills.size(), 4U);
    ASSERT_EQ(outlines.size(), 4U);
    const float alpha[] = {112.0F, 239.0F, 200.0F, 112.0F};
    const std::size_t points[] = {20, 4, 4, 20};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_FLOAT_EQ(fills[i].color.a, alpha[i] / 255.0F) << i;
        EXPECT_EQ(fills[i].points.size(), points[i]) << i;
        EXPECT_EQ(outlines[i].points.size(), points[i]) << i;
        EXPECT_FLOAT_EQ(outlines[i].color.a, 128.0F / 255.0F);
        EXPECT_NEAR(fills[i].box().x, list->option_rectangles[i].x, 1e-3);
        EXPECT_NEAR(fills[i].box().w, list->option_rectangles[i].w, 1e-3);
        EXPECT_NEAR(fills[i].box().h, 24.0F, 1e-3);
    }
    const rectf first = list->option_rectangles[0];
    // Points 0-4 round the far lower corner, 5-9 the near lower, 10-14 the near upper one.
    EXPECT_NEAR(fills[0].points[0].y, 24.0F, 1e-3) << "no radius at the right";
    EXPECT_NEAR(fills[0].points[9].y, 18.0F, 1e-3);
    EXPECT_NEAR(fills[0].points[14].x, 6.0F, 1e-3);
    EXPECT_NEAR(fills[0].points[15].x, first.w, 1e-3);
    const rectf last = list->option_rectangles[3];
    EXPECT_NEAR(fills[3].points[0].y, 18.0F, 1e-3);
    EXPECT_NEAR(fills[3].points[9].y, 24.0F, 1e-3) << "no radius at the left";
    EXPECT_NEAR(fills[3].points[15].x, last.x + last.w - 6.0F, 1e-3);
}

TEST_F(OptionListTest, TextsStandInTheMiddleOfTheirOptions) {
    list->option_enabled[2] = false;
    const DrawingRecorder recorder;
    list->draw();
    for (std::size_t i = 0; i < 4; ++i) {
        const std::string& text = list->option_texts[i];
        const rectf& r = list->option_rectangles[i];
        const Drawn drawn = recorder.text(text);
        EXPECT_EQ(drawn.scale, 0.5F);
        EXPECT_FLOAT_EQ(drawn.points[0].x, r.x + (r.w - 0.5F * width_of(text)) / 2.0F);
        EXPECT_EQ(drawn.clip.x, 0.0F);
        EXPECT_EQ(drawn.clip.y, 0.0F);
        EXPECT_EQ(drawn.clip.w, 200.0F);
        EXPECT_EQ(drawn.clip.h, 24.0F);
        EXPECT_FLOAT_EQ(drawn.color.r, i == 2 ? 128.0F / 255.0F : 1.0F);
    }
    EXPECT_EQ(recorder.open_clips(), 0);
}

TEST_F(OptionListTest, TheHighlightTravelsBetweenTwoOptions) {
    const auto travelling = [&](float value) {
        list->value->setValue(value);
        const DrawingRecorder recorder;
        list->draw();
        const auto fills = recorder.of_kind(Drawn::fill);
        EXPECT_EQ(fills.size(), 5U) << value;
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NE(fills[i].color.r, fills[4].color.r) << "none of the options is chosen";
        EXPECT_EQ(fills[4].color.r, 128.0F / 255.0F);
        EXPECT_EQ(recorder.of_kind(Drawn::outline).size(), 4U);
        return fills[4];
    };
    const Drawn first = travelling(0.25F);
    const rectf from = list->option_rectangles[0];
    const rectf to = list->option_rectangles[1];
    EXPECT_NEAR(first.box().x, 0.75F * from.x + 0.25F * to.x, 1e-2);
    EXPECT_NEAR(first.box().w, 0.75F * from.w + 0.25F * to.w - 1.0F, 1e-2);
    EXPECT_NEAR(first.box().h, 23.0F, 1e-3);
    EXPECT_NEAR(first.points[9].y, 23.0F - 6.0F, 1e-3) << "rounded at the left";
    EXPECT_NEAR(first.points[0].y, 23.0F, 1e-3) << "but not at the right";
    const Drawn middle = travelling(1.5F);
    EXPECT_NEAR(middle.points[9].y, 23.0F, 1e-3);
    EXPECT_NEAR(middle.points[0].y, 23.0F, 1e-3);
    const Drawn last = travelling(2.5F);
    EXPECT_NEAR(last.points[9].y, 23.0F, 1e-3);
    EXPECT_NEAR(last.points[0].y, 23.0F - 6.0F, 1e-3);
}

TEST_F(OptionListTest, ValuesBeyondTheOptionsHighlightNothing) {
    list->value = new Value("", -10, 100, 0);
    for (const float v : {-0.5F, -1.0F, 3.5F, 4.0F, 99.5F}) {
        list->value->setValue(v);
        const DrawingRecorder recorder;
        list->draw();
        EXPECT_EQ(recorder.of_kind(Drawn::fill).size(), 4U) << v;
        for (const Drawn& d : recorder.of_kind(Drawn::fill))
            EXPECT_EQ(d.color.r, 0.0F) << v;
    }
}

}  // namespace
