// SPDX-License-Identifier: MIT
#pragma once

#include "core/settings.h"
#include "gpu/display_geometry.h"
#include "player/clocks.h"
#include "player/events.h"
#include "player/refresh_timer.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"

#include <chrono>
#include <cmath>

/// Microseconds.
inline std::int64_t now_us = 0;

/// Single refreshes of a film that the test makes up, with a clock that it owns.
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
