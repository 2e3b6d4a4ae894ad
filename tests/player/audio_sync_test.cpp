// SPDX-License-Identifier: MIT
#include "player/audio_sync.h"

#include "core/settings.h"
#include "player/clocks.h"
#include "support/sound_rig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr int settled = 20;  // differences until corrections begin

// What is to be done to a block, written out in one piece.
struct Twin {
    int rate;
    double speed;
    double average = 0.0;
    int count = 0;

    int work(int bytes, double diff, int& repeat) {
        constexpr int frame = 4;
        if (diff >= 10.0) {
            average = 0.0;
            count = 0;
            return bytes;
        }
        average = 0.0005 * average + diff;
        if (count < settled) {
            ++count;
            return bytes;
        }
        if (std::fabs(average * (1 - 0.0005)) < 2048.0 / rate) return bytes;
        const double f = 1 / speed;
        const double low = f < 1 ? f : 1;
        const double high = f > 1 ? f : 1;
        if (diff < -10.0) diff = -10.0;
        int wanted = static_cast<int>(rate * diff) * frame + bytes;
        const int least = static_cast<int>(bytes * 0.75 * low) / frame * frame;
        const int most = static_cast<int>(bytes * 1.25 * high) / frame * frame;
        if (wanted < least) wanted = least;
        if (wanted > most) wanted = most;
        if (wanted < bytes) return wanted;
        if (wanted > bytes) repeat = (bytes / 2 + wanted - 1) / bytes;
        return bytes;
    }
};

// A film whose sound is ahead by as much as the test says.
class Synchronize : public ::testing::Test {
  protected:
    explicit Synchronize(int rate = 44100) : rig_({AV_CODEC_ID_PCM_S16LE, 2, rate}) {
        rig_.add_film(100.0);
    }

    void set_difference(double seconds) {
        rig_.state.audio_clock = 100.0 + seconds;
        rig_.state.audio_clock_time = SoundRig::now;
    }

    int synchronize(int bytes, double difference) {
        set_difference(difference);
        repeat_ = 0;
        return synchronize_audio(&rig_.state, bytes, repeat_);
    }

    void settle(double difference = 0.0) {
        for (int i = 0; i < settled; ++i)
            EXPECT_EQ(synchronize(4096, difference), 4096);
    }

    void set_speed(double speed) {
        for (std::size_t i = 0; i < playback_speeds.size(); ++i)
            if (playback_speeds[i] == speed) rig_.state.playback_speed_index = static_cast<int>(i);
    }

    SoundRig rig_;
    int repeat_ = 0;
};

TEST_F(Synchronize, SoundBehindIsCut) {
    settle();
    // 50 ms are 2,205 frames, more than a block may lose.
    EXPECT_EQ(synchronize(4096, -0.050), 3072);
    EXPECT_EQ(repeat_, 0);
    const AudioCorrection correction = correct_block(&rig_.state, 4096);
    EXPECT_EQ(correction.size, 3072);
    EXPECT_EQ(correction.fade_out, 1536);
}

TEST_F(Synchronize, DifferencesBelowTheThresholdStay) {
    settle();
    EXPECT_EQ(synchronize(4096, -0.040), 4096);
    EXPECT_EQ(synchronize(4096, 0.046), 4096);
    EXPECT_EQ(repeat_, 0);
    EXPECT_EQ(synchronize(4096, 0.047), 4096);
    EXPECT_EQ(repeat_, 1);
}

TEST_F(Synchronize, NothingIsCorrectedBeforeTwentyDifferences) {
    settle(-0.2);
    EXPECT_EQ(synchronize(4096, -0.2), 3072);
}

TEST_F(Synchronize, HalfSpeedRepeatsUpToTwoAndAHalfTimes) {
    settle();
    set_speed(0.5);
    EXPECT_EQ(synchronize(4096, 5.0), 4096);
    EXPECT_EQ(repeat_, 2);
    // Three times with fades between: 2.5 times the block in all.
    EXPECT_EQ(correct_block(&rig_.state, 4096).fade_out, 1024);
    // 70 ms are 3,087 frames, more than that.
    set_difference(0.070);
    EXPECT_EQ(correct_block(&rig_.state, 4096).fade_out, 1024);
}

TEST_F(Synchronize, HalfSpeedKeepsUpWithFadesOfHalfABlock) {
    settle();
    set_speed(0.5);
    // 47 ms are 2,072 frames: twice a block of this size and a little less.
    EXPECT_EQ(synchronize(8400, 0.047), 8400);
    EXPECT_EQ(repeat_, 2);
    EXPECT_EQ(correct_block(&rig_.state, 8400).fade_out, 4200);
}

TEST_F(Synchronize, HigherSpeedsCutMore) {
    settle();
    set_speed(1.5);
    EXPECT_EQ(synchronize(4096, -5.0), 2048);
}

TEST_F(Synchronize, TenSecondsAheadMeansTheClocksHaveNothingInCommon) {
    settle();
    EXPECT_EQ(synchronize(4096, 10.0), 4096);
    EXPECT_EQ(repeat_, 0);
    EXPECT_EQ(rig_.out().sync_count, 0);
    EXPECT_EQ(rig_.out().sync_average, 0.0);
    settle();
    EXPECT_EQ(synchronize(4096, -10.0), 3072);
    EXPECT_EQ(synchronize(4096, -1e300), 3072);
    EXPECT_EQ(synchronize(4096, std::nan("")), 4096);
}

TEST_F(Synchronize, TheLatencySettingMovesTheSound) {
    settle();
    master_settings.audio_latency.setValue(0.5F);
    EXPECT_EQ(synchronize(4096, 0.5), 4096);
    EXPECT_EQ(repeat_, 0);
    EXPECT_EQ(synchronize(4096, 0.0), 3072);
    master_settings.audio_latency.setValue(0.0F);
}

TEST_F(Synchronize, SoundThatIsTheMasterIsLeftAlone) {
    settle();
    rig_.state.sync_source = sync_audio;
    EXPECT_EQ(synchronize(4096, -5.0), 4096);
}

TEST_F(Synchronize, SoundAloneIsLeftAlone) {
    settle();
    rig_.state.video_stream_index = -1;
    EXPECT_EQ(synchronize(4096, -5.0), 4096);
}

TEST_F(Synchronize, ThePictureClockCountsFromTheFirstPictureAfterASeek) {
    settle();
    ++rig_.state.seeks_done;
    EXPECT_EQ(synchronize(4096, -5.0), 4096);
    rig_.state.video_clock_seeks = 1;
    EXPECT_EQ(synchronize(4096, -5.0), 3072);
}

class SynchronizeRandom : public Synchronize, public ::testing::WithParamInterface<double> {
  protected:
    SynchronizeRandom() : Synchronize(48000) {}
};

TEST_P(SynchronizeRandom, EqualsTheTwin) {
    set_speed(GetParam());
    Twin twin{48000, GetParam()};
    std::mt19937 random(3);
    std::normal_distribution<double> difference(0.0, 0.08);
    int corrected = 0;
    for (int i = 0; i < 5000; ++i) {
        const int bytes = 4 * static_cast<int>(1 + random() % 4096);
        double diff = difference(random);
        if (random() % 100 == 0) diff *= 200.0;
        // What the clocks make of it, to the last bit.
        set_difference(diff);
        diff = audio_difference(&rig_.state);
        int expected_repeat = 0;
        const int expected = twin.work(bytes, diff, expected_repeat);
        int repeat = 0;
        ASSERT_EQ(synchronize_audio(&rig_.state, bytes, repeat), expected) << i;
        ASSERT_EQ(repeat, expected_repeat) << i;
        if (expected != bytes || repeat) ++corrected;
    }
    EXPECT_GT(corrected, 1000);
}

INSTANTIATE_TEST_SUITE_P(Speeds, SynchronizeRandom, ::testing::Values(0.5, 0.8, 1.0, 1.1, 1.5));

}  // namespace
