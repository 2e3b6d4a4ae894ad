// SPDX-License-Identifier: MIT
#include "player/audio_fade.h"

#include "player/audio_state.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using Samples = std::vector<short>;

short clipped_sum(int a, int b) {
    const int sum = a + b;
    return static_cast<short>(sum > 32767 ? 32767 : sum < -32768 ? -32768 : sum);
}

// The rule for one frame, written out: what is added to the output, or put there.
struct Twin {
    int channels;
    int total;
    int flags;
    int fade_in;
    int fade_out;

    void frame(short* out, const short* in, int i) const {
        const bool rises = (flags & AudioBlock::fades_in) && i < fade_in;
        const bool falls = (flags & AudioBlock::fades_out) && i >= total - fade_out;
        for (int c = 0; c < channels; ++c) {
            if (rises) {
                out[c] = clipped_sum(out[c], in[c] * i / fade_in);
            } else if (falls && channels == 1) {
                out[c] = clipped_sum(out[c], in[c] * (total - i) / fade_out);
            } else if (falls) {
                out[c] = clipped_sum(out[c], in[c] * (total - (i + 1)) / fade_out);
            } else if (channels == 1) {
                out[c] = in[c];
            } else {
                out[c] = clipped_sum(out[c], in[c]);
            }
        }
    }
};

class Fades : public ::testing::TestWithParam<int> {
  protected:
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    Samples noise(int frames) {
        Samples samples(static_cast<std::size_t>(frames * GetParam()));
        for (short& sample : samples)
            sample = static_cast<short>(below(65536) - 32768);
        return samples;
    }

    std::mt19937 random_{1};
};

TEST_P(Fades, EqualTheRuleOfAFrame) {
    const int channels = GetParam();
    auto* const copy = channels == 1 ? audio_fadeinout_copy_mono : audio_fadeinout_copy_stereo;
    for (int run = 0; run < 2000; ++run) {
        const int total = 1 + below(300);
        const int fade_in = below(total + 1);
        const int fade_out = below(total - fade_in + 1);
        const int start = below(total);
        const int count = below(total - start + 1);
        const int flags = AudioBlock::loaded | (below(2) ? AudioBlock::fades_in : 0) |
                          (below(2) ? AudioBlock::fades_out : 0);
        const Samples in = noise(total);
        Samples expected = noise(count + 1);
        Samples out = expected;
        const Twin twin{channels, total, flags, fade_in, fade_out};
        for (int i = 0; i < count; ++i)
            twin.frame(&expected[static_cast<std::size_t>(i * channels)],
                       &in[static_cast<std::size_t>((start + i) * channels)], start + i);
        copy(out.data(), in.data(), total, start, count, flags, fade_in, fade_out);
        ASSERT_EQ(out, expected) << "run " << run;
    }
}

INSTANTIATE_TEST_SUITE_P(Channels, Fades, ::testing::Values(1, 2));

TEST(Fades, ATailAndAHeadOfTheSameSoundAddUpToIt) {
    constexpr int total = 100;
    constexpr int fade = 40;
    const Samples in(2 * total, 10000);
    Samples out(2 * fade, 0);
    audio_fadeinout_copy_stereo(out.data(), in.data(), total, total - fade, fade,
                                AudioBlock::loaded | AudioBlock::fades_out, 0, fade);
    EXPECT_EQ(out[0], 9750);  // 39 of 40 parts
    EXPECT_EQ(out[2 * fade - 1], 0);
    audio_fadeinout_copy_stereo(out.data(), in.data(), total, 0, fade,
                                AudioBlock::loaded | AudioBlock::fades_in, fade, 0);
    // The stereo variant falls one step early.
    for (const short sample : out)
        EXPECT_EQ(sample, 9750);
}

TEST(Fades, MixClipsToSixteenBits) {
    const auto mixed = [](short sample, int addend) {
        MIX(sample, addend);
        return sample;
    };
    EXPECT_EQ(mixed(100, 23), 123);
    EXPECT_EQ(mixed(32000, 767), 32767);
    EXPECT_EQ(mixed(32000, 768), 32767);
    EXPECT_EQ(mixed(-32000, -769), -32768);
    EXPECT_EQ(mixed(-5, 200000), 32767);
    EXPECT_EQ(mixed(5, -200000), -32768);
}

}  // namespace
