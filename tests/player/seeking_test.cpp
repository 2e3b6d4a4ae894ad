// SPDX-License-Identifier: MIT
#include "player/seeking.h"

#include "player/clocks.h"
#include "player/demux.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

namespace {

class SeekingTest : public PlayerTest {
  protected:
    // Drops pictures until one of after the last seek is at the head; its time, or -1.
    double first_picture_after_seek(VideoState* is) {
        double pts = -1.0;
        wait_until([&] {
            if (is->seek_request) return false;
            VideoPicture* picture = head(is);
            if (!picture) return false;
            const bool wanted = picture->seeks == is->seeks_done;
            if (wanted) pts = picture->pts;
            release_picture(is);
            return wanted;
        });
        return pts;
    }
};

TEST_F(SeekingTest, LandsOnKeyPictures) {
    VideoState* is = open("h264.mp4");  // a key picture per second
    take(is, 10);
    stream_seek(is, 2000000, 0);
    const double forward = first_picture_after_seek(is);
    EXPECT_GE(forward, 1.9);
    EXPECT_LE(forward, 2.3);
    stream_seek(is, 1200000, -1);
    const double backward = first_picture_after_seek(is);
    EXPECT_GE(backward, 0.9);
    EXPECT_LE(backward, 1.3) << "the key picture at or before the target";
}

TEST_F(SeekingTest, LateTargetsAreTriedBackwards) {
    VideoState* is = open("h264.mp4");
    take(is, 3);
    ::testing::internal::CaptureStderr();
    stream_seek(is, 3900000, 0);  // after the last key picture
    const double pts = first_picture_after_seek(is);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_GE(pts, 2.9);
}

TEST_F(SeekingTest, TargetBeforeTheStartIsTheStart) {
    for (const char* name : {"h264.mp4", "mpeg2.mpg", "mpeg4.avi", "h264.mkv"}) {
        VideoState* is = open(name);
        take(is, 60);
        ::testing::internal::CaptureStderr();
        stream_seek(is, -5000000, -1);
        const double pts = first_picture_after_seek(is);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << name;
        EXPECT_LT(pts - static_cast<double>(is->format_context->start_time) / 1e6, 0.4) << name;
        stream_close(is);
    }
}

// Without an index: a key picture per second, or two per second, and none is to be missed.
TEST_F(SeekingTest, BroadcastsBeginAgainWithTheirFirstPicture) {
    for (const char* name : {"late_start.ts", "mpeg2.mpg", "mpeg1.mpg"}) {
        VideoState* is = open(name);
        const double first = take(is, 60).front().pts;
        stream_seek(is, 0, 0);  // as at the end of a film that is played again
        EXPECT_NEAR(first_picture_after_seek(is), first, 0.001) << name;
        stream_close(is);
    }
}

TEST_F(SeekingTest, BroadcastsAreSoughtExactly) {
    for (const char* name : {"late_start.ts", "mpeg2.mpg", "mpeg1.mpg"}) {
        VideoState* is = open(name);
        const double first = take(is, 60).front().pts;
        for (const double place : {2.0, 0.6, 3.3}) {
            is->seek_exactly = true;
            stream_seek(is, is->start_time + static_cast<std::int64_t>(place * 1e6), 0);
            EXPECT_NEAR(first_picture_after_seek(is), first + place, 0.1) << name << " " << place;
        }
        stream_close(is);
    }
}

TEST_F(SeekingTest, NoPositionLiesBeforeTheStart) {
    for (const char* name : {"h264.mp4", "mpeg2.mpg"}) {
        VideoState* is = open(name);
        take(is, 60);
        // With every slot full and the clock stopped, no packet changes the position.
        ASSERT_TRUE(wait_until([&] {
            const MutexLock lock(is->picture_queue_mutex);
            return is->picture_queue_size == 3;
        }));
        stream_pause(is);
        stream_seek(is, -5000000, -1);
        ASSERT_TRUE(wait_until([&] { return !is->seek_request; })) << name;
        const std::int64_t start = std::max<std::int64_t>(is->format_context->start_time, 0);
        EXPECT_EQ(is->seek_target, start) << name;
        EXPECT_EQ(global_video_pkt_pts,
                  av_rescale_q(start, av_get_time_base_q(),
                               is->format_context->streams[is->video_stream_index]->time_base))
            << name;
        stream_close(is);
    }
}

TEST_F(SeekingTest, RequestWakesTheReader) {
    VideoState state;
    state.demux_mutex = make_mutex();
    state.demux_cond = make_cond();
    std::atomic<bool> waits = false;
    std::thread reader([&] {
        constexpr Uint32 patience_ms = 20000;
        MutexLock lock(state.demux_mutex);
        waits = true;
        if (!state.seek_request) lock.wait_for(state.demux_cond, patience_ms);
    });
    while (!waits)
        std::this_thread::yield();
    const auto asked = std::chrono::steady_clock::now();
    stream_seek(&state, 1000000, 0);
    reader.join();
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(10));
}

TEST_F(SeekingTest, SecondRequestIsDropped) {
    VideoState state;
    stream_seek(&state, 1000000, 0);
    stream_seek(&state, 3000000, -1);
    EXPECT_TRUE(state.seek_request);
    EXPECT_EQ(state.seek_position, 1000000);
    EXPECT_EQ(state.seek_flags, 0);
    VideoState other;
    stream_seek(&other, 5, -1);
    EXPECT_EQ(other.seek_flags, AVSEEK_FLAG_BACKWARD);
}

TEST_F(SeekingTest, PositionFollows) {
    VideoState* is = open("h264.mp4");
    take(is, 5);
    EXPECT_NEAR(is->duration, 4.0, 0.1);
    stream_seek(is, 2000000, 0);
    EXPECT_TRUE(wait_until([&] { return is->position >= 1.9; }));
    first_picture_after_seek(is);
    EXPECT_EQ(is->seek_target, 2000000);
}

TEST_F(SeekingTest, FlushResetsThePredictedClock) {
    VideoState* is = open("raw.m4v");  // no time stamps at all
    take(is, 10);
    const double before = is->video_clock;
    EXPECT_GT(before, 0.3);
    stream_seek(is, 0, -1);
    EXPECT_LT(first_picture_after_seek(is), 0.2);
    EXPECT_LT(is->video_clock, before);
}

TEST_F(SeekingTest, FastForwardStepsWithThePictures) {
    VideoState* is = open("mpeg4_nob.avi");
    take(is, 2);
    ::testing::internal::CaptureStderr();
    stream_ffw(is);
    double highest = 0.0;
    const int first = is->seeks_done;
    EXPECT_TRUE(wait_until([&] {
        if (VideoPicture* picture = head(is)) {
            highest = std::max(highest, picture->pts);
            release_picture(is);
        }
        // A step waits for a picture of the step before.
        EXPECT_LE(is->seeks_done, is->seeks_seen + 1);
        return is->seeks_done >= first + 2 && highest > 2.0;
    }));
    stream_pause(is);
    EXPECT_FALSE(is->fast_forward);
    EXPECT_FALSE(is->paused);
    ::testing::internal::GetCapturedStderr();
}

TEST_F(SeekingTest, RewindGoesBackToTheStart) {
    VideoState* is = open("h264.mp4");
    take(is, 90);
    ::testing::internal::CaptureStderr();
    stream_rewind(is);
    double lowest = 100.0;
    EXPECT_TRUE(wait_until([&] {
        if (VideoPicture* picture = head(is)) {
            lowest = std::min(lowest, picture->pts);
            release_picture(is);
        }
        return lowest < 0.2;
    }));
    stream_pause(is);
    ::testing::internal::GetCapturedStderr();
}

TEST_F(SeekingTest, ScanBeyondTheEndIsReportedAndPlaybackGoesOn) {
    VideoState* is = open("h264.mp4");
    take(is, 5);
    stream_seek(is, 3000000, 0);
    first_picture_after_seek(is);
    ::testing::internal::CaptureStderr();
    stream_ffw(is);  // there is no key picture after this one
    const Uint32 until = SDL_GetTicks() + 2500;
    while (SDL_GetTicks() < until) {
        pump();
        if (head(is)) release_picture(is);
        SDL_Delay(1);
    }
    const std::string text = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(text.find(clip("h264.mp4") + ": error while seeking\n"), 0U) << text;
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 4) << "one a second, not one per pass";
    stream_pause(is);
    stream_seek(is, 0, -1);
    EXPECT_LT(first_picture_after_seek(is), 0.4);
}

TEST_F(SeekingTest, TwoHundredRandomSeeksThenClose) {
    std::mt19937 random(42);
    for (const char* name : {"h264.mp4", "mpeg2.mpg", "mpeg4.avi", "vp9.webm"}) {
        VideoState* is = open(name);
        ASSERT_TRUE(wait_until([&] { return head(is) != nullptr; }));
        ::testing::internal::CaptureStderr();
        for (int i = 0; i < 200; ++i) {
            const auto target = static_cast<std::int64_t>(random() % 5000000);
            stream_seek(is, target, random() % 2 ? 1 : -1);
            const Uint32 until = SDL_GetTicks() + static_cast<Uint32>(random() % 12);
            do {
                pump();
                if (head(is) && random() % 2) release_picture(is);
            } while (SDL_GetTicks() < until);
        }
        ::testing::internal::GetCapturedStderr();
        const Uint32 closing = SDL_GetTicks();
        stream_close(is);
        EXPECT_LT(SDL_GetTicks() - closing, 1000U) << name;
    }
}

TEST(ReadingAhead, LimitsOfTheQueues) {
    VideoState state;
    EXPECT_TRUE(reading_is_ahead(&state)) << "without streams there is nothing to read for";
    state.video_stream_index = 0;
    state.video_queue.packet_count = 8;
    EXPECT_FALSE(reading_is_ahead(&state));
    state.video_queue.packet_count = 9;
    EXPECT_TRUE(reading_is_ahead(&state));

    state.audio_stream_index = 1;
    state.audio_queue.byte_size = 327680;
    EXPECT_FALSE(reading_is_ahead(&state)) << "sound is short";
    state.audio_queue.byte_size = 327681;
    EXPECT_TRUE(reading_is_ahead(&state));
    state.video_queue.packet_count = 8;
    EXPECT_FALSE(reading_is_ahead(&state)) << "pictures are short";

    state.audio_queue.byte_size = 0;
    state.video_queue.byte_size = 32505856;
    EXPECT_FALSE(reading_is_ahead(&state));
    state.video_queue.byte_size = 32505857;
    EXPECT_TRUE(reading_is_ahead(&state)) << "31 MiB in all";

    VideoState sound;
    sound.audio_stream_index = 0;
    sound.audio_queue.byte_size = 327680;
    EXPECT_FALSE(reading_is_ahead(&sound));
    sound.audio_queue.byte_size = 327681;
    EXPECT_TRUE(reading_is_ahead(&sound)) << "the sound alone decides";
}

}  // namespace
