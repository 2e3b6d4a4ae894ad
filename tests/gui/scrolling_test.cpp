// SPDX-License-Identifier: MIT
#include "gui/scrollable_widget.h"

#include "support/drawing_recorder.h"
#include "support/gui_test.h"

#include <cmath>

namespace {

class ScrollingTest : public GuiTest {
  protected:
    ScrollingTest() {
        area->bounds = {50, 50, 100, 100};
        area->scroll_max = {400, 900};
        form->add(area);
        form->dirty = false;
    }

    void expect_at(float x, float y) {
        EXPECT_NEAR(area->scroll_position.x, x, 1e-3);
        EXPECT_NEAR(area->scroll_position.y, y, 1e-3);
    }

    object_ref<ScrollableWidget> area = new ScrollableWidget;
};

TEST_F(ScrollingTest, ScrollsByAndToWithinItsLimits) {
    area->scroll({10, 20}, false);
    EXPECT_TRUE(form->dirty);
    expect_at(10, 20);
    area->scroll({-100, 5}, false);
    expect_at(0, 25);
    area->scroll({5000, 5000}, false);
    expect_at(400, 900);
    area->scroll({30, 40}, true);
    expect_at(30, 40);
    area->scroll({-30, 5000}, true);
    expect_at(0, 900);
    area->scroll({NAN, NAN}, true);
    expect_at(0, 0);
    area->scroll_max = {-5, -5};
    area->scroll({10, 10}, true);
    expect_at(0, 0);
}

TEST_F(ScrollingTest, OnlySlantedMovesCountAsScrolling) {
    area->scroll({0, 20}, false);
    EXPECT_FALSE(area->moved);
    area->scroll({20, 0}, false);
    EXPECT_FALSE(area->moved);
    area->scroll({1, 1}, true);
    EXPECT_FALSE(area->moved) << "jumps do not count";
    area->scroll({1, 1}, false);
    EXPECT_TRUE(area->moved);
}

TEST_F(ScrollingTest, TheViewIsWhatIsVisible) {
    area->scroll({30, 40}, true);
    const rectf view = area->get_current_view();
    EXPECT_EQ(view.x, 30.0F);
    EXPECT_EQ(view.y, 40.0F);
    EXPECT_EQ(view.w, 100.0F);
    EXPECT_EQ(view.h, 100.0F);
}

TEST_F(ScrollingTest, PointsAreContentPoints) {
    area->scroll({30, 40}, true);
    pointf p(5, 6);
    area->screen2point(p, true);
    EXPECT_EQ(p.x, 35.0F);
    EXPECT_EQ(p.y, 46.0F);
    p = {200 + 50 + 5, 150 + 50 + 6};
    area->screen2point(p, false);
    EXPECT_NEAR(p.x, 35.0F, 1e-3);
    EXPECT_NEAR(p.y, 46.0F, 1e-3);
}

TEST_F(ScrollingTest, FollowsTheMouseNineTenthsAtATime) {
    area->scroll({0, 500}, true);
    EXPECT_TRUE(area->mousedown({50, 80}, 1));
    EXPECT_TRUE(area->mousemove({50, 70}, 1));
    expect_at(0, 510);
    EXPECT_NEAR(area->last_pointer.y, 71.0F, 1e-4);
    EXPECT_TRUE(area->mousemove({50, 60}, 1));
    expect_at(0, 521);
    EXPECT_NEAR(area->last_pointer.y, 61.1F, 1e-4);
    EXPECT_FALSE(area->mousemove({50, 0}, 0));
    EXPECT_FALSE(area->mousemove({50, 0}, 2));
    EXPECT_FALSE(area->mousedown({50, 0}, 2));
    EXPECT_FALSE(area->mouseup({50, 0}, 2));
    expect_at(0, 521);
}

TEST_F(ScrollingTest, AFlickGlidesOnAtConstantSpeed) {
    area->scroll({0, 100}, true);
    area->mousedown({50, 80}, 1);
    world.clock += 0.099;
    area->mousemove({50, 60}, 1);
    EXPECT_FALSE(area->mouseup({50, 50}, 1)) << "a purely vertical drag counts as a click";
    // (62 - 50) x 6 / 0.1 s
    EXPECT_EQ(area->velocity.x, 0.0F);
    EXPECT_NEAR(area->velocity.y, 720.0F, 0.1F);
    expect_at(0, 120);
    form->dirty = false;
    world.pass(0.5);
    EXPECT_TRUE(form->dirty);
    expect_at(0, 480);
    EXPECT_NEAR(area->velocity.y, 720.0F, 0.1F) << "without friction";
    world.pass(2.0);
    expect_at(0, 900);
    EXPECT_EQ(area->velocity.y, 0.0F) << "at rest at the limit";
    form->dirty = false;
    world.pass(0.1);
    EXPECT_FALSE(form->dirty);
}

TEST_F(ScrollingTest, GlidesBackToTheStartToo) {
    area->scroll({50, 50}, true);
    area->velocity = {-100, -200};
    world.pass(0.1);
    expect_at(40, 30);
    world.pass(1.0);
    expect_at(0, 0);
    EXPECT_EQ(area->velocity.x, 0.0F);
    EXPECT_EQ(area->velocity.y, 0.0F);
}

TEST_F(ScrollingTest, SlowFlicksLeaveAComponentStill) {
    const auto flick = [&](pointf way) {
        area->last_pointer = {};
        area->press_time = static_cast<float>(world.clock) - 0.999F;  // 1 s with the extra one
        area->mouseup(way, 1);
        return area->velocity;
    };
    const pointf v = flick({-9.5F / 6.0F, 30.0F / 6.0F});
    EXPECT_EQ(v.x, 0.0F);
    EXPECT_NEAR(v.y, -30.0F, 0.1F);
    EXPECT_EQ(flick({0, 9.9F / 6.0F}).y, 0.0F);
    EXPECT_NE(flick({0, 10.1F / 6.0F}).y, 0.0F);
}

TEST_F(ScrollingTest, APressStopsItAndIsNoClick) {
    area->velocity = {0, 500};
    area->mousedown({50, 50}, 1);
    EXPECT_TRUE(area->moved);
    EXPECT_EQ(area->velocity.y, 0.0F);
    EXPECT_TRUE(area->mouseup({50, 50}, 1));
    area->mousedown({50, 50}, 1);
    EXPECT_FALSE(area->mouseup({50, 50}, 1));
    area->mousedown({50, 50}, 1);
    area->mousemove({45, 45}, 1);
    EXPECT_TRUE(area->mouseup({45, 45}, 1));
}

TEST_F(ScrollingTest, TheWheelScrollsByStepsAndStopsWhatGlides) {
    const pointf inside(260, 260);
    area->velocity = {0, 300};
    form->dirty = false;
    EXPECT_TRUE(world.press(inside, ScrollableWidget::wheel_down));
    world.release(inside);
    expect_at(0, 120);
    EXPECT_TRUE(form->dirty);
    EXPECT_FALSE(area->moved) << "it is no drag";
    world.pass(1.0);
    expect_at(0, 120);
    EXPECT_TRUE(world.press(inside, ScrollableWidget::wheel_up));
    world.move({260, 100});
    world.release({260, 100});
    expect_at(0, 0);
    world.pass(1.0);
    expect_at(0, 0);
}

TEST_F(ScrollingTest, AClockThatStandsOrGoesBackGivesNoWildSpeed) {
    area->mousedown({50, 50}, 1);
    world.clock -= 1000;
    area->mouseup({50, 40}, 1);
    EXPECT_NEAR(area->velocity.y, 10.0F * 6.0F / 0.001F, 1.0F);
    area->velocity = {};
    area->last_pointer = {NAN, NAN};
    area->mouseup({50, 40}, 1);
    EXPECT_EQ(area->velocity.x, 0.0F);
    EXPECT_EQ(area->velocity.y, 0.0F);
}

TEST_F(ScrollingTest, DrawingIsMovedAndClipped) {
    area->scroll({30, 40}, true);
    DrawingRecorder recorder;
    area->begin_draw();
    drawlinef(35, 46, 36, 46);
    area->end_draw();
    drawlinef(1, 2, 3, 4);
    ASSERT_EQ(recorder.drawn.size(), 2U);
    EXPECT_EQ(recorder.drawn[0].points[0].x, 5.0F);
    EXPECT_EQ(recorder.drawn[0].points[0].y, 6.0F);
    EXPECT_TRUE(recorder.drawn[0].clipped);
    EXPECT_EQ(recorder.drawn[0].clip.x, 0.0F);
    EXPECT_EQ(recorder.drawn[0].clip.w, 100.0F);
    EXPECT_EQ(recorder.drawn[1].points[0].x, 1.0F);
    EXPECT_FALSE(recorder.drawn[1].clipped);
}

}  // namespace
