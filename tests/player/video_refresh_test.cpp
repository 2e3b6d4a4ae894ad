// SPDX-License-Identifier: MIT
// What one refresh does.
#include "player/display.h"
#include "player/refresh_fixture.h"

namespace {

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

int draws = 0;

TEST_F(VideoRefreshTest, OldPictureIsNotDrawnAgainAfterAJump) {
    queue(2);
    is_.seeks_done = 1;
    draws = 0;
    set_swap_observer([](VideoState*, std::int64_t) { ++draws; });
    refresh(&is_);
    EXPECT_EQ(is_.picture_queue_size, 0);
    EXPECT_TRUE(is_.starved);
    EXPECT_EQ(draws, 0) << "the new one is on its way";
    refresh(&is_);
    EXPECT_EQ(draws, 1) << "unless it takes long";
    set_swap_observer(nullptr);
}

}  // namespace
