// SPDX-License-Identifier: MIT
// What one refresh does, with a film that the test makes up and a clock that it owns.

#include "player/video_refresh.h"

#include "core/settings.h"
#include "gpu/display_geometry.h"
#include "player/clocks.h"
#include "player/events.h"
#include "player/refresh_timer.h"
#include "support/player_fixture.h"

#include <chrono>
#include <cmath>

namespace {

std::int64_t now_us = 0;

class VideoRefreshTest : public PlayerTest {
  protected:
    void SetUp() override {
        PlayerTest::SetUp();
        factor(0);
        refresh_scheduled = false;
        now_us = 1000000000;
        set_wall_clock([] { return now_us; });
        reset_video_scaling_animation();
        is_.picture_queue_mutex = make_mutex();
        is_.picture_queue_cond = make_cond();
        is_.video_stream_index = 0;
        is_.starved = false;
        is_.clocks.frame_last_delay = 0.04;
        is_.clocks.frame_timer = now();
    }
    void TearDown() override {
        set_wall_clock(nullptr);
        Value& factor = master_settings.temporal_upscaling_factor;
        factor.setValue(factor.default_value());
        if (pending_) await_refresh();
        refresh_scheduled = false;
        PlayerTest::TearDown();
    }

    static void factor(int value) {
        master_settings.temporal_upscaling_factor.setValue(static_cast<float>(value));
    }
    static double now() { return static_cast<double>(now_us) / 1e6; }

    // `count` pictures of 40 ms in the queue, brighter from one to the next.
    void queue(int count) {
        for (int i = 0; i < count; ++i) {
            VideoPicture& pic = is_.pictures[static_cast<std::size_t>(i)];
            pic.width = 64;
            pic.height = 48;
            pic.surface.reset(
                SDL_CreateRGBSurface(SDL_SWSURFACE, 64, 48, 24, 0xFF, 0xFF00, 0xFF0000, 0));
            std::fill_n(static_cast<std::uint8_t*>(pic.surface->pixels), pic.surface->pitch * 48,
                        static_cast<std::uint8_t>(grey(i)));
            pic.pts = 10.0 + 0.04 * i;
            pic.number = i;
            pic.ready = true;
        }
        is_.picture_queue_size = count;
        is_.clocks.frame_last_pts = 10.0 - 0.04;
    }
    static int grey(int picture) { return 60 + 50 * picture; }

    int middle() {
        return static_cast<int>(
            std::lrint(window().at(window_width / 2, window_height / 2).r * 255));
    }

    using Clock = std::chrono::steady_clock;

    // Waits for the next refresh event; how many milliseconds after `start` it came.
    static double await_refresh(Clock::time_point start = Clock::now()) {
        const auto passed = [start] {
            return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        };
        SDL_Event event;
        while (passed() < 5000.0) {
            if (SDL_PollEvent(&event) && event.type == event_refresh) break;
            SDL_Delay(1);
        }
        refresh_scheduled = false;
        return passed();
    }

    // One refresh; the next is asked for by it.
    void refresh(VideoState* is) {
        if (pending_) await_refresh();
        video_refresh_timer(is);
        pending_ = true;
    }

    VideoState is_;
    bool pending_ = false;
};

TEST_F(VideoRefreshTest, WithoutAFilmTheAnimationIsDrawnEvery25Milliseconds) {
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    const int shown = lastframe_timestamp_qi;
    const auto start = Clock::now();
    refresh(nullptr);
    EXPECT_EQ(lastframe_timestamp_qi, (shown + 1) % timestamp_ring_size) << "drawn once";
    EXPECT_GT(window().at(window_width / 2, window_height / 2).b, 0.3F) << "blue";
    EXPECT_NEAR(window().at(0, 0).b, 0.02F, 0.002F) << "dark";
    const double passed = await_refresh(start);
    pending_ = false;
    EXPECT_GE(passed, 24.9);
    EXPECT_LT(passed, 5000.0);
}

TEST_F(VideoRefreshTest, SoundAloneIsDrawnEvery50Milliseconds) {
    is_.video_stream_index = -1;
    is_.audio_stream_index = 0;
    for (int round = 0; round < 2; ++round) {
        const int shown = lastframe_timestamp_qi;
        const auto start = Clock::now();
        refresh(&is_);
        EXPECT_EQ(lastframe_timestamp_qi, (shown + 1) % timestamp_ring_size) << "drawn once";
        EXPECT_EQ(is_.output_texture->width(), 600) << "the waveforms";
        const double passed = await_refresh(start);
        pending_ = false;
        EXPECT_GE(passed, 49.9);
        EXPECT_LT(passed, 5000.0);
    }
}

TEST_F(VideoRefreshTest, StreamsThatAreNotThereYetAreLookedForEvery25Milliseconds) {
    is_.video_stream_index = -1;
    const int shown = lastframe_timestamp_qi;
    const auto start = Clock::now();
    refresh(&is_);
    EXPECT_EQ(lastframe_timestamp_qi, shown) << "nothing is drawn";
    EXPECT_GE(await_refresh(start), 24.9);
    pending_ = false;
}

TEST_F(VideoRefreshTest, CameraShowsItsNewestPictures) {
    factor(4);  // refreshes would follow each other at once
    is_.is_camera = true;
    queue(3);
    const auto start = Clock::now();
    refresh(&is_);
    EXPECT_EQ(is_.picture_queue_size, 2) << "one more than the one shown is enough";
    EXPECT_EQ(is_.shown_picture, 1);
    EXPECT_EQ(middle(), grey(1)) << "itself, not a mixture";
    const double passed = await_refresh(start);
    pending_ = false;
    EXPECT_GE(passed, 9.9) << "not at once";
    EXPECT_LT(passed, 5000.0);
    refresh(&is_);
    EXPECT_EQ(is_.picture_queue_size, 1);
    EXPECT_EQ(middle(), grey(2));
    refresh(&is_);
    EXPECT_EQ(is_.picture_queue_size, 1) << "the last one stays";
    EXPECT_EQ(middle(), grey(2));
}

TEST_F(VideoRefreshTest, LatePictureMakesRoomUnseen) {
    queue(3);
    is_.clocks.frame_timer = now() - 0.5;
    refresh(&is_);
    EXPECT_EQ(is_.picture_queue_rindex, 1);
    EXPECT_EQ(is_.picture_queue_size, 2);
    EXPECT_EQ(is_.pictures_unseen, 1);
    EXPECT_EQ(is_.shown_picture, -1);
    EXPECT_DOUBLE_EQ(is_.clocks.frame_timer, now() - 0.46);
}

TEST_F(VideoRefreshTest, LatePictureIsShownWhenThereIsNoOther) {
    queue(1);
    is_.clocks.frame_timer = now() - 0.5;
    refresh(&is_);
    EXPECT_EQ(is_.picture_queue_size, 0);
    EXPECT_EQ(is_.pictures_unseen, 0);
    EXPECT_EQ(is_.shown_picture, 0);
    EXPECT_EQ(middle(), grey(0));
}

TEST_F(VideoRefreshTest, LateSubframeLeadsToTheNextAtOnce) {
    factor(1);  // two sub-frames of 20 ms
    queue(2);
    is_.clocks.frame_timer = now() - 0.03;  // the first was due from then on
    refresh(&is_);
    EXPECT_EQ(is_.shown_picture, 0) << "the second is shown by the same refresh";
    EXPECT_EQ(is_.picture_queue_size, 1) << "with it the picture is done";
    EXPECT_EQ(is_.clocks.subframe_counter, 0);
    EXPECT_DOUBLE_EQ(is_.clocks.frame_timer, now() + 0.01);
    EXPECT_EQ(is_.pictures_unseen, 0);
}

TEST_F(VideoRefreshTest, FirstSubframeKeepsThePicture) {
    factor(1);
    queue(2);
    refresh(&is_);
    EXPECT_EQ(is_.shown_picture, 0);
    EXPECT_EQ(is_.picture_queue_size, 2);
    EXPECT_EQ(is_.clocks.subframe_counter, 1);
    EXPECT_DOUBLE_EQ(is_.clocks.frame_timer, now() + 0.02);
}

TEST_F(VideoRefreshTest, PicturesFromBeforeASeekGo) {
    queue(3);
    is_.seeks_done = 1;
    is_.pictures[2].seeks = 1;
    refresh(&is_);
    EXPECT_EQ(is_.shown_picture, 2);
    EXPECT_EQ(middle(), grey(2));
}

}  // namespace
