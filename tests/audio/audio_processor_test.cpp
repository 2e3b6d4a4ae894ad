// SPDX-License-Identifier: MIT
#include "audio/audio_processor_fixture.h"

#include <climits>
#include <iterator>

namespace {

using AudioProcessor = AudioProcessorFixture;

// On its own this test sees the objects as they were made before main.
TEST(AudioGlobals, AreReady) {
    EXPECT_EQ(audio_noisereduction.bank.coefficients, meyer_wavelet_filters);
    EXPECT_EQ(audio_noisereduction.level, 0.0F);
    EXPECT_GT(vol_pan_control.smoothing, 0.0F);
    EXPECT_EQ(vol_pan_control.first_block, 1);
    EXPECT_EQ(std::size(eq3band), 2U);
    for (const Eq3Band& eq : eq3band)
        EXPECT_EQ(eq.high_frequency, 8000.0F);
}

TEST_F(AudioProcessor, DefaultsLeaveStereoAsItIs) {
    open(2);
    Shorts every;
    for (int s = SHRT_MIN; s <= SHRT_MAX; ++s)
        every.push_back(static_cast<short>(s));
    EXPECT_EQ(play(every), every);
    const Shorts loud = noise_samples(1, 20000, 12000.0);
    EXPECT_EQ(play(loud, 1152), loud);
}

TEST_F(AudioProcessor, VolumeOfTenDecibelsMultipliesByTen) {
    open(2);
    master_settings.volume.setValue(10.0F);
    EXPECT_EQ(play({100, -3000, 5000, -5000}), (Shorts{1000, -30000, 32767, -32768}))
        << "and saturates";
}

TEST_F(AudioProcessor, VolumeOfMinusFortyDecibelsDividesByTenThousand) {
    open(2);
    master_settings.volume.setValue(-40.0F);
    EXPECT_EQ(play({32767, -20000, 4000, 30000}), (Shorts{3, -2, 0, 3}));
}

TEST_F(AudioProcessor, BalanceSilencesTheOtherSide) {
    open(2);
    master_settings.balance.setValue(1.0F);
    EXPECT_EQ(play({1000, 2000}), (Shorts{0, 4000}));
    restore();
    master_settings.balance.setValue(-1.0F);
    EXPECT_EQ(play({1000, 2000}), (Shorts{2000, 0}));
}

TEST_F(AudioProcessor, StereoEnhancerSetsTheWidth) {
    open(2);
    master_settings.stereo_enhancer.setValue(0.0F);
    EXPECT_EQ(play({1000, 2000}), (Shorts{1500, 1500}));
    restore();
    master_settings.stereo_enhancer.setValue(1.0F);
    EXPECT_EQ(play({1000, 2000}), (Shorts{500, 2500}));
}

TEST_F(AudioProcessor, ChangeOfVolumeIsHeardAtTheNextBlockAndGlides) {
    open(2);
    const Shorts steady(2 * 1024, 10000);
    EXPECT_EQ(play(steady), steady);
    master_settings.volume.setValue(-10.0F);
    const Shorts next = play(steady);
    const double c = 1.0 - std::exp(-6.90776 / 4410.0);
    for (std::size_t i = 0; i < 1024; ++i) {
        const double expected = 10000.0 * (0.1 + 0.9 * std::pow(1.0 - c, double(i + 1)));
        ASSERT_NEAR(next[2 * i], expected, 1.0);
    }
    EXPECT_NEAR(next[0], 9986, 1);
}

TEST_F(AudioProcessor, EqualiserGetsItsGainsAndTheSampleRate) {
    open(2, 44100);
    master_settings.eq_low.setValue(10.0F);
    master_settings.eq_mid.setValue(-40.0F);
    master_settings.eq_high.setValue(3.0F);
    play(noise_samples(2, 2000, 1000.0));
    Eq3Band expected;
    expected.low_gain = 10.0F;
    expected.mid_gain = 0.0001F;
    expected.high_gain =
        static_cast<float>(std::pow(10.0, double(master_settings.eq_high.getValue() * 0.1F)));
    expected.update(44100.0F);
    for (const Eq3Band& eq : eq3band) {
        EXPECT_FLOAT_EQ(eq.low_gain, expected.low_gain);
        EXPECT_FLOAT_EQ(eq.mid_gain, expected.mid_gain);
        EXPECT_EQ(eq.high_gain, expected.high_gain);
        EXPECT_FLOAT_EQ(eq.low_shelf.b0, expected.low_shelf.b0);
        EXPECT_FLOAT_EQ(eq.peak.b1, expected.peak.b1);
        EXPECT_FLOAT_EQ(eq.high_shelf.a2, expected.high_shelf.a2);
    }
    EXPECT_NE(eq3band[0].x1, eq3band[1].x1) << "one for each side";
}

TEST_F(AudioProcessor, EqualiserBoostsABassTone) {
    open(2);
    master_settings.eq_low.setValue(10.0F);
    Shorts samples;
    for (const float x : instruments::sine(50.0, 48000.0, 96000, 1000.0)) {
        samples.insert(samples.end(), 2, static_cast<short>(std::lrint(x)));
    }
    const Shorts out = play(samples);
    std::vector<float> left;
    for (std::size_t i = 0; i < out.size(); i += 2)
        left.push_back(static_cast<float>(out[i]));
    EXPECT_NEAR(std::abs(instruments::tone(left, 48000, 48000, 50.0, 48000.0)), 9987.0, 5.0);
}

TEST_F(AudioProcessor, NoiseReductionRunsAboveLevelZeroOnly) {
    open(2);
    const Shorts wide = noise_samples(3, 2 * 1024, 8000.0);
    EXPECT_EQ(play(wide), wide);
    EXPECT_EQ(audio_noisereduction.bank.write_position, 0);
    master_settings.audio_dnr_level.setValue(0.0001F);
    EXPECT_NE(play(wide), wide);
    EXPECT_EQ(audio_noisereduction.level, master_settings.audio_dnr_level.getValue());
    const int position = audio_noisereduction.bank.write_position;
    EXPECT_GT(position, 0);
    const float energy = audio_noisereduction.band_energies[1];
    EXPECT_GT(energy, 0.0F);

    master_settings.audio_dnr_level.setValue(0.0F);
    EXPECT_EQ(play(wide), wide) << "skipped again";
    EXPECT_EQ(audio_noisereduction.bank.write_position, position) << "and keeps what it held";
    EXPECT_EQ(audio_noisereduction.band_energies[1], energy);
}

// The same stages, called one after the other on planes of our own.
TEST_F(AudioProcessor, StagesRunInTheirOrder) {
    open(2);
    turn_all_sound_settings_on();
    NoiseReduction reduction;
    VolPanControl control;
    Eq3Band equalisers[2];
    const auto in = AudioConverter::to_planes(2, 48000);
    const auto out = AudioConverter::to_samples(48000);
    for (unsigned block = 0; block < 20; ++block) {
        const Shorts samples = noise_samples(10 + block, 2000, 6000.0);
        std::vector<float> left(1000);
        std::vector<float> right(1000);
        in->convert(samples.data(), left.data(), right.data(), 1000);
        reduction.level = master_settings.audio_dnr_level.getValue();
        reduction.work(left.data(), right.data(), 1000);
        control.volume = master_settings.volume.getValue();
        control.balance = master_settings.balance.getValue();
        control.width = master_settings.stereo_enhancer.getValue();
        control.work(left.data(), right.data(), 1000);
        for (int side = 0; side < 2; ++side) {
            Eq3Band& eq = equalisers[side];
            eq.low_gain = float(std::pow(10.0, double(master_settings.eq_low.getValue() * 0.1F)));
            eq.mid_gain = float(std::pow(10.0, double(master_settings.eq_mid.getValue() * 0.1F)));
            eq.high_gain = float(std::pow(10.0, double(master_settings.eq_high.getValue() * 0.1F)));
            eq.update(48000.0F);
            eq.work(side == 0 ? left.data() : right.data(), 1000);
        }
        Shorts expected(2000);
        out->convert(left.data(), right.data(), expected.data(), 1000);
        ASSERT_EQ(play(samples, 1000), expected) << "block " << block;
    }
}

// No band of this sound is dropped once it has come through the bank, so nothing in the chain knows
// where its blocks end.
TEST_F(AudioProcessor, BlocksOfWholeChunksMakeNoDifference) {
    Shorts sound;
    std::vector<float> side(80000, 0.0F);
    // A tone in the middle of each band but the highest.
    for (const double frequency : {100.0, 400.0, 800.0, 1600.0, 3200.0, 9000.0}) {
        const auto tone = instruments::sine(frequency, 48000.0, 80000, 1500.0);
        for (std::size_t i = 0; i < side.size(); ++i)
            side[i] += tone[i];
    }
    const auto middle = instruments::noise(4, 80000, 3000.0);
    for (std::size_t i = 0; i < side.size(); ++i) {
        sound.push_back(static_cast<short>(middle[i] + side[i]));
        sound.push_back(static_cast<short>(middle[i] - side[i]));
    }
    const Shorts start(sound.begin(), sound.begin() + 2 * 12800);
    const Shorts rest(sound.begin() + 2 * 12800, sound.end());
    Shorts expected;
    for (const std::size_t block : {128U, 256U, 384U, 1024U, 16384U}) {
        restore();
        turn_all_sound_settings_on();
        open(2);
        play(start, 128);
        const Shorts actual = play(rest, block);
        if (expected.empty()) expected = actual;
        EXPECT_EQ(actual, expected) << block;
        for (int b = 1; b < 7; ++b) {
            EXPECT_GT(audio_noisereduction.band_energies[std::size_t(b)],
                      10.0F * audio_noisereduction.noise_energy);
        }
    }
}

TEST_F(AudioProcessor, MonoComesOutAsStereo) {
    open(1);
    EXPECT_TRUE(right_scope_.IsNull());
    EXPECT_EQ(play({100, -200, 32767, -32768}),
              (Shorts{100, 100, -200, -200, 32767, 32767, -32768, -32768}));
    EXPECT_EQ(left_scope_->WritePosition(), 1);
}

TEST_F(AudioProcessor, SurroundComesOutAsStereo) {
    open(6);
    const double sum = 1.0 + 2.0 * std::sqrt(0.5);
    const Shorts samples = noise_samples(5, 6 * 500, 9000.0);
    const Shorts out = play(samples, 500);
    ASSERT_EQ(out.size(), 1000U);
    for (std::size_t i = 0; i < 500; ++i) {
        const short* x = samples.data() + 6 * i;
        ASSERT_NEAR(out[2 * i], (x[0] + std::sqrt(0.5) * (x[2] + x[4])) / sum, 0.51);
        ASSERT_NEAR(out[2 * i + 1], (x[1] + std::sqrt(0.5) * (x[2] + x[5])) / sum, 0.51);
    }
}

TEST_F(AudioProcessor, ChannelCountAndExtraAreNotUsed) {
    open(2);
    const Shorts samples = noise_samples(6, 200, 5000.0);
    Shorts block = samples;
    audio_processor(chain_, block.data(), 100, 77, -5, 48000);
    EXPECT_EQ(block, samples);
}

}  // namespace
