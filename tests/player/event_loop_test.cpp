// SPDX-License-Identifier: MIT
#include "player/event_loop.h"

#include "core/settings.h"
#include "gui/screen.h"
#include "platform/window.h"
#include "player/infolabel.h"
#include "player/play_video.h"
#include "player/refresh_timer.h"
#include "support/player_fixture.h"

#include <csignal>

namespace {

TEST(DoubleClick, FollowsWithinAQuarterOfASecond) {
    EXPECT_FALSE(DoubleClickDetected(1000)) << "the very first click";
    EXPECT_TRUE(DoubleClickDetected(1250));
    EXPECT_FALSE(DoubleClickDetected(1501));
    EXPECT_TRUE(DoubleClickDetected(1502)) << "every click counts as the one before";
}

class EventLoopTest : public PlayerTest {
  protected:
    void TearDown() override {
        Value& factor = master_settings.temporal_upscaling_factor;
        factor.setValue(factor.default_value());
        PlayerTest::TearDown();
        SDL_Event event;
        SDL_Delay(60);  // timers that are still armed post their last refresh
        while (SDL_PollEvent(&event)) {}
        refresh_scheduled = false;
        set_video_mode(window_width, window_height);
        reshape_gl_for_tests();
    }

    static void reshape_gl_for_tests() { reshape(window_width, window_height); }

    static SDL_Event user(int type, VideoState* is) {
        SDL_Event event{};
        event.type = static_cast<Uint8>(type);
        event.user.data1 = is;
        return event;
    }
    static SDL_Event key(SDLKey symbol) {
        SDL_Event event{};
        event.type = SDL_KEYDOWN;
        event.key.keysym.sym = symbol;
        return event;
    }

    static SDL_Event resize(int width, int height) {
        SDL_Event event{};
        event.type = SDL_VIDEORESIZE;
        event.resize.w = width;
        event.resize.h = height;
        return event;
    }

    // Whether an event of that type is in the queue or comes soon.
    static bool comes(int type) {
        const Uint32 deadline = SDL_GetTicks() + 300;
        SDL_Event event;
        while (SDL_GetTicks() < deadline) {
            if (SDL_PollEvent(&event) && event.type == type) return true;
            SDL_Delay(1);
        }
        return false;
    }

    // Runs the real loop's events until `done` holds.
    bool run_until(const std::function<bool()>& done, double seconds = 20.0) {
        const Uint32 deadline = SDL_GetTicks() + static_cast<Uint32>(seconds * 1000);
        while (!done()) {
            SDL_Event event;
            if (SDL_PollEvent(&event)) {
                if (!handle_event(event)) return false;
            } else if (SDL_GetTicks() > deadline) {
                return false;
            } else {
                SDL_Delay(1);
            }
        }
        return true;
    }
};

TEST_F(EventLoopTest, EndsWithEscapeQuitAndItsOwnEvent) {
    EXPECT_FALSE(handle_event(key(SDLK_ESCAPE)));
    SDL_Event quit{};
    quit.type = SDL_QUIT;
    EXPECT_FALSE(handle_event(quit));
    EXPECT_FALSE(handle_event(user(26, nullptr)));
    EXPECT_TRUE(handle_event(key(SDLK_x)));
}

TEST_F(EventLoopTest, WishToQuitIsNoticedWhenTheQueueIsFull) {
    watch_for_quit();
    EXPECT_FALSE(quit_came_in());
    while (push_event(event_failed, nullptr)) {}
    std::raise(SIGTERM);
    EXPECT_TRUE(quit_came_in());
    EXPECT_TRUE(quit_came_in()) << "it stays";
    SDL_Event event;
    while (SDL_PollEvent(&event)) {}
    watch_for_quit();
    EXPECT_FALSE(quit_came_in());
    SDL_SetEventFilter(nullptr);
}

TEST_F(EventLoopTest, MovesOfThePointerAreQueuedWhenTheyAreWanted) {
    watch_for_quit();
    SDL_Event motion{};
    motion.type = SDL_MOUSEMOTION;
    for (const bool wanted : {false, true}) {
        queue_mouse_motion(wanted);
        EXPECT_EQ(SDL_GetEventFilter()(&motion) != 0, wanted);
        const SDL_Event press = key(SDLK_x);
        EXPECT_NE(SDL_GetEventFilter()(&press), 0);
    }
    SDL_SetEventFilter(nullptr);
}

// Classic SDL would empty its queue if a state of events were set.
TEST_F(EventLoopTest, WhatThreadsPostedOutlivesTheStart) {
    watch_for_quit();
    ASSERT_TRUE(push_event(event_failed, nullptr));
    queue_mouse_motion(false);
    queue_mouse_motion(true);
    EXPECT_TRUE(comes(event_failed));
    SDL_SetEventFilter(nullptr);
}

TEST_F(EventLoopTest, ResizeFollowsTheWindow) {
    EXPECT_TRUE(handle_event(resize(500, 400)));
    EXPECT_EQ(screen->w, 500);
    EXPECT_EQ(screen->h, 400);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 500);
}

TEST_F(EventLoopTest, ResizeLeavesAFullScreenFull) {
    ASSERT_TRUE(set_fullscreen(1));
    EXPECT_TRUE(handle_event(resize(screen->w, screen->h)));
    EXPECT_TRUE(get_fullscreen());
    EXPECT_NE(screen->flags & SDL_FULLSCREEN, 0U);
    set_fullscreen(0);
    EXPECT_EQ(screen->flags & SDL_FULLSCREEN, 0U);
}

TEST_F(EventLoopTest, SizeOfTheFullScreenThatComesLateIsNotTaken) {
    ASSERT_TRUE(set_fullscreen(1));
    const SDL_Event event = resize(screen->w, screen->h);
    ASSERT_GT(screen->w, 800);
    set_fullscreen(0);
    EXPECT_TRUE(handle_event(event));
    EXPECT_EQ(screen->w, 800);
    SDL_Delay(1000);
    EXPECT_TRUE(handle_event(event)) << "the user's wish";
    EXPECT_EQ(screen->w, event.resize.w);
}

TEST_F(EventLoopTest, ClickShowsTheCursor) {
    SDL_Event click{};
    click.type = SDL_MOUSEBUTTONDOWN;
    for (const int button : {SDL_BUTTON_RIGHT, SDL_BUTTON_LEFT}) {
        SDL_Delay(260);  // or it would be half of a double click
        SDL_ShowCursor(SDL_DISABLE);
        click.button.button = static_cast<Uint8>(button);
        EXPECT_TRUE(handle_event(click));
        EXPECT_EQ(SDL_ShowCursor(SDL_QUERY), SDL_ENABLE) << button;
        EXPECT_FALSE(get_fullscreen());
    }
}

TEST_F(EventLoopTest, ReshapeSetsTheVirtualScreen) {
    struct Case {
        int w, h;
        float x, y, width, height;
    };
    for (const Case& c : {Case{1600, 600, -800, -300, 1600, 600},
                          {800, 600, -400, -300, 800, 600},
                          {1600, 1200, -400, -300, 800, 600},
                          {400, 600, -400, -600, 800, 1200}}) {
        reshape(c.w, c.h);
        EXPECT_FLOAT_EQ(screenRectangle.x, c.x);
        EXPECT_FLOAT_EQ(screenRectangle.y, c.y);
        EXPECT_FLOAT_EQ(screenRectangle.w, c.width);
        EXPECT_FLOAT_EQ(screenRectangle.h, c.height);
        EXPECT_EQ(display_refresh_rate, 60);
    }
    reshape(0, 0);
    EXPECT_FLOAT_EQ(screenRectangle.w, 800) << "an empty window changes nothing";
}

TEST_F(EventLoopTest, PlaysAFilmAndLoops) {
    master_settings.temporal_upscaling_factor.setValue(0);
    VideoState* is = open("q7_mpeg4.avi", {.loop = true});
    ASSERT_NE(is, nullptr);
    schedule_refresh(is, 10);
    double highest = 0.0;
    bool restarted = false;
    EXPECT_TRUE(run_until([&] {
        const double now = is->video_current_pts;
        restarted |= highest > 0.8 && now < 0.2;
        highest = std::max(highest, now);
        return restarted;
    })) << "reached "
        << highest;
    EXPECT_FALSE(is->paused);
}

TEST_F(EventLoopTest, WithoutLoopTheEndPauses) {
    master_settings.temporal_upscaling_factor.setValue(0);
    VideoState* is = open("q7_mpeg4.avi");
    schedule_refresh(is, 10);
    EXPECT_TRUE(run_until([&] { return is->paused.load(); }));
    EXPECT_NEAR(is->clocks.frame_last_pts, 0.96, 0.05) << "after the last picture";
    EXPECT_FALSE(is->seek_request);
}

TEST_F(EventLoopTest, PausedFilmIsRedrawnFortyTimesASecond) {
    ASSERT_GE(master_settings.temporal_upscaling_factor.toInt(), 4) << "refreshes run freely";
    VideoState* is = open("h264.mp4", {.loop = true});
    schedule_refresh(is, 10);
    ASSERT_TRUE(run_until([&] { return is->shown_picture >= 0; }));
    stream_pause(is);
    int refreshes = 0;
    const Uint32 start = SDL_GetTicks();
    while (SDL_GetTicks() - start < 500) {
        SDL_Event event;
        if (!SDL_PollEvent(&event)) continue;
        refreshes += event.type == event_refresh;
        ASSERT_TRUE(handle_event(event));
    }
    EXPECT_GT(refreshes, 0);
    EXPECT_LT(refreshes, 60) << "measured: 18 to 21";
}

TEST_F(EventLoopTest, RefreshActsOnTheCurrentFilm) {
    VideoState* old = open("q7_mpeg4.avi");
    stream_close(old);
    VideoState* current = open("q5_mpeg2.mpg");
    ASSERT_TRUE(wait_until([&] { return head(current) != nullptr; }));
    refresh_scheduled = true;
    EXPECT_TRUE(handle_event(user(event_refresh, old)));
    EXPECT_GE(current->shown_picture, 0) << "the stale pointer does not matter";
}

TEST_F(EventLoopTest, FailureIsShownAndClosed) {
    VideoState* is = open("text.mp4");
    ASSERT_NE(is, nullptr);
    ::testing::internal::CaptureStderr();
    EXPECT_TRUE(run_until([&] { return !stream_is_open(is); }));
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(infolabel_text, "Cannot display file " + clip("text.mp4") +
                                  "!\nThe file format is either not supported or\n"
                                  "the content can not be read.");
    EXPECT_EQ(global_video_state, nullptr);
    infolabel_text.clear();
    EXPECT_TRUE(handle_event(user(event_failed, is)));
    EXPECT_EQ(infolabel_text, "") << "a second event is dropped";
}

TEST_F(EventLoopTest, StaleEventsAreDropped) {
    VideoState* old = open("q7_mpeg4.avi", {.loop = true});
    stream_close(old);
    VideoState* current = open("h264.mp4");
    EXPECT_TRUE(handle_event(user(event_end_of_stream, old)));
    EXPECT_FALSE(old->seek_request);
    EXPECT_TRUE(handle_event(user(event_end_of_stream, nullptr)));
    EXPECT_TRUE(handle_event(user(event_alloc_picture, old)));
    EXPECT_FALSE(current->paused);
}

TEST_F(EventLoopTest, DoubleClickOnThePictureTogglesFullScreen) {
    SDL_Event click{};
    click.type = SDL_MOUSEBUTTONDOWN;
    click.button.button = SDL_BUTTON_LEFT;
    click.button.x = 160;
    click.button.y = 120;
    SDL_Delay(260);
    handle_event(click);
    EXPECT_FALSE(get_fullscreen());
    handle_event(click);
    EXPECT_TRUE(get_fullscreen());
    SDL_Delay(260);
    click.button.button = SDL_BUTTON_RIGHT;
    handle_event(click);
    handle_event(click);
    EXPECT_TRUE(get_fullscreen()) << "only the left button";
    set_fullscreen(0);
}

TEST_F(EventLoopTest, ClosedFilmLeavesTheWindowEmpty) {
    EXPECT_TRUE(handle_event(user(event_refresh, nullptr)));
    EXPECT_FALSE(refresh_scheduled);
}

}  // namespace
