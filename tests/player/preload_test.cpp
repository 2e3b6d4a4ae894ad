// SPDX-License-Identifier: MIT
#include "support/player_fixture.h"

#include <atomic>

// The linker sends the player's reads here.
extern "C" {
int __real_av_read_frame(AVFormatContext* context, AVPacket* packet);
int __wrap_av_read_frame(AVFormatContext* context, AVPacket* packet);
}

namespace {
std::atomic<int> packets_read{0};
std::atomic<int> ends_reached{0};
}  // namespace

int __wrap_av_read_frame(AVFormatContext* context, AVPacket* packet) {
    const int result = __real_av_read_frame(context, packet);
    packets_read += result >= 0;
    ends_reached += result == AVERROR_EOF;
    return result;
}

namespace {

class PreloadTest : public PlayerTest {
  protected:
    void SetUp() override {
        PlayerTest::SetUp();
        packets_read = 0;
        ends_reached = 0;
    }
};

TEST_F(PreloadTest, ReadsTwiceAndWaitsAtTheStart) {
    VideoState* is = open("h264_nob.mp4", {.preload = true});
    EXPECT_TRUE(is->paused);
    EXPECT_TRUE(wait_until([&] { return !is->preload; }));
    EXPECT_TRUE(is->paused);
    EXPECT_EQ(ends_reached, 2);
    EXPECT_GE(packets_read, 200) << "all of 100 pictures, twice";
    stream_pause(is);
    EXPECT_EQ(take(is).size(), 100U) << "from the beginning";
}

TEST_F(PreloadTest, WithoutItNothingIsReadAhead) {
    VideoState* is = open("h264_nob.mp4");
    EXPECT_FALSE(is->paused);
    ASSERT_TRUE(wait_until([&] { return is->video_queue.packet_count > 8; }));
    EXPECT_EQ(ends_reached, 0);
    EXPECT_LT(packets_read, 100);
}

}  // namespace
