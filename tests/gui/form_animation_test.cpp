// SPDX-License-Identifier: MIT
#include "gui/form_widget.h"
#include "support/gui_test.h"

#include <cmath>

namespace {

using Actions = std::vector<EventTypes::Action>;

class FormAnimationTest : public GuiTest {
  protected:
    object_ref<FormWidget> add_form(rectf r, bool auto_hide = false) {
        object_ref<FormWidget> other(new FormWidget);
        other->bounds = r;
        other->auto_hide = auto_hide;
        gui.add(other);
        return other;
    }

    void at(double seconds) {
        world.clock = 100.0 + seconds;
        form->tick(0.0);
    }
};

TEST_F(FormAnimationTest, ShowingFadesAndZoomsInWithinFourTenths) {
    form->visible = false;
    form->show();
    EXPECT_TRUE(form->visible);
    EXPECT_TRUE(form->is_animating());
    EXPECT_EQ(form->animation_state, FormWidget::showing);
    EXPECT_EQ(form->hold_time, 3.0F);
    EXPECT_EQ(form->animation_start, 100.0);
    EXPECT_EQ(form->actions(), Actions{EventTypes::shown});
    EXPECT_EQ(form->events[0].sender, form);
    for (const double t : {0.04, 0.1, 0.2, 0.36}) {
        form->dirty = false;
        at(t);
        EXPECT_TRUE(form->dirty);
        EXPECT_NEAR(form->opacity, t / 0.4, 1e-5);
        EXPECT_NEAR(form->scale.x, std::sqrt(t / 0.4), 1e-5);
        EXPECT_EQ(form->scale.x, form->scale.y);
    }
    form->dirty = false;
    at(0.41);
    EXPECT_TRUE(form->dirty);
    EXPECT_EQ(form->opacity, 1.0F);
    EXPECT_EQ(form->scale.x, 1.0F);
    EXPECT_FALSE(form->is_animating());
    form->dirty = false;
    at(0.5);
    EXPECT_FALSE(form->dirty);
}

TEST_F(FormAnimationTest, HidingFadesAndZoomsOut) {
    form->hide();
    EXPECT_EQ(form->animation_state, FormWidget::hiding);
    EXPECT_TRUE(form->visible);
    at(0.1);
    EXPECT_NEAR(form->opacity, 0.75, 1e-5);
    EXPECT_NEAR(form->scale.x, std::sqrt(0.75), 1e-5);
    EXPECT_TRUE(form->visible) << "until it has faded";
    form->dirty = false;
    at(0.41);
    EXPECT_FALSE(form->visible);
    EXPECT_EQ(form->opacity, 0.0F);
    EXPECT_EQ(form->scale.y, 1.0F);
    EXPECT_FALSE(form->is_animating());
    EXPECT_TRUE(form->dirty);
}

TEST_F(FormAnimationTest, ZoomNeverReachesZero) {
    form->visible = false;
    form->show();
    at(0.0);
    EXPECT_EQ(form->opacity, 0.0F);
    EXPECT_EQ(form->scale.x, 0.001F);
    EXPECT_EQ(form->scale.y, 0.001F);
}

TEST_F(FormAnimationTest, AutoHideFormsOnlyFadeInHalfTheTime) {
    form->auto_hide = true;
    form->visible = false;
    form->show();
    at(0.05);
    EXPECT_NEAR(form->opacity, 0.25, 1e-4);
    EXPECT_EQ(form->scale.x, 1.0F);
    at(0.21);
    EXPECT_FALSE(form->is_animating());
    EXPECT_EQ(form->opacity, 1.0F);
    form->hide();
    at(0.21 + 0.15);
    EXPECT_NEAR(form->opacity, 0.25, 1e-4);
    EXPECT_EQ(form->scale.y, 1.0F);
    at(0.21 + 0.21);
    EXPECT_FALSE(form->visible);
}

TEST_F(FormAnimationTest, ToggleWhileFadingInFadesOutFromFullOpacity) {
    form->visible = false;
    form->toggle();
    EXPECT_EQ(form->animation_state, FormWidget::showing);
    at(0.1);
    EXPECT_NEAR(form->opacity, 0.25, 1e-5);
    form->toggle();
    EXPECT_EQ(form->animation_state, FormWidget::hiding);
    at(0.101);
    EXPECT_NEAR(form->opacity, 1.0 - 0.001 / 0.4, 1e-4) << "with a jump";
    world.clock += 1;
    form->tick(0);
    EXPECT_FALSE(form->visible);
    form->toggle();
    EXPECT_TRUE(form->visible);
}

TEST_F(FormAnimationTest, HidingTheHiddenAndShowingTheVisibleDoNothing) {
    form->show();
    EXPECT_FALSE(form->is_animating());
    EXPECT_TRUE(form->actions().empty());
    EXPECT_EQ(form->hold_time, 0.0F);
    form->hide();
    world.clock += 0.2;
    form->hide();
    EXPECT_EQ(form->animation_start, 100.0) << "already closing";
    form->show();
    EXPECT_EQ(form->animation_state, FormWidget::hiding);
    form->visible = false;
    form->animation_state = FormWidget::idle;
    form->hide();
    EXPECT_FALSE(form->is_animating());
}

TEST_F(FormAnimationTest, AClockThatGoesBackEndsTheAnimation) {
    form->visible = false;
    form->show();
    at(-5.0);
    EXPECT_FALSE(form->is_animating());
    EXPECT_EQ(form->opacity, 1.0F);
    form->hide();
    at(-50.0);
    EXPECT_FALSE(form->visible);
}

TEST_F(FormAnimationTest, ShowingHidesHeldFormsThatAreCovered) {
    form->visible = false;
    const object_ref<FormWidget> covered = add_form({-10, -10, 20, 20});
    const object_ref<FormWidget> aside = add_form({300, 200, 50, 50});
    const object_ref<FormWidget> bar = add_form({-10, -10, 20, 20}, true);
    covered->hold_time = 3.0F;
    aside->hold_time = 3.0F;
    form->show();
    EXPECT_EQ(covered->animation_state, FormWidget::hiding);
    EXPECT_FALSE(aside->is_animating());
    EXPECT_FALSE(bar->is_animating()) << "forms that hide themselves are left alone";
}

TEST_F(FormAnimationTest, ShowingHidesFormsThatAreNotHeldUnlessTheMouseIsOnThem) {
    form->visible = false;
    const object_ref<FormWidget> aside = add_form({300, 200, 50, 50});
    const object_ref<FormWidget> pointed = add_form({-390, 200, 50, 50});
    const object_ref<FormWidget> pointed_and_covered = add_form({-10, -10, 20, 20});
    world.mouse = middle_of(pointed);
    form->show();
    EXPECT_EQ(aside->animation_state, FormWidget::hiding);
    EXPECT_FALSE(pointed->is_animating());
    EXPECT_EQ(pointed_and_covered->animation_state, FormWidget::hiding);
}

TEST_F(FormAnimationTest, AFormUnderTheMouseIsHiddenWhereItIsCovered) {
    form->visible = false;
    const object_ref<FormWidget> covered = add_form({190, 140, 300, 300});
    world.mouse = in_window(covered, {200, 200});
    EXPECT_EQ(gui.hittest(world.mouse), covered);
    form->show();
    EXPECT_EQ(covered->animation_state, FormWidget::hiding);
}

// All that a form has but the type code, so that being taken for one is seen.
class NoForm : public FormWidget {
  public:
    NoForm() { type_ = WidgetTypes::container; }
};

TEST_F(FormAnimationTest, WidgetsThatAreNoFormsAreLeftAlone) {
    form->visible = false;
    const object_ref<NoForm> panel(new NoForm);
    panel->bounds = {-10, -10, 20, 20};
    gui.add(panel);
    const object_ref<FormWidget> covered = add_form({-10, -10, 20, 20});
    form->show();
    EXPECT_EQ(covered->animation_state, FormWidget::hiding);
    EXPECT_EQ(panel->animation_state, FormWidget::idle);
}

TEST_F(FormAnimationTest, AFormWithoutAParentIsShown) {
    const object_ref<FormWidget> alone(new FormWidget);
    alone->visible = false;
    alone->show();
    EXPECT_TRUE(alone->visible);
    EXPECT_EQ(alone->animation_state, FormWidget::showing);
}

TEST_F(FormAnimationTest, ShowingBringsTheCursorBack) {
    form->visible = false;
    world.cursor = false;
    FormWidget::auto_hide_cursor = false;
    form->show();
    EXPECT_FALSE(world.cursor);
    form->visible = false;
    FormWidget::auto_hide_cursor = true;
    form->show();
    EXPECT_TRUE(world.cursor);
}

TEST_F(FormAnimationTest, TheLastFormToGoTakesTheCursorOfAFullScreenAlong) {
    const object_ref<FormWidget> other = add_form({300, 200, 50, 50});
    const auto hide_both = [&](bool automatic, bool fullscreen) {
        FormWidget::auto_hide_cursor = automatic;
        world.fullscreen = fullscreen;
        world.cursor = true;
        form->visible = other->visible = true;
        form->hide();
        world.pass(0.5);
        EXPECT_TRUE(world.cursor) << "one is still there";
        other->hide();
        world.pass(0.5);
        return world.cursor;
    };
    EXPECT_FALSE(hide_both(true, true));
    EXPECT_TRUE(hide_both(true, false));
    EXPECT_TRUE(hide_both(false, true));
}

class AutoHideTest : public FormAnimationTest {
  protected:
    AutoHideTest() {
        form->auto_hide = true;
        form->visible = false;
    }
    pointf inside = {400, 300};
    pointf outside = {10, 10};
};

TEST_F(AutoHideTest, AppearsUnderTheMouse) {
    world.mouse = outside;
    world.pass(0.1);
    EXPECT_FALSE(form->visible);
    world.mouse = inside;
    world.pass(0.01);
    EXPECT_TRUE(form->visible);
}

TEST_F(AutoHideTest, StaysThreeSecondsAndGoesWhenTheMouseHasLeft) {
    world.mouse = inside;
    world.pass(0.01);
    world.mouse = outside;
    world.pass(3.1);
    // Held for 3 s, which do not run while it fades in (0.2 s).
    EXPECT_FALSE(form->animation_state == FormWidget::hiding);
    world.pass(0.15);
    EXPECT_EQ(form->animation_state, FormWidget::hiding);
    world.pass(0.25);
    EXPECT_FALSE(form->visible);
}

TEST_F(AutoHideTest, StaysAsLongAsTheMouseIsOnIt) {
    world.mouse = inside;
    world.pass(60.0, 0.1);
    EXPECT_TRUE(form->visible);
    EXPECT_FALSE(form->is_animating());
    EXPECT_EQ(form->hold_time, 0.0F) << "never below";
    world.mouse = outside;
    world.pass(0.02);
    EXPECT_EQ(form->animation_state, FormWidget::hiding);
}

TEST_F(AutoHideTest, HoldingAButtonChangesNothing) {
    world.mouse = inside;
    world.buttons = 1;
    world.pass(1.0);
    EXPECT_FALSE(form->visible);
    world.buttons = 0;
    world.pass(4.0);
    world.mouse = outside;
    world.buttons = 1;
    world.pass(1.0);
    EXPECT_TRUE(form->visible);
    EXPECT_FALSE(form->is_animating());
}

TEST_F(AutoHideTest, AWidgetBeingDraggedKeepsIt) {
    const object_ref<SliderWidget> slider(new SliderWidget);
    slider->bounds = {10, 100, 100, 24};
    form->add(slider);
    form->show();
    world.pass(4.0);
    form->visible = true;
    form->animation_state = FormWidget::idle;
    form->hold_time = 0.5F;
    world.press(middle_of(slider));
    world.buttons = 0;  // whatever the system says
    world.mouse = outside;
    world.pass(1.0);
    EXPECT_TRUE(form->visible);
    EXPECT_EQ(form->hold_time, 0.5F);
    gui.mouseup(outside, 1);
    world.pass(0.6);
    EXPECT_EQ(form->animation_state, FormWidget::hiding);
}

TEST_F(AutoHideTest, ChildrenAreTickedInEveryState) {
    const object_ref<OptionListWidget> list(new OptionListWidget);
    list->value = new Value("", 0, 3, 0);
    list->add_option("a");
    list->add_option("b");
    form->add(list);
    const auto animates = [&] {
        list->value->setValue(0);
        list->animating = true;
        list->target = 1;
        list->step_time = 0.1;
        form->tick(0.05);
        return list->value->getValue() == 0.5F;
    };
    EXPECT_TRUE(animates());
    form->show();
    EXPECT_TRUE(animates());
    form->hide();
    EXPECT_TRUE(animates());
}

}  // namespace
