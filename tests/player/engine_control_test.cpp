// SPDX-License-Identifier: MIT
// What the forms can do to the engine.
#include "player/engine_control.h"

#include "gpu/gl_texture.h"
#include "gui/player_control.h"
#include "media/thumbnail_database.h"
#include "platform/window.h"
#include "player/infolabel.h"
#include "player/refresh_timer.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"

#include <cmath>

namespace {

class EngineControlTest : public PlayerTest {
  protected:
    void SetUp() override {
        PlayerTest::SetUp();
        connect_forms();
    }
    // The film on the main thread's side: its first picture is there.
    VideoState* play(const char* name) {
        player_control->open(clip(name));
        VideoState* is = global_video_state;
        EXPECT_TRUE(wait_until([&] { return head(is) != nullptr; }));
        return is;
    }
    static PlayerControl& forms() { return *player_control; }
};

TEST_F(EngineControlTest, WithoutAFilmNothingHappens) {
    int width = 5;
    int height = 6;
    EXPECT_FALSE(forms().is_open());
    EXPECT_FALSE(forms().is_paused());
    EXPECT_FALSE(forms().is_rewinding());
    EXPECT_FALSE(forms().is_fast_forwarding());
    EXPECT_EQ(forms().position(), 0.0);
    EXPECT_EQ(forms().duration(), 0.0);
    EXPECT_FALSE(forms().picture_size(&width, &height));
    EXPECT_EQ(width, 5);
    forms().toggle_pause();
    forms().rewind();
    forms().fast_forward();
    forms().seek(1000000);
    forms().set_inloop_filter(false);
    EXPECT_FALSE(forms().is_open());
    EXPECT_EQ(forms().largest_texture(), max_texture_size);
}

TEST_F(EngineControlTest, OpensAFileInPlaceOfTheOneBefore) {
    VideoState* first = play("h264.mp4");
    EXPECT_TRUE(forms().is_open());
    EXPECT_NEAR(forms().duration(), 8.0, 4.0);
    VideoState* second = play("mpeg4.avi");
    EXPECT_NE(second, first);
    EXPECT_FALSE(stream_is_open(first));
    EXPECT_EQ(second->filename, clip("mpeg4.avi"));
    EXPECT_FALSE(second->loop) << "the next file of the folder follows";
}

TEST_F(EngineControlTest, TellsAndTogglesWhatPlays) {
    VideoState* is = play("h264.mp4");
    forms().toggle_pause();
    EXPECT_TRUE(forms().is_paused());
    forms().toggle_pause();
    EXPECT_FALSE(forms().is_paused());
    forms().rewind();
    EXPECT_TRUE(forms().is_rewinding());
    forms().fast_forward();
    EXPECT_TRUE(forms().is_fast_forwarding());
    EXPECT_TRUE(is->fast_forward);
    forms().toggle_pause();
    EXPECT_FALSE(forms().is_fast_forwarding());
}

TEST_F(EngineControlTest, SizeIsThatOfThePictureOnScreen) {
    VideoState* is = play("h264.mp4");
    int width = 0;
    int height = 0;
    ASSERT_TRUE(forms().picture_size(&width, &height));
    EXPECT_EQ(width, is->video_info.width);
    EXPECT_EQ(height, is->video_info.height);
    is->shown_picture = 2;
    is->pictures[2].width = 33;
    is->pictures[2].height = 17;
    ASSERT_TRUE(forms().picture_size(&width, &height));
    EXPECT_EQ(width, 33);
    EXPECT_EQ(height, 17);
    is->shown_picture = -1;
}

TEST_F(EngineControlTest, InloopFilterReachesTheDecoder) {
    VideoState* is = play("h264.mp4");
    forms().set_inloop_filter(false);
    {
        const MutexLock lock(is->video_decoder_mutex);
        EXPECT_EQ(is->video_codec->skip_loop_filter, AVDISCARD_ALL);
    }
    forms().set_inloop_filter(true);
    const MutexLock lock(is->video_decoder_mutex);
    EXPECT_EQ(is->video_codec->skip_loop_filter, AVDISCARD_NONE);
}

TEST_F(EngineControlTest, SeekRefreshesThePicture) {
    VideoState* is = play("h264.mp4");
    refresh_scheduled = false;
    forms().seek(2000000);
    EXPECT_TRUE(wait_until([&] { return is->seeks_done == 1; }));
    EXPECT_EQ(is->seek_target, 2000000);
    SDL_Delay(60);  // what the refresh has asked for is not for the next test
    SDL_Event event;
    while (SDL_PollEvent(&event)) {}
    refresh_scheduled = false;
}

// However far apart key pictures are.
TEST_F(EngineControlTest, SeekEndsWhereItIsAskedTo) {
    VideoState* is = play("one_key.mp4");
    const double places[] = {2.0, 0.52, 3.2, 1.0};
    int seeks = 0;
    // Pictures from before make room, as they do on screen.
    const auto arrived = [&] {
        const VideoPicture* pic = head(is);
        if (pic && pic->seeks != seeks) release_picture(is);
        return is->seeks_seen == seeks && pic && pic->seeks == seeks;
    };
    for (const double place : places) {
        forms().seek(std::llround(place * 1e6));
        ++seeks;
        ASSERT_TRUE(wait_until(arrived)) << place;
        EXPECT_NEAR(head(is)->pts, place, 0.021) << "the picture, or the one beside it";
        EXPECT_NEAR(forms().position(), place, 0.5);
    }
    stream_seek(is, 2000000, -1);
    ++seeks;
    ASSERT_TRUE(wait_until(arrived));
    EXPECT_EQ(is->discard_before, nothing_to_discard) << "others end at key pictures";
    SDL_Delay(60);
    SDL_Event event;
    while (SDL_PollEvent(&event)) {}
    refresh_scheduled = false;
}

// A recording's time stamps begin anywhere; positions begin at 0.
TEST_F(EngineControlTest, PositionsCountFromTheStartOfTheFile) {
    VideoState* is = play("late_start.ts");
    const double start = static_cast<double>(is->start_time) / 1e6;
    EXPECT_NEAR(start, 1001.4, 0.2);
    EXPECT_GT(forms().duration(), 3.0);
    EXPECT_LT(forms().position(), forms().duration());
    forms().seek(2000000);
    EXPECT_TRUE(wait_until([&] { return is->seeks_done == 1; }));
    EXPECT_EQ(is->seek_target, is->start_time + 2000000);
    EXPECT_TRUE(wait_until([&] { return forms().position() > 1.4; }));
    EXPECT_LT(forms().position(), forms().duration() + 0.5);
    SDL_Delay(60);
    SDL_Event event;
    while (SDL_PollEvent(&event)) {}
    refresh_scheduled = false;
}

TEST_F(EngineControlTest, ShowsLabelsAndSetsTheWindowUp) {
    forms().show_label("||");
    EXPECT_EQ(infolabel_text, "||");
    infolabel_text.clear();
    forms().set_vsync(false);
    EXPECT_EQ(get_vsync(), 0);
    forms().set_vsync(true);
    EXPECT_EQ(get_vsync(), 1);
    EXPECT_FALSE(forms().is_fullscreen());
    SDL_ShowCursor(SDL_DISABLE);
    forms().set_fullscreen(false);
    EXPECT_EQ(SDL_ShowCursor(SDL_QUERY), SDL_ENABLE) << "a window has its pointer";
    set_video_mode(window_width, window_height);
}

TEST_F(EngineControlTest, GivesThumbnailsOnceTheyAreMade) {
    ThumbnailDatabase::Start();
    gl_texture_resource* texture = nullptr;
    EXPECT_TRUE(wait_until([&] { return (texture = forms().thumbnail(clip("h264.mp4"))); }));
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->width(), 192);
    ThumbnailDatabase::Abort();
    ThumbnailDatabase::Join();
    ThumbnailDatabase::Clear();
}

}  // namespace
