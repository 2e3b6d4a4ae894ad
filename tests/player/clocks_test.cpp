// SPDX-License-Identifier: MIT
#include "player/clocks.h"

#include <gtest/gtest.h>

namespace {

std::int64_t now_us = 0;
std::int64_t test_clock() {
    return now_us;
}

class Clocks : public ::testing::Test {
  protected:
    void SetUp() override {
        now_us = 1000000000;
        set_wall_clock(test_clock);
        state_.video_current_pts = 5.0;
        state_.video_current_pts_time = now_us;
        state_.audio_clock = 7.0;
        state_.audio_clock_time = now_us;
        state_.external_clock = 9.0;
        state_.external_clock_time = now_us;
        now_us += 250000;
    }
    void TearDown() override { set_wall_clock(nullptr); }

    VideoState state_;
};

TEST_F(Clocks, RunWithTheWall) {
    EXPECT_DOUBLE_EQ(get_video_clock(&state_), 5.25);
    EXPECT_DOUBLE_EQ(get_audio_clock(&state_), 7.25);
    EXPECT_DOUBLE_EQ(get_external_clock(&state_), 9.25);
}

TEST_F(Clocks, StandStillDuringAPauseButForTheExternalOne) {
    state_.paused = true;
    EXPECT_DOUBLE_EQ(get_video_clock(&state_), 5.0);
    EXPECT_DOUBLE_EQ(get_audio_clock(&state_), 7.0);
    EXPECT_DOUBLE_EQ(get_external_clock(&state_), 9.25);
}

TEST_F(Clocks, MasterIsWhatTheSourceNamesOrTheNearest) {
    struct Case {
        int source, video, audio;
        double expected;
    };
    for (const Case& c : {Case{sync_video, 0, 1, 5.25},
                          {sync_video, -1, 1, 7.25},
                          {sync_video, 0, -1, 5.25},
                          {sync_audio, 0, 1, 7.25},
                          {sync_audio, 0, -1, 5.25},
                          {sync_external, 0, 1, 9.25},
                          {7, 0, 1, 9.25}}) {
        state_.sync_source = c.source;
        state_.video_stream_index = c.video;
        state_.audio_stream_index = c.audio;
        EXPECT_DOUBLE_EQ(get_master_clock(&state_), c.expected)
            << c.source << " " << c.video << " " << c.audio;
    }
}

TEST_F(Clocks, PicturesWithoutATimeArePredicted) {
    state_.video_clock = 3.0;
    EXPECT_DOUBLE_EQ(synchronize_video(&state_, 0, 0.04, 0.0), 3.0);
    EXPECT_DOUBLE_EQ(state_.video_clock, 3.04);
    EXPECT_DOUBLE_EQ(synchronize_video(&state_, 1, 0.04, 10.0), 10.0);
    EXPECT_DOUBLE_EQ(state_.video_clock, 10.06) << "a repeated field adds half a picture";
    EXPECT_DOUBLE_EQ(synchronize_video(&state_, 2, 0.04, -1.0), -1.0);
    EXPECT_DOUBLE_EQ(state_.video_clock, -0.92);
}

TEST(Timestamps, UnsetOnesCountAsZero) {
    EXPECT_EQ(timestamp_seconds(AV_NOPTS_VALUE, {1, 25}), 0.0);
    EXPECT_EQ(timestamp_microseconds(AV_NOPTS_VALUE, {1, 25}), 0);
    EXPECT_EQ(timestamp_seconds(50, {1, 0}), 0.0);
    EXPECT_EQ(timestamp_seconds(50, {1, 25}), 2.0);
    EXPECT_EQ(timestamp_microseconds(-50, {1, 25}), -2000000);
}

TEST(PlaybackSpeeds, TableIsExact) {
    const double expected[] = {0.5, 0.6, 0.7, 0.8, 1.0, 1.1, 1.2, 1.3, 1.4, 1.5};
    ASSERT_EQ(playback_speeds.size(), 10U);
    for (std::size_t i = 0; i < 10; ++i)
        EXPECT_EQ(playback_speeds[i], expected[i]);
    EXPECT_EQ(VideoState().playback_speed_index, normal_speed_index);
    EXPECT_EQ(playback_speeds[normal_speed_index], 1.0);
}

}  // namespace
