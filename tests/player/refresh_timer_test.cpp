// SPDX-License-Identifier: MIT
#include "player/refresh_timer.h"

#include "core/settings.h"
#include "player/clocks.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"

#include <atomic>
#include <chrono>
#include <functional>

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

TEST(TimerInterval, IsTheStepBelow) {
    struct Case {
        int ms, expected;
    };
    for (const Case& c : {Case{1, 10},
                          {10, 10},
                          {17, 10},
                          {20, 10},
                          {21, 20},
                          {25, 20},
                          {30, 20},
                          {33, 30},
                          {40, 30},
                          {41, 40}}) {
        EXPECT_EQ(timer_interval(c.ms), c.expected) << c.ms;
    }
}

class RefreshTimerTest : public PlayerTest {
  protected:
    void SetUp() override {
        PlayerTest::SetUp();
        refresh_scheduled = false;
        global_video_state = nullptr;
    }
    void TearDown() override {
        global_video_state = nullptr;
        Value& factor = master_settings.temporal_upscaling_factor;
        factor.setValue(factor.default_value());
        drain();
        refresh_scheduled = false;
        PlayerTest::TearDown();
    }

    static int drain() {
        int refreshes = 0;
        SDL_Event event;
        while (SDL_PollEvent(&event))
            refreshes += event.type == event_refresh;
        return refreshes;
    }

    // Waits without taking events, which `wait_until` does.
    static bool comes_true(const std::function<bool()>& condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition() && std::chrono::steady_clock::now() < deadline)
            SDL_Delay(1);
        return condition();
    }

    // Waits until every timer that is armed and due within 20 ms has fired: SDL's timers fire one
    // after the other, and one that fires a second time leaves none behind that was due at its
    // first.
    static bool timers_fired() {
        static std::atomic<int> times;
        times = 0;
        SDL_AddTimer(
            20, [](Uint32 interval, void*) -> Uint32 { return ++times < 2 ? interval : 0; },
            nullptr);
        return comes_true([] { return times == 2; });
    }

    // Waits for a refresh and tells how many milliseconds after `start` it came.
    static double wait_refresh(std::chrono::steady_clock::time_point start) {
        SDL_Event event;
        do {
            wait_event(&event);
        } while (event.type != event_refresh);
        refresh_scheduled = false;
        return Milliseconds(std::chrono::steady_clock::now() - start).count();
    }
};

TEST_F(RefreshTimerTest, ComesAndNeverEarly) {
    for (const int ms : {10, 14, 17, 20, 25, 33, 40, 12, 28, 36, 19}) {
        const auto start = std::chrono::steady_clock::now();
        schedule_refresh(nullptr, ms);
        EXPECT_GT(wait_refresh(start), ms - 0.1);
    }
}

TEST_F(RefreshTimerTest, SurplusTimersPostNothing) {
    for (int i = 0; i < 5; ++i)
        schedule_refresh(nullptr, 10);
    ASSERT_TRUE(timers_fired());
    EXPECT_TRUE(refresh_scheduled);
    EXPECT_EQ(drain(), 1);
}

TEST_F(RefreshTimerTest, FreeRunningPostsAtOnce) {
    VideoState state;
    state.video_stream_index = 0;
    EXPECT_TRUE(maximize_fps(&state));
    schedule_refresh(&state, 500);
    schedule_refresh(&state, 500);
    EXPECT_EQ(drain(), 1);
}

TEST_F(RefreshTimerTest, FreeRunningNeedsAPictureAndTheTopFactor) {
    VideoState state;
    EXPECT_FALSE(maximize_fps(nullptr));
    EXPECT_FALSE(maximize_fps(&state)) << "no video";
    state.video_stream_index = 0;
    master_settings.temporal_upscaling_factor.setValue(3);
    EXPECT_FALSE(maximize_fps(&state));
    master_settings.temporal_upscaling_factor.setValue(4);
    EXPECT_TRUE(maximize_fps(&state));
}

TEST_F(RefreshTimerTest, FullQueueDelaysTheRefreshButLosesNone) {
    while (push_event(event_alloc_picture, nullptr)) {}
    schedule_refresh(nullptr, 10);
    ASSERT_TRUE(timers_fired());
    ASSERT_TRUE(comes_true([] { return !refresh_scheduled; })) << "nothing could be posted";
    // Taking the events that fill the queue makes room; the timer tries again.
    const auto start = std::chrono::steady_clock::now();
    EXPECT_LT(wait_refresh(start), 1000.0);
}

TEST_F(RefreshTimerTest, HeldRefreshesAreNotPosted) {
    static std::atomic<bool> later_one_fired;
    later_one_fired = false;
    hold_refreshes(true);
    schedule_refresh(nullptr, 10);
    SDL_AddTimer(
        60,
        [](Uint32, void*) -> Uint32 {
            later_one_fired = true;
            return 0;
        },
        nullptr);
    EXPECT_TRUE(wait_until([] { return later_one_fired.load(); }));
    hold_refreshes(false);
    ASSERT_FALSE(refresh_scheduled);
    EXPECT_EQ(drain(), 0);
    const auto start = std::chrono::steady_clock::now();
    schedule_refresh(nullptr, 10);
    EXPECT_GE(wait_refresh(start), 9.9) << "and later ones come as ever";
}

TEST_F(RefreshTimerTest, EventsCarryTheirState) {
    VideoState state;
    ASSERT_TRUE(push_event(event_failed, &state));
    SDL_Event event;
    wait_event(&event);
    EXPECT_EQ(event.type, 27);
    EXPECT_EQ(event.user.data1, &state);
}

TEST(FrameRate, IsSmoothedOverARing) {
    for (int i = 0; i < 2 * timestamp_ring_size; ++i)
        note_frame_shown(1000000 + i * 20000);
    double fps = 0.0;
    for (int i = 0; i < 100; ++i)
        fps = video_estimate_fps();
    EXPECT_NEAR(fps, 50.0, 0.01);
    for (int i = 0; i < timestamp_ring_size; ++i)
        note_frame_shown(9000000 + i * 40000);
    EXPECT_NEAR(video_estimate_fps(), 50.0 + 0.2 * (25.0 - 50.0), 0.01) << "a fifth of the way";
}

TEST(FrameRate, EqualTimesGiveTheLargestRate) {
    for (int i = 0; i < timestamp_ring_size; ++i)
        note_frame_shown(5);
    const double before = video_estimate_fps();
    EXPECT_NEAR(video_estimate_fps(), before + 0.2 * (31000000.0 - before), 1.0);
}

TEST_F(RefreshTimerTest, ARefreshThatIsWaitedForCanBeHastened) {
    const auto start = std::chrono::steady_clock::now();
    schedule_refresh_later(nullptr, 5000);
    hasten_refresh();
    EXPECT_TRUE(refresh_scheduled);
    EXPECT_LT(Milliseconds(std::chrono::steady_clock::now() - start).count(), 4000.0);
    EXPECT_EQ(drain(), 1);
}

TEST_F(RefreshTimerTest, AHastenedRefreshDoesNotComeAgainAtItsTime) {
    schedule_refresh_later(nullptr, 15);
    hasten_refresh();
    EXPECT_EQ(drain(), 1);
    refresh_scheduled = false;
    ASSERT_TRUE(timers_fired());
    EXPECT_EQ(drain(), 0);
}

TEST_F(RefreshTimerTest, NothingIsHastenedWhereNothingIsWaitedFor) {
    hasten_refresh();
    EXPECT_FALSE(refresh_scheduled);
    EXPECT_EQ(drain(), 0);
}

}  // namespace
