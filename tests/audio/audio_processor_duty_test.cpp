// SPDX-License-Identifier: MIT
#include "audio/allocation_counter.h"
#include "audio/audio_processor_fixture.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using AudioProcessorDuty = AudioProcessorFixture;

constexpr const char* message = "audio_resample() failed\n";

TEST_F(AudioProcessorDuty, ScopeGetsTheMeansOfFoursAsDecoded) {
    open(2);
    turn_all_sound_settings_on();
    Shorts samples;
    for (short i = 0; i < 11; ++i) {
        samples.push_back(static_cast<short>(100 * i));
        samples.push_back(static_cast<short>(-1000 * i));
    }
    play(samples, 11);
    EXPECT_EQ(left_scope_->WritePosition(), 2) << "three frames do not fill a group";
    EXPECT_EQ(right_scope_->WritePosition(), 2);
    EXPECT_FLOAT_EQ(left_scope_->Read(-2), 150.0F / 32768.0F);
    EXPECT_FLOAT_EQ(left_scope_->Read(-1), 550.0F / 32768.0F);
    EXPECT_FLOAT_EQ(right_scope_->Read(-2), -1500.0F / 32768.0F);
    EXPECT_FLOAT_EQ(right_scope_->Read(-1), -5500.0F / 32768.0F);
}

TEST_F(AudioProcessorDuty, ScopeWrapsAndHoldsTheLatest) {
    open(2);
    Shorts ramp;
    for (int i = 0; i < 4 * 6000; ++i)
        ramp.insert(ramp.end(), 2, static_cast<short>(i / 4));
    play(ramp, 1020);
    EXPECT_EQ(left_scope_->WritePosition(), 6000);
    for (int back = 1; back <= 4096; ++back) {
        ASSERT_EQ(left_scope_->Read(-back), static_cast<float>(6000 - back) / 32768.0F);
        ASSERT_EQ(right_scope_->Read(-back), static_cast<float>(6000 - back) / 32768.0F);
    }
}

TEST_F(AudioProcessorDuty, LargestBlockFillsTheScope) {
    open(2);
    Shorts ramp;
    for (int i = 0; i < 16384; ++i)
        ramp.insert(ramp.end(), 2, static_cast<short>(i));
    EXPECT_EQ(play(ramp, 16384), ramp);
    EXPECT_EQ(left_scope_->WritePosition(), 4096);
    EXPECT_FLOAT_EQ(left_scope_->Read(-1), 16381.5F / 32768.0F);
    EXPECT_FLOAT_EQ(left_scope_->Read(-4096), 1.5F / 32768.0F);
}

TEST_F(AudioProcessorDuty, ThreeFramesFeedNothingButAreProcessed) {
    open(2);
    master_settings.volume.setValue(10.0F);
    EXPECT_EQ(play({1, 2, 3, 4, 5, 6}, 3), (Shorts{10, 20, 30, 40, 50, 60}));
    EXPECT_EQ(left_scope_->WritePosition(), 0);
    EXPECT_EQ(right_scope_->WritePosition(), 0);
}

TEST_F(AudioProcessorDuty, FailureOfTheFirstConversionLeavesTheBlock) {
    open(2);
    master_settings.volume.setValue(10.0F);
    const Shorts samples(2 * 16385, 100);
    for (const int frames : {0, -1, 16385}) {
        Shorts block = samples;
        testing::internal::CaptureStderr();
        process(block, frames);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), message) << frames;
        EXPECT_EQ(block, samples) << frames;
    }
    chain_.resampler_in = nullptr;
    Shorts block = samples;
    testing::internal::CaptureStderr();
    process(block, 100);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), message);
    EXPECT_EQ(block, samples);
    EXPECT_EQ(left_scope_->WritePosition(), 0);
    EXPECT_EQ(vol_pan_control.first_block, 1) << "no stage has run";
}

TEST_F(AudioProcessorDuty, FailureOfTheLastConversionIsReported) {
    open(2);
    for (AudioConverter* unusable : {static_cast<AudioConverter*>(nullptr), in_.get()}) {
        chain_.resampler_out = unusable;
        Shorts block(200, 100);
        testing::internal::CaptureStderr();
        process(block, 100);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), message);
    }
    EXPECT_EQ(left_scope_->WritePosition(), 50) << "the stages before have run";
    EXPECT_EQ(vol_pan_control.first_block, 0);
}

TEST_F(AudioProcessorDuty, MissingScopesAreSkipped) {
    open(2);
    chain_.scope[0] = nullptr;
    play(Shorts(80, 5));
    EXPECT_EQ(left_scope_->WritePosition(), 0);
    EXPECT_EQ(right_scope_->WritePosition(), 10);
}

TEST_F(AudioProcessorDuty, StateLastsFromStreamToStream) {
    open(2);
    turn_all_sound_settings_on();
    play(noise_samples(7, 2 * 1280, 8000.0), 128);
    const Eq3Band left = eq3band[0];
    const int position = audio_noisereduction.bank.write_position;
    const float gain = vol_pan_control.left_gain;
    open(1, 44100);
    EXPECT_EQ(eq3band[0].x1, left.x1);
    EXPECT_EQ(audio_noisereduction.bank.write_position, position);
    play({1}, 1);
    EXPECT_EQ(eq3band[0].x2, left.x1);
    EXPECT_EQ(vol_pan_control.left_gain, gain);
}

TEST_F(AudioProcessorDuty, TakesNothingFromTheHeap) {
    for (const int channels : {1, 2, 6}) {
        open(channels);
        turn_all_sound_settings_on();
        Shorts block(16384 * 6, 1000);
        const long allocations = heap_allocations();
        for (const int frames : {1024, 16384, 1, 1000})
            process(block, frames);
        master_settings.volume.setValue(5.0F);
        process(block, 1024);
        EXPECT_EQ(heap_allocations() - allocations, 0) << channels << " channels";
    }
}

TEST_F(AudioProcessorDuty, SilenceAfterSoundBecomesSilentWithoutDenormals) {
    open(2);
    turn_all_sound_settings_on();
    play(noise_samples(8, 2 * 48000, 8000.0));
    const Shorts out = play(Shorts(2 * 5 * 48000, 0));
    const auto loud = [](short s) { return s != 0; };
    EXPECT_TRUE(std::none_of(out.begin() + 48000, out.end(), loud));
    for (const Eq3Band& eq : eq3band) {
        for (const float y : {eq.low_shelf.y1, eq.peak.y1, eq.high_shelf.y1}) {
            EXPECT_GE(std::fabs(y), 1e-26F);
            EXPECT_LT(std::fabs(y), 1e-22F);
        }
    }
}

// The audio thread processes while the main thread moves sliders and draws the waveform.
TEST_F(AudioProcessorDuty, SettingsAndScopeMayBeUsedMeanwhile) {
    open(2);
    std::atomic<int> blocks = 0;
    std::atomic<bool> done = false;
    std::thread audio([&] {
        const Shorts samples = noise_samples(9, 2 * 512, 8000.0);
        while (!done) {
            play(samples, 512);
            ++blocks;
        }
    });
    float loudest = 0.0F;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    const auto enough = [&] { return blocks >= 50 && loudest > 0.0F; };
    for (int step = 0; !enough() && std::chrono::steady_clock::now() < deadline; ++step) {
        master_settings.volume.setValue(static_cast<float>(step % 50 - 40));
        master_settings.eq_mid.setValue(static_cast<float>(step % 11));
        master_settings.audio_dnr_level.setValue(static_cast<float>(step % 2));
        for (int x = 0; x < 600; ++x) {
            loudest = std::max(loudest, std::fabs(left_scope_->Read(x * 4096 / 600)));
        }
    }
    done = true;
    audio.join();
    EXPECT_GE(blocks, 50);
    EXPECT_GT(loudest, 0.0F);
    EXPECT_LE(loudest, 1.0F);
}

}  // namespace
