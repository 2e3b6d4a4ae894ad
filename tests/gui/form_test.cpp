// SPDX-License-Identifier: MIT
#include "gui/form_widget.h"

#include "gui/gl_font.h"
#include "support/gui_test.h"

namespace {

class FormTest : public GuiTest {};

TEST_F(FormTest, StartsOpenFramedAndTitled) {
    EXPECT_TRUE(form->visible);
    EXPECT_FALSE(form->auto_hide);
    EXPECT_TRUE(form->has_title_bar);
    EXPECT_TRUE(form->has_frame);
    EXPECT_FALSE(form->full_width);
    EXPECT_EQ(form->hold_time, 0.0F);
    EXPECT_EQ(form->animation_start, 0.0);
    EXPECT_EQ(form->animation_state, FormWidget::idle);
    EXPECT_FALSE(form->is_animating());
    EXPECT_EQ(form->opacity, 1.0F);
    EXPECT_TRUE(form->dirty);
    EXPECT_FALSE(form->dragging);
    EXPECT_TRUE(FormWidget::auto_hide_cursor);
}

TEST_F(FormTest, TheTitleBarIsOneLineHigh) {
    const rectf bar = form->get_titlerect();
    EXPECT_EQ(bar.x, 4.0F);
    EXPECT_EQ(bar.y, 10.0F);
    EXPECT_EQ(bar.w, 392.0F);
    ASSERT_GT(default_font.GetCharHeight('x'), 0);
    EXPECT_FLOAT_EQ(bar.h, static_cast<float>(default_font.GetCharHeight('x')) * 0.65F);
}

TEST_F(FormTest, IsHitWithinItsBoundsWhileVisible) {
    EXPECT_EQ(form->hittest({0, 0}), form);
    EXPECT_EQ(form->hittest({399, 299}), form);
    EXPECT_EQ(form->hittest({400, 10}), nullptr);
    EXPECT_EQ(form->hittest({10, 300}), nullptr);
    EXPECT_EQ(form->hittest({-1, 10}), nullptr);
    EXPECT_EQ(gui.hittest({200, 150}), form) << "in window pixels";
    EXPECT_EQ(gui.hittest({199, 150}), nullptr);
    form->visible = false;
    EXPECT_EQ(form->hittest({0, 0}), nullptr);
    EXPECT_EQ(gui.hittest({200, 150}), nullptr);
}

TEST_F(FormTest, OverlapsWhereACornerOrTheCentreOfTheOtherLiesWithin) {
    const object_ref<FormWidget> other(new FormWidget);
    const auto overlaps = [&](rectf r) {
        other->bounds = r;
        return form->overlaps_with(other);
    };
    EXPECT_TRUE(overlaps({-300, -250, 150, 150})) << "far corner";
    EXPECT_TRUE(overlaps({150, -250, 150, 150})) << "near lower corner";
    EXPECT_TRUE(overlaps({150, 100, 150, 150})) << "origin";
    EXPECT_TRUE(overlaps({-300, 100, 150, 150})) << "upper far corner";
    EXPECT_TRUE(overlaps({-400, -10, 800, 20})) << "centre";
    EXPECT_FALSE(overlaps({-250, -140, 900, 20})) << "crosses without a point inside";
    EXPECT_FALSE(overlaps({200, 150, 10, 10})) << "the far edges are outside";
    EXPECT_FALSE(form->overlaps_with(nullptr));
    other->bounds = {-400, -140, 800, 300};
    EXPECT_TRUE(form->overlaps_with(other));
    other->bounds = {-190, -500, 20, 1800};
    EXPECT_FALSE(form->overlaps_with(other));
    EXPECT_FALSE(other->overlaps_with(form));
    form->bounds = {-10, -10, 20, 20};
    other->bounds = {-500, -400, 1100, 900};
    EXPECT_FALSE(form->overlaps_with(other)) << "inside it, away from its centre";
    EXPECT_TRUE(other->overlaps_with(form));
}

TEST_F(FormTest, ClosesWhenAsked) {
    EventArgs event(form, EventTypes::value_changed);
    form->onevent(event);
    EXPECT_FALSE(form->is_animating());
    event.action = EventTypes::close_request;
    form->onevent(event);
    EXPECT_EQ(form->animation_state, FormWidget::hiding);
}

TEST_F(FormTest, ACloseButtonClosesIt) {
    const object_ref<ButtonWidget> close(new ButtonWidget);
    close->bounds = {100, 200, 100, 24};
    close->text = "Close";
    close->action_code = EventTypes::close_request;
    form->add(close);
    world.click(find_button(form, "Close"));
    EXPECT_EQ(form->animation_state, FormWidget::hiding);
    world.pass(0.5);
    EXPECT_FALSE(form->visible);
}

TEST_F(FormTest, MouseUseMarksItForDrawing) {
    const object_ref<ButtonWidget> button(new ButtonWidget);
    button->bounds = {100, 200, 100, 24};
    form->add(button);
    form->dirty = false;
    gui.mousemove(middle_of(button), 0);
    EXPECT_FALSE(form->dirty) << "nothing changed";
    gui.mousedown({500, 160 + 200}, 1);
    EXPECT_FALSE(form->dirty) << "a press on nothing";
    gui.mousedown(middle_of(button), 1);
    EXPECT_TRUE(form->dirty);
    form->dirty = false;
    gui.mouseup(middle_of(button), 1);
    EXPECT_TRUE(form->dirty);
}

TEST_F(FormTest, ScalingCentreOfTheCornerIsMinusTheCentre) {
    form->bounds = {10, 20, 100, 60};
    form->reset_scaling_center();
    EXPECT_EQ(form->scaling_center.x, -60.0F);
    EXPECT_EQ(form->scaling_center.y, -50.0F);
}

}  // namespace
