// SPDX-License-Identifier: MIT
#include "gui/button_widget.h"

#include "gui/gl_font.h"
#include "support/drawing_recorder.h"
#include "support/gui_test.h"

namespace {

using Actions = std::vector<EventTypes::Action>;
constexpr auto own_code = static_cast<EventTypes::Action>(17);

class ButtonTest : public GuiTest {
  protected:
    ButtonTest() {
        button->bounds = {100, 100, 120, 24};
        button->text = "Press";
        button->action_code = own_code;
        form->add(button);
    }

    object_ref<ButtonWidget> button = new ButtonWidget;
};

TEST_F(ButtonTest, AClickSendsPressedReleasedAndItsOwnCodeOnceAndInOrder) {
    world.click(find_button(form, "Press"));
    EXPECT_EQ(form->actions(), (Actions{EventTypes::pressed, EventTypes::released, own_code}));
    for (const EventArgs& event : form->events)
        EXPECT_EQ(event.sender, button);
    EXPECT_FALSE(button->armed);
    EXPECT_FALSE(button->pressed);
}

TEST_F(ButtonTest, TheCodeIsZeroUnlessConfigured) {
    EXPECT_EQ(ButtonWidget().action_code, 0);
    EXPECT_FALSE(button->custom_draw);
}

TEST_F(ButtonTest, WithoutAMoveNothingFires) {
    EXPECT_TRUE(gui.mousedown(middle_of(button), 1));
    EXPECT_FALSE(button->armed);
    EXPECT_TRUE(button->pressed);
    gui.mouseup(middle_of(button), 1);
    EXPECT_EQ(form->actions(), Actions{EventTypes::pressed});
}

TEST_F(ButtonTest, LeavingBeforeTheReleaseFiresNothing) {
    world.press(middle_of(button));
    EXPECT_TRUE(button->armed);
    form->dirty = false;
    world.move(in_window(button, {60, 24}));
    EXPECT_FALSE(button->armed) << "the far edge is outside";
    EXPECT_TRUE(form->dirty);
    world.release(in_window(button, {60, 24}));
    EXPECT_EQ(form->actions(), Actions{EventTypes::pressed});
}

TEST_F(ButtonTest, ComingBackArmsAgain) {
    world.press(middle_of(button));
    world.move({0, 0});
    world.move(in_window(button, {0, 0}));
    EXPECT_TRUE(button->armed);
    world.release({0, 0});
    EXPECT_EQ(form->actions(), (Actions{EventTypes::pressed, EventTypes::released, own_code}));
}

TEST_F(ButtonTest, OnlyTheLeftButtonCounts) {
    EXPECT_FALSE(button->mousedown({5, 5}, 2));
    EXPECT_FALSE(button->mousemove({5, 5}, 2));
    EXPECT_FALSE(button->mousemove({5, 5}, 0));
    EXPECT_FALSE(button->mouseup({5, 5}, 1));
    world.press(middle_of(button), 3);
    world.release(middle_of(button));
    EXPECT_TRUE(form->actions().empty());
    EXPECT_TRUE(button->mousedown({5, 5}, 1));
    EXPECT_TRUE(button->mousemove({5, 5}, 1));
    EXPECT_TRUE(button->mouseup({5, 5}, 1));
}

TEST_F(ButtonTest, IsDrawnInItsBoundsWithItsTextInTheMiddle) {
    setopacity(1.0F);
    const DrawingRecorder recorder;
    button->draw();
    const auto fills = recorder.of_kind(Drawn::fill);
    ASSERT_EQ(fills.size(), 1U);
    EXPECT_EQ(fills[0].points.size(), 20U);
    EXPECT_NEAR(fills[0].box().w, 120.0F, 1e-3);
    EXPECT_NEAR(fills[0].box().h, 24.0F, 1e-3);
    EXPECT_EQ(fills[0].color.a, 112.0F / 255.0F);
    ASSERT_EQ(recorder.of_kind(Drawn::outline).size(), 1U);
    EXPECT_EQ(recorder.of_kind(Drawn::outline)[0].color.a, 128.0F / 255.0F);
    const Drawn text = recorder.text("Press");
    std::pair<int, int> size;
    default_font.GetStringSize("Press", &size);
    EXPECT_EQ(text.scale, 0.5F);
    EXPECT_FLOAT_EQ(text.points[0].x, (120.0F - 0.5F * float(size.first)) / 2.0F);
    EXPECT_FLOAT_EQ(text.points[0].y, (24.0F + 0.5F * float(size.second)) / 2.0F);
    EXPECT_EQ(text.color.g, 1.0F);
    EXPECT_TRUE(text.clipped);
    EXPECT_EQ(text.clip.x, 0.0F);
    EXPECT_EQ(text.clip.y, 0.0F);
    EXPECT_EQ(text.clip.w, 120.0F);
    EXPECT_EQ(text.clip.h, 24.0F);
    EXPECT_EQ(recorder.open_clips(), 0);
    setopacity(0.0F);
}

TEST_F(ButtonTest, IsHighlightedWhileArmed) {
    setopacity(1.0F);
    button->armed = true;
    const DrawingRecorder recorder;
    button->draw();
    EXPECT_FLOAT_EQ(recorder.of_kind(Drawn::fill)[0].color.r, 128.0F / 255.0F);
    EXPECT_FLOAT_EQ(recorder.of_kind(Drawn::fill)[0].color.a, 239.0F / 255.0F);
    setopacity(0.0F);
}

TEST_F(ButtonTest, ItsParentMayDrawOverIt) {
    button->custom_draw = true;
    const DrawingRecorder recorder;
    button->draw();
    EXPECT_EQ(form->actions(), Actions{EventTypes::custom_draw});
    EXPECT_EQ(form->events[0].sender, button);
    EXPECT_EQ(recorder.of_kind(Drawn::fill).size(), 1U);
    EXPECT_EQ(recorder.of_kind(Drawn::text).size(), 1U);
}

}  // namespace
