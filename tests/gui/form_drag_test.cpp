// SPDX-License-Identifier: MIT
#include "gui/form_widget.h"
#include "support/gui_test.h"

#include <cmath>

namespace {

class FormDragTest : public GuiTest {
  protected:
    // A point of the title bar in window pixels.
    pointf title() const { return in_window(form, {100, 15}); }

    void drag_title_by(pointf way) { world.drag(title(), title() + way); }

    object_ref<FormWidget> add_bar(rectf r) {
        object_ref<FormWidget> bar(new FormWidget);
        bar->auto_hide = true;
        bar->bounds = r;
        gui.add(bar);
        return bar;
    }
};

TEST_F(FormDragTest, FollowsTheMouseByItsTitleBar) {
    form->dirty = false;
    EXPECT_TRUE(world.press(title()));
    EXPECT_TRUE(form->dragging);
    EXPECT_TRUE(form->dirty);
    EXPECT_EQ(form->drag_anchor.x, 100.0F);
    EXPECT_EQ(form->drag_anchor.y, 15.0F);
    form->dirty = false;
    EXPECT_TRUE(world.move(title() + pointf(30, -20)));
    EXPECT_TRUE(form->dirty);
    EXPECT_EQ(form->bounds.x, -170.0F);
    EXPECT_EQ(form->bounds.y, -170.0F);
    EXPECT_EQ(form->bounds.w, 400.0F);
    form->dirty = false;
    EXPECT_TRUE(world.release({0, 0}));
    EXPECT_FALSE(form->dragging);
    EXPECT_TRUE(form->dirty);
    world.move({500, 500});
    EXPECT_EQ(form->bounds.x, -170.0F);
}

TEST_F(FormDragTest, ZoomsIntoTheCornerOfTheScreenAfterwards) {
    drag_title_by({30, 40});
    EXPECT_EQ(form->scaling_center.x, -30.0F);
    EXPECT_EQ(form->scaling_center.y, -40.0F);
}

TEST_F(FormDragTest, StopsAtEachEdge) {
    drag_title_by({-1000, 0});
    EXPECT_EQ(form->bounds.x, -400.0F);
    EXPECT_EQ(form->bounds.y, -150.0F);
    drag_title_by({5000, 0});
    EXPECT_EQ(form->bounds.x, 0.0F);
    drag_title_by({0, -5000});
    EXPECT_EQ(form->bounds.y, -300.0F);
    drag_title_by({0, 5000});
    EXPECT_EQ(form->bounds.y, 0.0F);
    EXPECT_EQ(form->bounds.x, 0.0F);
}

TEST_F(FormDragTest, AFormWiderThanTheScreenSticksToTheLeftEdge) {
    form->bounds = {-400, -300, 900, 700};
    drag_title_by({50, 50});
    EXPECT_EQ(form->bounds.x, -400.0F);
    EXPECT_EQ(form->bounds.y, -300.0F);
    drag_title_by({-50, -50});
    EXPECT_EQ(form->bounds.x, -400.0F);
    EXPECT_EQ(form->bounds.y, -300.0F);
}

TEST_F(FormDragTest, ComesBackIntoAScreenThatBecameSmaller) {
    GuiWorld::resize(1600, 600);
    form->bounds.x = 400.0F;
    form->scaling_center = {7, 7};
    form->dirty = false;
    form->keep_inside();
    EXPECT_EQ(form->bounds.x, 400.0F);
    EXPECT_EQ(form->scaling_center.x, 7.0F) << "it zooms from where it was opened";
    EXPECT_FALSE(form->dirty);
    GuiWorld::resize(800, 600);
    form->keep_inside();
    EXPECT_EQ(form->bounds.x, 0.0F);
    EXPECT_EQ(form->bounds.y, -150.0F);
    EXPECT_EQ(form->scaling_center.x, -200.0F);
    EXPECT_TRUE(form->dirty);
}

TEST_F(FormDragTest, WindowPixelsAreUnitsOfTheForm) {
    GuiWorld::resize(1600, 1200);
    drag_title_by({100, 60});
    EXPECT_FLOAT_EQ(form->bounds.x, -150.0F);
    EXPECT_FLOAT_EQ(form->bounds.y, -120.0F);
}

TEST_F(FormDragTest, NeedsATitleBar) {
    form->has_title_bar = false;
    EXPECT_FALSE(form->mousedown({100, 15}, 1));
    EXPECT_FALSE(form->dragging);
    drag_title_by({30, 30});
    EXPECT_EQ(form->bounds.x, -200.0F);
}

TEST_F(FormDragTest, TheTitleBarIsInFrontOfTheChildren) {
    const object_ref<ButtonWidget> button(new ButtonWidget);
    button->bounds = {0, 0, 400, 300};
    form->add(button);
    world.press(title());
    EXPECT_TRUE(form->dragging);
    EXPECT_TRUE(form->actions().empty());
}

TEST_F(FormDragTest, PushesAutoHideFormsAway) {
    const object_ref<FormWidget> hit = add_bar({150, 150, 40, 40});
    const object_ref<FormWidget> missed = add_bar({-390, 250, 20, 20});
    const object_ref<FormWidget> invisible = add_bar({150, 150, 40, 40});
    const object_ref<FormWidget> stays(new FormWidget);
    invisible->visible = false;
    stays->bounds = {150, 150, 40, 40};
    gui.add(stays);
    form->dragging = true;
    form->drag_anchor = {100, 15};
    form->mousemove({100, 80}, 1);
    EXPECT_EQ(hit->animation_state, FormWidget::hiding);
    EXPECT_FALSE(missed->is_animating());
    EXPECT_FALSE(invisible->is_animating());
    EXPECT_FALSE(stays->is_animating());
    EXPECT_FALSE(form->is_animating());
}

TEST_F(FormDragTest, IgnoresPositionsThatAreNone) {
    world.press(title());
    world.move({NAN, NAN});
    EXPECT_EQ(form->bounds.x, -200.0F);
    EXPECT_EQ(form->bounds.y, -150.0F);
    world.move({INFINITY, -INFINITY});
    EXPECT_EQ(form->bounds.x, 0.0F);
    EXPECT_EQ(form->bounds.y, -300.0F);
}

TEST_F(FormDragTest, WorksWithoutAParent) {
    const object_ref<FormWidget> alone(new FormWidget);
    alone->bounds = {0, 0, 100, 100};
    alone->mousedown({50, 12}, 1);
    EXPECT_TRUE(alone->mousemove({40, 2}, 1));
    EXPECT_EQ(alone->bounds.x, -10.0F);
    EXPECT_EQ(alone->bounds.y, -10.0F);
}

}  // namespace
