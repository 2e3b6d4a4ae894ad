// SPDX-License-Identifier: MIT
#include "audio/audio_converter.h"

#include "audio/allocation_counter.h"
#include "audio/instruments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <memory>

namespace {

using Shorts = std::vector<short>;
using Floats = std::vector<float>;

constexpr int rate = 48000;

struct Planes {
    Floats left, right;
    int frames = 0;
};

Planes to_planes(AudioConverter& converter, const Shorts& samples, int channels) {
    const int frames = static_cast<int>(samples.size()) / channels;
    Planes planes;
    planes.left.resize(static_cast<std::size_t>(frames));
    planes.right.resize(static_cast<std::size_t>(frames));
    planes.frames =
        converter.convert(samples.data(), planes.left.data(), planes.right.data(), frames);
    return planes;
}

Shorts random_samples(int count) {
    std::mt19937 generator(1);
    std::uniform_int_distribution<int> any(SHRT_MIN, SHRT_MAX);
    Shorts samples(static_cast<std::size_t>(count));
    for (short& s : samples)
        s = static_cast<short>(any(generator));
    return samples;
}

Shorts every_sample() {
    Shorts samples;
    for (int s = SHRT_MIN; s <= SHRT_MAX; ++s)
        samples.push_back(static_cast<short>(s));
    return samples;
}

TEST(AudioConverter, StereoIsScaledToFullScaleOne) {
    const auto converter = AudioConverter::to_planes(2, rate);
    ASSERT_TRUE(converter);
    const Planes planes = to_planes(*converter, {-32768, 16384, 32767, -1}, 2);
    EXPECT_EQ(planes.frames, 2);
    EXPECT_EQ(planes.left, (Floats{-1.0F, 32767.0F / 32768.0F}));
    EXPECT_EQ(planes.right, (Floats{0.5F, -1.0F / 32768.0F}));
}

TEST(AudioConverter, EverySampleSurvivesThereAndBack) {
    const auto in = AudioConverter::to_planes(2, rate);
    const auto out = AudioConverter::to_samples(rate);
    const Shorts samples = every_sample();
    for (std::size_t i = 0; i < samples.size(); i += 16384) {
        const Shorts part(samples.begin() + long(i), samples.begin() + long(i) + 16384);
        const Planes planes = to_planes(*in, part, 2);
        Shorts back(part.size());
        ASSERT_EQ(out->convert(planes.left.data(), planes.right.data(), back.data(), 8192), 8192);
        EXPECT_EQ(back, part);
    }
}

TEST(AudioConverter, MonoGoesToBothSidesUnchanged) {
    const auto converter = AudioConverter::to_planes(1, rate);
    ASSERT_TRUE(converter);
    const Planes planes = to_planes(*converter, {-32768, 16384, 32767}, 1);
    EXPECT_EQ(planes.left, (Floats{-1.0F, 0.5F, 32767.0F / 32768.0F}));
    EXPECT_EQ(planes.right, planes.left);
}

/// A down-mix by hand: what every channel contributes to the left and to the right, before both
/// are divided by the largest sum of contributions.
struct Layout {
    const char* name;
    int channels;
    std::uint64_t mask;
    std::vector<double> left, right;
};

constexpr double half_power = 0.70710678118654752;

const Layout layouts[] = {
    // front left and right, centre, bass, back left and right
    {"5.1", 6, 0, {1, 0, half_power, 0, half_power, 0}, {0, 1, half_power, 0, 0, half_power}},
    {"5.1 side",
     6,
     0x60F,
     {1, 0, half_power, 0, half_power, 0},
     {0, 1, half_power, 0, 0, half_power}},
    {"quadrophonic", 4, 0x33, {1, 0, half_power, 0}, {0, 1, 0, half_power}},
    {"3.0", 3, 0x7, {1, 0, half_power}, {0, 1, half_power}},
    {"2.1", 3, 0xB, {1, 0, 0}, {0, 1, 0}},
    {"one channel on the left", 1, 0x1, {1}, {1}},
};

TEST(AudioConverter, SurroundEqualsTheDownMixByHand) {
    for (const Layout& layout : layouts) {
        SCOPED_TRACE(layout.name);
        const auto converter = AudioConverter::to_planes(layout.channels, rate, layout.mask);
        ASSERT_TRUE(converter);
        double sum = 0.0;
        for (const double gain : layout.left)
            sum += gain;
        const Shorts samples = random_samples(1000 * layout.channels);
        const Planes planes = to_planes(*converter, samples, layout.channels);
        ASSERT_EQ(planes.frames, 1000);
        for (std::size_t i = 0; i < 1000; ++i) {
            double left = 0.0;
            double right = 0.0;
            for (std::size_t c = 0; c < layout.left.size(); ++c) {
                const double x = samples[i * layout.left.size() + c] / 32768.0;
                left += layout.left[c] * x / sum;
                right += layout.right[c] * x / sum;
            }
            ASSERT_NEAR(planes.left[i], left, 3e-7);  // 7.6e-8 measured
            ASSERT_NEAR(planes.right[i], right, 3e-7);
        }
    }
}

TEST(AudioConverter, NoLayoutExceedsFullScale) {
    for (int channels = 1; channels <= 8; ++channels) {
        const auto converter = AudioConverter::to_planes(channels, rate);
        ASSERT_TRUE(converter) << channels;
        const Shorts loudest(static_cast<std::size_t>(channels) * 100, SHRT_MIN);
        const Planes planes = to_planes(*converter, loudest, channels);
        EXPECT_GE(*std::min_element(planes.left.begin(), planes.left.end()), -1.000001F);
        EXPECT_LE(planes.left[50], -0.999F) << channels << " channels reach it";
    }
}

TEST(AudioConverter, UnfitMaskCountsAsNotGiven) {
    const Shorts samples = random_samples(600);
    const Planes usual = to_planes(*AudioConverter::to_planes(6, rate), samples, 6);
    // One of too few loudspeakers, one of an odd set that has no down-mix.
    for (const std::uint64_t mask : {std::uint64_t(0x3), std::uint64_t(0x3F) << 11}) {
        const auto converter = AudioConverter::to_planes(6, rate, mask);
        ASSERT_TRUE(converter);
        EXPECT_EQ(to_planes(*converter, samples, 6).left, usual.left);
    }
}

TEST(AudioConverter, GivesAsManyFramesAsItTakes) {
    for (const int channels : {1, 2, 6}) {
        const auto in = AudioConverter::to_planes(channels, 44100);
        const auto out = AudioConverter::to_samples(44100);
        for (const int frames : {1, 2, 3, 31, 1024, 1152, 4097, 16384, 5}) {
            const Shorts samples = random_samples(frames * channels);
            const Planes planes = to_planes(*in, samples, channels);
            EXPECT_EQ(planes.frames, frames);
            if (channels == 1) {
                EXPECT_EQ(planes.left.back(), static_cast<float>(samples.back()) / 32768.0F)
                    << "no delay";
            }
            Shorts back(2 * static_cast<std::size_t>(frames));
            EXPECT_EQ(out->convert(planes.left.data(), planes.right.data(), back.data(), frames),
                      frames);
        }
    }
}

TEST(AudioConverter, WayBackSaturatesAndRounds) {
    const auto converter = AudioConverter::to_samples(rate);
    const Floats left = {1.0F, 5e4F, -5e4F, -1.0F, 0.4F / 32768.0F, 0.6F / 32768.0F};
    const Floats right(6, 0.0F);
    Shorts samples(12);
    ASSERT_EQ(converter->convert(left.data(), right.data(), samples.data(), 6), 6);
    EXPECT_EQ(samples, (Shorts{32767, 0, 32767, 0, -32768, 0, -32768, 0, 0, 0, 1, 0}));
}

TEST(AudioConverter, RefusesWhatItCannotConvert) {
    EXPECT_EQ(AudioConverter::to_planes(0, rate), nullptr);
    EXPECT_EQ(AudioConverter::to_planes(-1, rate), nullptr);
    EXPECT_EQ(AudioConverter::to_planes(11, rate), nullptr) << "no usual layout";
    EXPECT_EQ(AudioConverter::to_planes(2, 0), nullptr);
    EXPECT_EQ(AudioConverter::to_samples(-1), nullptr);

    const auto in = AudioConverter::to_planes(2, rate);
    const auto out = AudioConverter::to_samples(rate);
    Shorts samples(2 * 16385);
    Floats plane(16385);
    for (const int frames : {-1, 0, 16385}) {
        EXPECT_LT(in->convert(samples.data(), plane.data(), plane.data(), frames), 1);
        EXPECT_LT(out->convert(plane.data(), plane.data(), samples.data(), frames), 1);
    }
    EXPECT_LT(out->convert(samples.data(), plane.data(), plane.data(), 1), 1);
    EXPECT_LT(in->convert(plane.data(), plane.data(), samples.data(), 1), 1);
}

TEST(AudioConverter, TakesNothingFromTheHeapOnceMade) {
    long allocations = heap_allocations();
    const auto probe = std::make_unique<std::array<char, 100>>();
    void* const block = std::calloc(1, 100);
    EXPECT_NE(block, probe.get());
    std::free(block);
    EXPECT_EQ(heap_allocations() - allocations, 2) << "the counter counts";

    for (const int channels : {1, 2, 3, 6, 8}) {
        const auto in = AudioConverter::to_planes(channels, rate);
        const auto out = AudioConverter::to_samples(rate);
        Shorts samples(16384 * static_cast<std::size_t>(std::max(channels, 2)));
        Floats left(16384);
        Floats right(16384);
        allocations = heap_allocations();
        for (const int frames : {100, 16384, 3}) {
            in->convert(samples.data(), left.data(), right.data(), frames);
            out->convert(left.data(), right.data(), samples.data(), frames);
        }
        EXPECT_EQ(heap_allocations() - allocations, 0) << channels << " channels";
    }
}

}  // namespace
