// SPDX-License-Identifier: MIT
// Pictures that go unseen, and storage that cannot be had.

#include "core/settings.h"
#include "player/display.h"
#include "player/picture_queue.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"

namespace {

// A queue without a film: pictures are told apart by their numbers.
class ReleaseTest : public ::testing::Test {
  protected:
    void SetUp() override {
        is_.picture_queue_mutex = make_mutex();
        is_.picture_queue_cond = make_cond();
        for (int i = 0; i < picture_slots; ++i)
            slot(i).number = i;
    }

    VideoPicture& slot(int index) { return is_.pictures[static_cast<std::size_t>(index)]; }

    void queued(int read_index, int size, int shown) {
        is_.picture_queue_rindex = read_index;
        is_.picture_queue_size = size;
        is_.shown_picture = shown;
    }

    VideoState is_;
};

TEST_F(ReleaseTest, PictureOnScreenStaysBeforeTheReadIndex) {
    queued(1, 3, 0);
    release_picture(&is_);
    EXPECT_EQ(is_.picture_queue_rindex, 2);
    EXPECT_EQ(is_.picture_queue_size, 2);
    EXPECT_EQ(is_.shown_picture, 1);
    EXPECT_EQ(slot(1).number, 0);
    EXPECT_EQ(slot(0).number, 1) << "the one nobody saw gives its place";
    release_picture(&is_);
    EXPECT_EQ(is_.shown_picture, 2);
    EXPECT_EQ(slot(2).number, 0);
    EXPECT_EQ(slot(1).number, 2);
    EXPECT_EQ(slot(3).number, 3) << "the one that waits is not touched";
    release_picture(&is_);
    EXPECT_EQ(is_.shown_picture, 3);
    EXPECT_EQ(slot(3).number, 0);
    EXPECT_EQ(is_.picture_queue_rindex, 0);
    EXPECT_EQ(is_.picture_queue_size, 0);
}

TEST_F(ReleaseTest, GoesRoundTheQueue) {
    queued(0, 1, 3);
    release_picture(&is_);
    EXPECT_EQ(is_.shown_picture, 0);
    EXPECT_EQ(slot(0).number, 3);
    EXPECT_EQ(slot(3).number, 0);
}

TEST_F(ReleaseTest, SeenPictureStaysWhereItIs) {
    queued(2, 2, 2);
    slot(2).seen = true;
    release_picture(&is_);
    EXPECT_EQ(is_.shown_picture, 2);
    for (int i = 0; i < picture_slots; ++i)
        EXPECT_EQ(slot(i).number, i);
}

TEST_F(ReleaseTest, WithNothingOnScreenNothingMoves) {
    queued(0, 2, -1);
    release_picture(&is_);
    EXPECT_EQ(is_.shown_picture, -1);
    for (int i = 0; i < picture_slots; ++i)
        EXPECT_EQ(slot(i).number, i);
}

class UnseenPictures : public PlayerTest {
  protected:
    void SetUp() override {
        PlayerTest::SetUp();
        master_settings.temporal_upscaling_factor.setValue(0);
    }
    void TearDown() override {
        Value& factor = master_settings.temporal_upscaling_factor;
        factor.setValue(factor.default_value());
        PlayerTest::TearDown();
    }

    bool await_full_queue(VideoState* is) {
        return wait_until([is] {
            const MutexLock lock(is->picture_queue_mutex);
            return is->picture_queue_size == 3;
        });
    }
};

TEST_F(UnseenPictures, TheOneOnScreenCanBeDrawnAgain) {
    VideoState* is = open("h264.mp4");
    ASSERT_TRUE(await_full_queue(is));
    release_picture(is);
    video_display(is);
    const double shown = head(is)->pts;
    release_picture(is);
    const Image before = window();
    // The video thread fills every slot but one, several times over.
    for (int i = 0; i < 7; ++i) {
        ASSERT_TRUE(await_full_queue(is));
        release_picture(is);
    }
    ASSERT_TRUE(await_full_queue(is));
    EXPECT_GT(head(is)->pts, shown + 0.2);
    const auto kept = static_cast<std::size_t>(is->shown_picture);
    EXPECT_EQ(is->pictures[kept].pts, shown);
    stream_pause(is);
    is->pause_refresh = false;
    video_display(is);
    EXPECT_EQ(largest_difference(window(), before), 0.0F);
}

TEST_F(ReleaseTest, StorageThatCannotBeHadIsAskedForAgain) {
    is_.pbo_supported = false;
    is_.slot_requested = true;
    is_.slot_width = is_.slot_height = 1 << 20;  // more than a surface can be
    alloc_picture(&is_);
    EXPECT_EQ(slot(0).surface, nullptr);
    EXPECT_EQ(slot(0).allocated, 0);
    EXPECT_TRUE(is_.slot_requested);
    is_.slot_width = is_.slot_height = 16;
    alloc_picture(&is_);
    EXPECT_NE(slot(0).surface, nullptr);
    EXPECT_EQ(slot(0).allocated, 1);
    EXPECT_FALSE(is_.slot_requested);
}

}  // namespace
