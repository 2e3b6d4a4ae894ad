// SPDX-License-Identifier: MIT
// When nothing is drawn because nothing would change.
#include "player/still_picture.h"

#include "gui/form_widget.h"
#include "gui/widget_container.h"
#include "player/event_loop.h"
#include "player/infolabel.h"
#include "player/refresh_fixture.h"
#include "player/stream.h"

namespace {

constexpr std::int64_t second = 1000000;

class StillPictureTest : public VideoRefreshTest {
  protected:
    void SetUp() override {
        VideoRefreshTest::SetUp();
        hold_refreshes(true);  // each is called by the test itself
        queue(3);
        video_refresh_timer(&is_);
        stream_pause(&is_);
        settle();
    }
    void TearDown() override {
        gui.children.clear();
        infolabel_text.clear();
        master_settings.status.setValue(0);
        // Timers fire one after the other: with the last one, none is at work any more.
        hasten_refresh();
        hold_refreshes(false);
        schedule_refresh_later(nullptr, 30);
        await_refresh();
        // Waits until the timer has let go of SDL's queue, which the end of the process destroys.
        hold_refreshes(true);
        hold_refreshes(false);
        VideoRefreshTest::TearDown();
    }

    // Whether the next refresh draws.
    bool draws() {
        const int shown = lastframe_timestamp_qi;
        now_us += second / 40;
        video_refresh_timer(&is_);
        return lastframe_timestamp_qi != shown;
    }
    // Until nothing moves any more.
    void settle() {
        for (int i = 0; i < 6 * 40; ++i) {
            now_us += second / 40;
            video_refresh_timer(&is_);
        }
    }
    // Something that makes the window look different until it has settled again.
    void expect_drawn_for_a_while(const char* what) {
        EXPECT_TRUE(draws()) << what;
        now_us += 3 * second;
        EXPECT_TRUE(draws()) << what << ", things move";
        now_us += 3 * second;
        draws();
        EXPECT_FALSE(draws()) << what << ", settled";
    }
};

TEST_F(StillPictureTest, NothingIsDrawnOnceAPauseHasSettled) {
    EXPECT_TRUE(is_still(&is_));
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(draws());
}

TEST_F(StillPictureTest, PlayingDraws) {
    stream_pause(&is_);
    EXPECT_FALSE(is_still(&is_));
    now_us += 6 * second;
    EXPECT_FALSE(is_still(&is_));
}

TEST_F(StillPictureTest, ScanningDraws) {
    is_.rewind = true;
    EXPECT_FALSE(is_still(&is_));
    is_.rewind = false;
    is_.fast_forward = true;
    EXPECT_FALSE(is_still(&is_));
}

TEST_F(StillPictureTest, AStepThatIsOwedIsDrawn) {
    is_.pause_refresh = true;
    EXPECT_TRUE(draws());
    EXPECT_FALSE(draws());
}

TEST_F(StillPictureTest, WithoutAFilmTheAnimationGoesOn) {
    EXPECT_FALSE(is_still(nullptr));
}

TEST_F(StillPictureTest, EventsOfTheWindowSystemAreFollowedByRedraws) {
    for (const Uint8 type : {SDL_KEYDOWN, SDL_KEYUP, SDL_MOUSEBUTTONDOWN, SDL_MOUSEBUTTONUP,
                             SDL_ACTIVEEVENT, SDL_VIDEOEXPOSE}) {
        SDL_Event event{};
        event.type = type;
        handle_event(event);
        expect_drawn_for_a_while(std::to_string(type).c_str());
    }
}

TEST_F(StillPictureTest, ThePlayersOwnEventsAndTheMovingPointerAreNot) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    handle_event(event);
    EXPECT_FALSE(draws());
    event.type = event_alloc_picture;
    handle_event(event);
    EXPECT_FALSE(draws());
}

TEST_F(StillPictureTest, LabelsAreDrawnUntilTheyAreGone) {
    set_infolabel("Saved");
    EXPECT_TRUE(draws());
    EXPECT_FALSE(draws()) << "it stays as it is at first";
    now_us += 2 * second;
    EXPECT_TRUE(draws()) << "it fades";
    EXPECT_TRUE(draws());
    now_us += second;
    EXPECT_TRUE(draws()) << "without it";
    EXPECT_FALSE(draws());
}

TEST_F(StillPictureTest, TheStatusLineIsDrawnWhenItChanges) {
    master_settings.status.setValue(1);
    EXPECT_TRUE(draws());
    for (int i = 0; i < 200; ++i)
        draws();  // until the rate it tells has settled
    EXPECT_FALSE(draws());
    is_.video_current_pts += 0.5;
    is_.sync_source = sync_external;
    EXPECT_TRUE(draws()) << "another difference to the clock";
}

TEST_F(StillPictureTest, AFormIsDrawnWhileItIsVisibleAndOnceWithoutIt) {
    const object_ref<FormWidget> form(new FormWidget);
    gui.add(form);
    form->visible = true;
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(draws());
    form->visible = false;
    expect_drawn_for_a_while("a form that closed");
}

}  // namespace
