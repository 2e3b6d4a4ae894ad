// SPDX-License-Identifier: MIT
#include "player/refresh_plan.h"

#include <gtest/gtest.h>

namespace {

// A picture of 40 ms at time 100, on time, one sub-frame, its predecessor 40 ms before.
struct Scene {
    Scene() {
        clocks.frame_timer = 100.0;
        clocks.frame_last_pts = 10.0;
        clocks.frame_last_delay = 0.04;
        in = {.pts = 10.04,
              .now = 100.0,
              .speed = 1.0,
              .n = 1,
              .free_running = false,
              .follows = false,
              .difference = 0.0,
              .starved = false,
              .jumped = false};
    }
    RefreshPlan plan() { return plan_refresh(clocks, in); }

    RefreshClocks clocks;
    RefreshInput in{};
};

void expect_plan(const RefreshPlan& plan, bool display, bool release, int delay_ms) {
    EXPECT_EQ(plan.display, display);
    EXPECT_EQ(plan.release, release);
    EXPECT_EQ(plan.delay_ms, delay_ms);
}

TEST(PictureDelay, DistanceOfTheTimeStamps) {
    Scene s;
    s.in.pts = 10.5;
    EXPECT_DOUBLE_EQ(picture_delay(s.clocks, s.in), 0.5);
    EXPECT_DOUBLE_EQ(s.clocks.frame_last_delay, 0.5);
    EXPECT_DOUBLE_EQ(s.clocks.frame_last_pts, 10.5);
}

TEST(PictureDelay, ImpossibleDistancesReuseTheLastDelay) {
    for (const double pts : {10.0, 9.0, 11.0, 50.0}) {
        Scene s;
        s.in.pts = pts;
        EXPECT_DOUBLE_EQ(picture_delay(s.clocks, s.in), 0.04) << pts;
        EXPECT_DOUBLE_EQ(s.clocks.frame_last_pts, pts);
    }
}

TEST(PictureDelay, LaterSubframesKeepIt) {
    Scene s;
    s.clocks.subframe_counter = 1;
    s.in.n = 2;
    s.in.pts = 10.9;
    EXPECT_DOUBLE_EQ(picture_delay(s.clocks, s.in), 0.04);
    EXPECT_DOUBLE_EQ(s.clocks.frame_last_pts, 10.0);
    s.in.free_running = true;
    EXPECT_DOUBLE_EQ(picture_delay(s.clocks, s.in), 0.9) << "but not when running freely";
}

TEST(PictureDelay, FollowsAnotherClock) {
    struct Case {
        double difference, expected;
    };
    for (const Case& c : {Case{0.039, 0.04},
                          {0.041, 0.08},
                          {-0.039, 0.04},
                          {-0.041, 0.0},
                          {10.1, 0.04},
                          {-10.1, 0.04}}) {
        Scene s;
        s.in.follows = true;
        s.in.difference = c.difference;
        EXPECT_NEAR(picture_delay(s.clocks, s.in), c.expected, 1e-9) << c.difference;
    }
    Scene s;
    s.in.pts = 10.005;  // shorter than the least threshold of 10 ms
    s.in.follows = true;
    s.in.difference = 0.009;
    EXPECT_NEAR(picture_delay(s.clocks, s.in), 0.005, 1e-9);
}

TEST(RefreshPlan, OnTimeIsDisplayedAndReleased) {
    Scene s;
    expect_plan(s.plan(), true, true, 39);
    EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.04);
    EXPECT_DOUBLE_EQ(s.clocks.displayed_due, 100.0);
    EXPECT_EQ(s.clocks.subframe_counter, 0);
    EXPECT_EQ(s.clocks.interpolation_phase, 0.0F);
}

TEST(RefreshPlan, NextDrawingStartsInTimeForItsPicture) {
    Scene s;
    s.clocks.drawing_time = 0.005;
    EXPECT_NEAR(drawing_lead(s.clocks, 0.04), 0.0057, 1e-9);
    expect_plan(s.plan(), true, true, 34);  // 40 - 5.7, rounded
    s.clocks.drawing_time = 0.5;
    EXPECT_NEAR(drawing_lead(s.clocks, 0.04), 0.02, 1e-9) << "at most half of the interval";
    note_drawing_time(s.clocks, 0.0);
    EXPECT_NEAR(s.clocks.drawing_time, 0.45, 1e-9);
}

TEST(RefreshPlan, ShortestWaitIsTenMilliseconds) {
    Scene s;
    s.in.now = 100.035;  // 5 ms are left
    expect_plan(s.plan(), true, true, 10);
}

TEST(RefreshPlan, TwoSubframesOfHalfTheTime) {
    Scene s;
    s.in.n = 2;
    expect_plan(s.plan(), true, false, 19);
    EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.02);
    EXPECT_EQ(s.clocks.subframe_counter, 1);
    s.in.now = 100.02;
    expect_plan(s.plan(), true, true, 19);
    EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.04);
    EXPECT_EQ(s.clocks.subframe_counter, 0);
}

TEST(RefreshPlan, SpeedStretchesTheDelay) {
    Scene s;
    s.in.speed = 0.5;
    s.plan();
    EXPECT_NEAR(s.clocks.frame_timer, 100.08, 1e-9);
    EXPECT_NEAR(s.clocks.frame_last_delay, 0.04, 1e-9) << "kept at normal speed";
}

TEST(RefreshPlan, LateSubframesAreSkippedThenThePictureGoes) {
    Scene s;
    s.in.n = 2;
    s.in.now = 100.1;
    expect_plan(s.plan(), false, false, -1);
    expect_plan(s.plan(), false, true, 10);
    EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.04);
    EXPECT_EQ(s.clocks.subframe_counter, 0);
}

TEST(RefreshPlan, ASecondBehindStartsAgain) {
    Scene s;
    s.in.now = 101.0;
    const RefreshPlan plan = s.plan();
    EXPECT_TRUE(plan.display);
    EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 101.04);
    Scene almost;
    almost.in.now = 100.99;
    EXPECT_FALSE(almost.plan().display);
}

TEST(RefreshPlan, ClockThatWasSetBackStartsAgain) {
    for (const double ahead : {1.05, 100.0, 1e9}) {
        Scene s;
        s.clocks.frame_timer = s.in.now + ahead;
        expect_plan(s.plan(), true, true, 39);
        EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.04) << ahead;
    }
    Scene almost;
    almost.clocks.frame_timer = 101.03;
    almost.plan();
    EXPECT_DOUBLE_EQ(almost.clocks.frame_timer, 101.07) << "a second and a picture are allowed";
}

TEST(RefreshPlan, PictureThatHadToComeLateIsShown) {
    Scene s;
    s.in.starved = true;
    s.in.now = 100.2;
    const RefreshPlan plan = s.plan();
    EXPECT_TRUE(plan.display);
    EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.24);
    Scene in_time;
    in_time.in.starved = true;
    in_time.in.now = 100.01;
    in_time.plan();
    EXPECT_DOUBLE_EQ(in_time.clocks.frame_timer, 100.04) << "the time line stays where it can";
}

TEST(RefreshPlan, PictureAfterAJumpIsDueAtOnce) {
    for (const double wait : {-0.5, 0.0, 0.03}) {  // until the time of the picture before is over
        Scene s;
        s.in.starved = s.in.jumped = true;
        s.clocks.frame_timer = s.in.now + wait;
        EXPECT_TRUE(s.plan().display) << wait;
        EXPECT_DOUBLE_EQ(s.clocks.displayed_due, s.in.now) << wait;
        EXPECT_DOUBLE_EQ(s.clocks.frame_timer, s.in.now + 0.04) << wait;
        Scene free;
        free.in.free_running = true;
        free.in.n = 5;
        free.in.starved = free.in.jumped = true;
        free.clocks.frame_timer = free.in.now + wait;
        EXPECT_TRUE(free.plan().display) << wait;
        EXPECT_NEAR(free.clocks.interpolation_phase, 0.0F, 1e-3F) << wait;
    }
}

TEST(RefreshPlan, FreeRunningPhaseFollowsTheWall) {
    Scene s;
    s.in.free_running = true;
    s.in.n = 5;
    s.clocks.subframe_counter = 3;
    s.clocks.frame_timer = 100.04;  // due time of the next picture
    struct Case {
        double now;
        float phase;
    };
    for (const Case& c :
         {Case{99.9, 0.0F}, {100.0, 0.0F}, {100.008, 1.0F}, {100.02, 2.5F}, {100.036, 4.5F}}) {
        s.in.now = c.now;
        s.clocks.frame_last_pts = 10.0;
        const RefreshPlan plan = s.plan();
        EXPECT_NEAR(s.clocks.interpolation_phase, c.phase, 1e-3F) << c.now;
        EXPECT_TRUE(plan.display);
        EXPECT_FALSE(plan.release) << "it stays until it is late";
        EXPECT_EQ(s.clocks.subframe_counter, 0);
        EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.04);
    }
}

TEST(RefreshPlan, FreeRunningLatePictureMakesRoomForTheNext) {
    Scene s;
    s.in.free_running = true;
    s.in.n = 5;
    s.clocks.frame_timer = 100.0;
    s.in.now = 100.001;
    expect_plan(s.plan(), false, true, 10);
    EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.04);
    EXPECT_EQ(s.clocks.interpolation_phase, 5.0F);
}

TEST(RefreshPlan, FreeRunningFirstPictureIsShown) {
    Scene s;
    s.in.free_running = true;
    s.in.starved = true;
    s.in.n = 5;
    s.in.now = 100.3;
    const RefreshPlan plan = s.plan();
    EXPECT_TRUE(plan.display);
    EXPECT_EQ(s.clocks.interpolation_phase, 0.0F);
    EXPECT_DOUBLE_EQ(s.clocks.frame_timer, 100.34);
}

TEST(RefreshPlan, StalledDisplayCatchesUpAndLosesNothingElse) {
    // 25 pictures per second; after the fifth the display hangs for 200 ms.
    RefreshClocks clocks;
    clocks.frame_timer = 50.0;
    clocks.frame_last_delay = 0.04;
    double now = 50.0;
    int displayed = 0;
    int dropped = 0;
    for (int picture = 0; picture < 50;) {
        const RefreshInput in{.pts = 1.0 + picture * 0.04,
                              .now = now,
                              .speed = 1.0,
                              .n = 1,
                              .free_running = false,
                              .follows = false,
                              .difference = 0.0,
                              .starved = false,
                              .jumped = false};
        const RefreshPlan plan = plan_refresh(clocks, in);
        displayed += plan.display;
        dropped += plan.release && !plan.display;
        if (plan.display && picture == 5) now += 0.2;
        if (plan.release) ++picture;
        if (plan.delay_ms > 0) now += plan.delay_ms / 1000.0;
    }
    EXPECT_EQ(displayed + dropped, 50);
    EXPECT_LE(dropped, 6);
    EXPECT_GE(dropped, 4);
    EXPECT_NEAR(clocks.frame_timer, 50.0 + 50 * 0.04, 1e-6);
}

}  // namespace
