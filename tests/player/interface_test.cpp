// SPDX-License-Identifier: MIT
// How refreshes, events and the window's size meet the forms.
#include "gui/forms.h"
#include "gui/gui_environment.h"
#include "gui/gui_layer.h"
#include "gui/screen.h"
#include "platform/window.h"
#include "player/display.h"
#include "player/event_loop.h"
#include "player/play_video.h"
#include "player/refresh_fixture.h"

#include <GL/glew.h>

namespace {

// A form of one colour that notes what is asked of it.
class Probe : public FormWidget {
  public:
    Probe() {
        bounds = {-100, -50, 200, 100};
        has_title_bar = false;
        has_frame = false;
        draws_without_list = true;
    }
    void draw() override {
        ++drawn;
        smooth = glIsEnabled(GL_LINE_SMOOTH) != 0;
        glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
        glDisable(GL_BLEND);
        glColor4f(0, 1, 0, 1);
        glRectf(0, 0, bounds.w, bounds.h);
    }
    void tick(double dt) override { last_dt = dt; }
    void on_size_changed() override { ++resized; }
    bool mousedown(pointf p, int button) override {
        note("down", p, button);
        return true;
    }
    bool mousemove(pointf p, int buttons) override {
        note("move", p, buttons);
        return true;
    }
    bool mouseup(pointf p, int button) override {
        note("up", p, button);
        return true;
    }

    int drawn = 0;
    int resized = 0;
    bool smooth = false;
    float modelview[16] = {};
    double last_dt = -1.0;
    std::vector<std::string> events;

  private:
    void note(const char* what, pointf p, int button) {
        events.push_back(std::string(what) + " " + std::to_string(std::lrint(p.x)) + "," +
                         std::to_string(std::lrint(p.y)) + " " + std::to_string(button));
    }
};

class InterfaceTest : public VideoRefreshTest {
  protected:
    void SetUp() override {
        VideoRefreshTest::SetUp();
        for (const int number : {1, 2, 3})
            handle_event(button(false, number, 0, 0));  // nothing is held any more
        probe_ = new Probe;
        gui.children.clear();
        gui.add(probe_);
        reshape(window_width, window_height);
    }
    void TearDown() override {
        gui.children.clear();
        formMediaBrowser = static_cast<FormMediaBrowser*>(nullptr);
        formMenu = static_cast<FormMenu*>(nullptr);
        formTransportBar = static_cast<FormTransportBar*>(nullptr);
        if (screen->w != window_width) set_video_mode(window_width, window_height);
        reshape(window_width, window_height);
        VideoRefreshTest::TearDown();
    }

    // The probe lies in the middle of the window.
    float green() { return window().at(window_width / 2, window_height / 2).g; }

    static SDL_Event button(bool down, int number, int x, int y) {
        SDL_Event event{};
        event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
        event.button.button = static_cast<Uint8>(number);
        event.button.x = static_cast<Uint16>(x);
        event.button.y = static_cast<Uint16>(y);
        return event;
    }
    static SDL_Event motion(int x, int y) {
        SDL_Event event{};
        event.type = SDL_MOUSEMOTION;
        event.motion.x = static_cast<Uint16>(x);
        event.motion.y = static_cast<Uint16>(y);
        return event;
    }

    object_ref<Probe> probe_;
};

TEST_F(InterfaceTest, IsDrawnAtTheEndOfEveryRedraw) {
    for (float& element : probe_->modelview)
        element = 0;
    gui_display();
    EXPECT_EQ(probe_->drawn, 1);
    EXPECT_TRUE(probe_->smooth);
    EXPECT_FALSE(glIsEnabled(GL_LINE_SMOOTH));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    // Its corner, and half a pixel so that lines meet the middle of pixels.
    const float scale = gui_scale(window_width, window_height);
    EXPECT_FLOAT_EQ(probe_->modelview[12], window_width / 2 - 100 * scale + 0.5F);
    EXPECT_FLOAT_EQ(probe_->modelview[13], window_height / 2 - 50 * scale + 0.5F);
    queue(1);
    refresh(&is_);
    EXPECT_EQ(probe_->drawn, 2);
    EXPECT_GT(green(), 0.9F) << "over the film";
}

TEST_F(InterfaceTest, EveryRefreshMovesIt) {
    refresh(nullptr);
    EXPECT_GE(probe_->last_dt, 0.0) << "the time is measured, not handed over";
    probe_->last_dt = -1.0;
    queue(1);
    refresh(&is_);
    EXPECT_GE(probe_->last_dt, 0.0);
}

TEST_F(InterfaceTest, VisibleFormMakesRefreshesFollowAtOnce) {
    schedule_refresh(nullptr, 100000);
    EXPECT_TRUE(refresh_scheduled) << "no timer";
    await_refresh();
    is_.paused = true;
    queue(1);
    video_refresh_timer(&is_);
    EXPECT_TRUE(refresh_scheduled) << "also while paused";
    await_refresh();
    probe_->visible = false;
    const auto start = Clock::now();
    video_refresh_timer(&is_);
    EXPECT_GE(await_refresh(start), 24.9) << "a paused picture alone can wait";
}

TEST_F(InterfaceTest, VisibleFormMakesPicturesFollowTheClock) {
    factor(1);  // two sub-frames
    queue(2);
    is_.clocks.frame_timer = now() + 0.03;
    refresh(&is_);
    EXPECT_EQ(is_.clocks.subframe_counter, 0) << "sub-frames are not counted";
    EXPECT_NEAR(is_.clocks.interpolation_phase, 0.5, 0.001) << "2 - 0.03 / 0.02";
    probe_->visible = false;
    refresh(&is_);
    EXPECT_EQ(is_.clocks.interpolation_phase, 0.0F);
}

TEST_F(InterfaceTest, FormsMoveWhileAFileIsBeingOpened) {
    is_.video_stream_index = -1;
    refresh(&is_);
    EXPECT_EQ(probe_->drawn, 1);
    probe_->visible = false;
    refresh(&is_);
    EXPECT_EQ(probe_->drawn, 1) << "what was there stays";
}

TEST_F(InterfaceTest, OpenBrowserHidesTheFilm) {
    formMediaBrowser = new FormMediaBrowser;
    gui.add(formMediaBrowser);
    formMediaBrowser->visible = true;
    formMediaBrowser->bounds.h = 100;  // only the upper part of the window
    queue(2);
    for (const auto state : {FormWidget::showing, FormWidget::hiding}) {
        formMediaBrowser->animation_state = state;
        EXPECT_FALSE(video_suppressed()) << "it can still be seen through";
    }
    formMediaBrowser->animation_state = FormWidget::idle;
    EXPECT_TRUE(video_suppressed());
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    const int shown = lastframe_timestamp_qi;
    probe_->visible = false;
    is_.clocks.frame_timer = now() + 0.03;
    refresh(&is_);
    EXPECT_EQ(lastframe_timestamp_qi, shown) << "no status, no film";
    EXPECT_NEAR(window().at(window_width / 2, window_height - 10).r, 0.02F, 0.005F) << "cleared";
    formMediaBrowser->visible = false;
    EXPECT_FALSE(video_suppressed());
    refresh(&is_);
    EXPECT_NE(lastframe_timestamp_qi, shown);
}

TEST_F(InterfaceTest, FormsFollowTheWindow) {
    formMenu = new FormMenu;
    probe_->dirty = false;
    probe_->full_width = true;
    probe_->resized = 0;
    reshape(1600, 600);
    EXPECT_TRUE(probe_->dirty) << "clipping is recorded in pixels of the window";
    EXPECT_EQ(probe_->bounds.x, -800);
    EXPECT_EQ(probe_->bounds.w, 1600);
    EXPECT_EQ(probe_->bounds.h, 100);
    EXPECT_EQ(probe_->resized, 1);
    EXPECT_EQ(formMenu->bounds.x, -790);
    EXPECT_EQ(formMenu->bounds.y, -290);
    EXPECT_EQ(gui.scale.x, 1.0F);
    EXPECT_EQ(gui.offset.x, 800);
    probe_->full_width = false;
    probe_->dirty = false;
    reshape(400, 150);
    EXPECT_TRUE(probe_->dirty);
    EXPECT_EQ(probe_->bounds.w, 1600) << "others keep their size";
    EXPECT_EQ(probe_->resized, 1);
    EXPECT_EQ(gui.scale.y, 0.25F);
}

TEST_F(InterfaceTest, SmallerWindowPullsFormsBack) {
    probe_->has_title_bar = true;
    reshape(2000, 600);
    probe_->bounds.x = 800;
    probe_->bounds.y = -300;
    reshape(800, 600);
    EXPECT_EQ(probe_->bounds.x, 200) << "its right edge at the window's";
    EXPECT_EQ(probe_->bounds.y, -300);
}

TEST_F(InterfaceTest, PressIsFollowedByAMoveWithTheButtonHeld) {
    reshape(800, 600);
    handle_event(motion(390, 290));
    handle_event(button(true, 1, 400, 300));
    handle_event(motion(410, 305));
    handle_event(button(false, 1, 900, 700));
    handle_event(motion(400, 300));
    EXPECT_EQ(probe_->events,
              (std::vector<std::string>{"move 90,40 0", "down 100,50 1", "move 100,50 1",
                                        "move 110,55 1", "up 600,450 1", "move 100,50 0"}));
}

TEST_F(InterfaceTest, SecondButtonTakesNothingFromTheFirst) {
    reshape(800, 600);
    const GuiEnvironment outside = gui_environment;
    gui_environment.mouse_buttons = [] { return 1U; };
    handle_event(button(true, 1, 400, 300));
    for (const int other : {2, 3, 4, 5}) {
        handle_event(button(true, other, 400, 300));
        handle_event(button(false, other, 400, 300));
    }
    EXPECT_EQ(probe_->events.size(), 2U);
    handle_event(motion(401, 300));
    EXPECT_EQ(probe_->events.back(), "move 101,50 1");
    handle_event(button(false, 1, 400, 300));
    EXPECT_EQ(probe_->events.back(), "up 100,50 1");
    gui_environment = outside;
}

TEST_F(InterfaceTest, LostReleaseDoesNotLockTheOtherButtons) {
    reshape(800, 600);
    handle_event(button(true, 3, 400, 300));
    handle_event(button(true, 1, 400, 300));
    EXPECT_EQ(probe_->events,
              (std::vector<std::string>{"down 100,50 3", "move 100,50 3", "up 100,50 3",
                                        "down 100,50 1", "move 100,50 1"}));
    handle_event(button(false, 3, 400, 300));  // it was in the queue behind the other press
    EXPECT_EQ(probe_->events.size(), 5U);
    handle_event(button(false, 1, 400, 300));
    EXPECT_EQ(probe_->events.back(), "up 100,50 1");
}

TEST_F(InterfaceTest, ClickNearAnEdgeBringsMenuAndTransportBar) {
    set_video_mode(800, 600);
    reshape(800, 600);
    probe_->visible = false;
    struct Case {
        int x, y;
        bool near;
    };
    for (const Case& c : {Case{99, 300, true},
                          {100, 300, false},
                          {700, 300, false},
                          {701, 300, true},
                          {400, 99, true},
                          {400, 100, false},
                          {400, 500, false},
                          {400, 501, true}}) {
        formMenu = new FormMenu;
        formTransportBar = new FormTransportBar;
        handle_event(button(true, 3, c.x, c.y));  // any button; not the left one's double click
        handle_event(button(false, 3, c.x, c.y));
        EXPECT_EQ(formMenu->visible, c.near) << c.x << "," << c.y;
        EXPECT_EQ(formTransportBar->visible, c.near) << c.x << "," << c.y;
    }
    formMenu = new FormMenu;
    probe_->visible = true;
    probe_->bounds = {-400, -300, 800, 600};
    handle_event(button(true, 3, 50, 50));
    handle_event(button(false, 3, 50, 50));
    EXPECT_FALSE(formMenu->visible) << "the form took the click";
}

TEST_F(InterfaceTest, DoubleClickOnAFormIsNotOneOnThePicture) {
    const SDL_Surface* before = screen;
    const int flags = static_cast<int>(before->flags);
    for (int click = 0; click < 2; ++click) {
        handle_event(button(true, 1, window_width / 2, window_height / 2));
        handle_event(button(false, 1, window_width / 2, window_height / 2));
    }
    EXPECT_EQ(get_fullscreen(), false);
    EXPECT_EQ(static_cast<int>(screen->flags), flags);
    EXPECT_EQ(probe_->events.size(), 6U) << "both clicks are the form's";
}

}  // namespace
