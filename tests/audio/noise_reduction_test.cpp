// SPDX-License-Identifier: MIT
#include "audio/noise_reduction.h"

#include "audio/instruments.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cstring>
#include <memory>

namespace {

using Samples = std::vector<float>;

struct Stereo {
    Samples left, right;
};

Stereo from_middle_and_side(const Samples& middle, const Samples& side) {
    Stereo s;
    for (std::size_t i = 0; i < side.size(); ++i) {
        s.left.push_back(middle[i] + side[i] * 0.5F);
        s.right.push_back(middle[i] - side[i] * 0.5F);
    }
    return s;
}

Samples side_of(const Stereo& s) {
    Samples side;
    for (std::size_t i = 0; i < s.left.size(); ++i)
        side.push_back(s.left[i] - s.right[i]);
    return side;
}

std::unique_ptr<NoiseReduction> at_level(float level) {
    auto reduction = std::make_unique<NoiseReduction>();
    reduction->level = level;
    return reduction;
}

void run(NoiseReduction& reduction, Stereo& s, std::size_t from, std::size_t to,
         std::size_t block) {
    for (std::size_t i = from; i < to; i += block) {
        reduction.work(s.left.data() + i, s.right.data() + i,
                       static_cast<int>(std::min(block, to - i)));
    }
}

bool same_bits(const Samples& a, const Samples& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), 4 * a.size()) == 0;
}

TEST(Thresholds, SoftOneShrinks) {
    const auto soft = [](float x, float t) {
        softthresh(x, t);
        return x;
    };
    EXPECT_FLOAT_EQ(soft(0.5F, 0.2F), 0.3F);
    EXPECT_FLOAT_EQ(soft(-0.5F, 0.2F), -0.3F);
    EXPECT_EQ(soft(-0.1F, 0.2F), 0.0F);
    EXPECT_EQ(soft(0.2F, 0.2F), 0.0F);
    EXPECT_EQ(soft(-0.2F, 0.2F), 0.0F);
    EXPECT_EQ(soft(0.7F, 0.0F), 0.7F);
}

TEST(Thresholds, HardOneCuts) {
    const auto hard = [](float x, float t) {
        hardthresh(x, t);
        return x;
    };
    EXPECT_EQ(hard(0.1F, 0.2F), 0.0F);
    EXPECT_EQ(hard(-0.1F, 0.2F), 0.0F);
    EXPECT_EQ(hard(0.3F, 0.2F), 0.3F);
    EXPECT_EQ(hard(-0.3F, 0.2F), -0.3F);
    EXPECT_EQ(hard(0.2F, 0.2F), 0.2F);
    EXPECT_EQ(hard(-0.2F, 0.2F), -0.2F);
}

TEST(MeasureEnergy, SumsTheSquares) {
    const Samples x = {1.0F, -2.0F, 3.0F, 100.0F};
    EXPECT_EQ(measure_energy(x.data(), 3), 14.0F);
    EXPECT_EQ(measure_energy(x.data(), 0), 0.0F);
}

TEST(NoiseReduction, StartsWithTheTableAndNoEnergies) {
    static_assert(sizeof(NoiseReduction) == sizeof(FIR_bank<256, 7>) + 9 * sizeof(float));
    const auto reduction = std::make_unique<NoiseReduction>();
    EXPECT_EQ(reduction->bank.coefficients, meyer_wavelet_filters);
    EXPECT_EQ(reduction->level, 0.0F);
    EXPECT_EQ(reduction->noise_energy, 0.0F);
    for (const float energy : reduction->band_energies)
        EXPECT_EQ(energy, 0.0F);
    EXPECT_EQ(reduction->bank.staged, 0);
}

TEST(NoiseReduction, LeavesMonoAlone) {
    const auto reduction = at_level(16.0F);
    const Samples sound = instruments::noise(1, 6000, 0.3);
    Stereo s = {sound, sound};
    run(*reduction, s, 0, 6000, 500);
    EXPECT_TRUE(same_bits(s.left, sound));
    EXPECT_TRUE(same_bits(s.right, sound));
    for (const float energy : reduction->band_energies)
        EXPECT_EQ(energy, 0.0F);
}

TEST(NoiseReduction, EnergiesOfASilentSideFallToNothing) {
    const auto reduction = at_level(16.0F);
    Stereo loud = {instruments::noise(2, 12800, 0.3), instruments::noise(3, 12800, 0.3)};
    run(*reduction, loud, 0, 12800, 128);
    EXPECT_GT(reduction->band_energies[1], 1.0F);
    Stereo silent = {Samples(128 * 200, 0.25F), Samples(128 * 200, 0.25F)};
    run(*reduction, silent, 0, 128 * 200, 128);
    for (const float energy : reduction->band_energies)
        EXPECT_LT(energy, 1e-7F);
    EXPECT_EQ(silent.left.back(), 0.25F);
    EXPECT_EQ(silent.right.back(), 0.25F);
}

TEST(NoiseReduction, FirstOutputIsTheMiddleAlone) {
    const auto reduction = at_level(1.0F);
    const Stereo in = {instruments::noise(4, 256, 0.3), instruments::noise(5, 256, 0.3)};
    Stereo s = in;
    run(*reduction, s, 0, 256, 128);
    for (std::size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(s.left[i], s.right[i]);
        ASSERT_NEAR(s.left[i], (in.left[i] + in.right[i]) * 0.5F, 1e-7);
    }
}

// A smooth pulse in the low bands, over nothing: it has no floor to be confused with.
TEST(NoiseReduction, SideIsLateBy384AndTheMiddleIsNot) {
    constexpr int place = 2000;
    Samples pulse(6000);
    for (std::size_t i = 0; i < pulse.size(); ++i) {
        const double x = (static_cast<double>(i) - place) / 40.0;
        pulse[i] = static_cast<float>(0.5 * std::exp(-x * x));
    }
    Stereo s = from_middle_and_side(pulse, pulse);
    run(*at_level(0.001F), s, 0, 5888, 128);
    const Samples side = side_of(s);
    const auto peak = [](const Samples& x) {
        return std::max_element(x.begin(), x.begin() + 5888) - x.begin();
    };
    EXPECT_EQ(peak(side), place + 384);
    EXPECT_GT(side[place + 384], 0.45F);  // 0.4999 measured

    Samples middle;
    for (std::size_t i = 0; i < pulse.size(); ++i) {
        middle.push_back((s.left[i] + s.right[i]) * 0.5F);
    }
    EXPECT_EQ(peak(middle), place);
}

/// The noise reduction as it is described, term by term, behind a bank of its own.
class Twin {
  public:
    explicit Twin(float level) : level_(level) { bank_->coefficients = meyer_wavelet_filters; }

    void work(float* left, float* right, int n) {
        float g[7];
        std::fill_n(g, 7, 1.0F);
        for (int i = 0; i < n; ++i) {
            left[i] = left[i] - right[i];
            right[i] = right[i] + left[i] * 0.5F;
        }
        for (int i = 0; i < n; i += 128)
            chunk(g, left + i, right + i, std::min(128, n - i));
    }

    int dropped() const { return dropped_; }
    int shrunk() const { return shrunk_; }

  private:
    void chunk(float (&g)[7], float* s, float* m, int n) {
        float b[7][256];
        float* bands[7] = {b[0], b[1], b[2], b[3], b[4], b[5], b[6]};
        bank_->Work(s, bands, n);
        noise_ = 0.9F * noise_ + 0.100000024F * energy(b[0], n);
        for (int k = 0; k < 7; ++k) {
            float& e = energies_[k];
            e = k == 0 ? noise_ : 0.9F * energy(b[k], n) + 0.100000024F * e;
            const float d = e - noise_;
            float t = FLT_MAX;
            if (d > 0)
                t = static_cast<float>(double(noise_ * (level_ / 16)) / std::sqrt(double(d)));
            if (t == FLT_MAX) g[k] = 0.0F;
            for (int i = 0; i < n && t != FLT_MAX; ++i) {
                b[k][i] = b[k][i] < -t ? b[k][i] + t : b[k][i] > t ? b[k][i] - t : 0.0F;
            }
            (t == FLT_MAX ? dropped_ : shrunk_) += k > 0;
        }
        for (int i = 0; i < n; ++i) {
            s[i] = 0.0F;
            for (int k = 0; k < 7; ++k)
                s[i] += b[k][i] * g[k];
            m[i] = m[i] - s[i] * 0.5F;
            s[i] = s[i] + m[i];
        }
    }

    static float energy(const float* x, int n) {
        float sum = 0.0F;
        for (int i = 0; i < n; ++i)
            sum += x[i] * x[i];
        return sum;
    }

    std::unique_ptr<FIR_bank<256, 7>> bank_ = std::make_unique<FIR_bank<256, 7>>();
    float level_;
    float noise_ = 0;
    float energies_[7] = {};
    int dropped_ = 0;
    int shrunk_ = 0;
};

/// Hiss under a tone that comes and goes, so that bands are kept, shrunk and dropped in turn.
Stereo changing_sound(int count, double hiss) {
    Samples side = instruments::sine(1500.0, 48000.0, count, 0.2);
    for (std::size_t i = 0; i < side.size(); ++i)
        side[i] *= i / 3000 % 2 == 0 ? 1.0F : 0.0F;
    const Samples more = instruments::noise(6, count, hiss);
    for (std::size_t i = 0; i < side.size(); ++i)
        side[i] += more[i];
    return from_middle_and_side(instruments::noise(7, count, 0.2), side);
}

class NoiseReductionTwin : public testing::TestWithParam<float> {};

TEST_P(NoiseReductionTwin, IsEqualBitForBit) {
    for (const std::size_t block : {128U, 1024U, 1000U, 130U, 64U, 5000U}) {
        const auto reduction = at_level(GetParam());
        Twin twin(GetParam());
        Stereo actual = changing_sound(40000, 0.02);
        Stereo expected = actual;
        run(*reduction, actual, 0, 40000, block);
        for (std::size_t i = 0; i < 40000; i += block) {
            twin.work(expected.left.data() + i, expected.right.data() + i,
                      static_cast<int>(std::min<std::size_t>(block, 40000 - i)));
        }
        EXPECT_TRUE(same_bits(actual.left, expected.left)) << block;
        EXPECT_TRUE(same_bits(actual.right, expected.right)) << block;
        EXPECT_GT(twin.dropped(), 20) << "the sound exercises both ways";
        EXPECT_GT(twin.shrunk(), 20);
    }
}

INSTANTIATE_TEST_SUITE_P(Levels, NoiseReductionTwin,
                         testing::Values(0.01F, 1.0F, 16.0F, 100.0F, 1024.0F));

// At level 1024 a band loses 64 times the floor over the root of what it has above the floor.
TEST(NoiseReduction, ThresholdAtTheHighestLevel) {
    constexpr std::size_t settled = 128 * 200;
    const Samples tone = instruments::sine(1500.0, 48000.0, settled + 128, 0.4);
    const Samples hiss = instruments::noise(8, settled + 128, 0.0005);
    Samples side;
    for (std::size_t i = 0; i < tone.size(); ++i)
        side.push_back(tone[i] + hiss[i]);
    Stereo s = from_middle_and_side(Samples(side.size(), 0.0F), side);
    const auto reduction = at_level(1024.0F);
    run(*reduction, s, 0, settled, 128);

    const auto raw = std::make_unique<FIR_bank<256, 7>>(reduction->bank);
    float samples[7][128];
    float* bands[7];
    for (int b = 0; b < 7; ++b)
        bands[b] = samples[b];
    raw->Work(side.data() + settled, bands, 128);
    run(*reduction, s, settled, settled + 128, 128);

    const double floor = double(reduction->noise_energy);
    const double threshold = 64.0 * floor / std::sqrt(double(reduction->band_energies[3]) - floor);
    const Samples out = side_of(s);
    int shrunk = 0;
    for (std::size_t i = 0; i < 128; ++i) {
        const double x = double(samples[3][i]);
        if (std::fabs(x) < 2.0 * threshold) continue;
        ASSERT_NEAR(double(out[settled + i]), x - std::copysign(threshold, x), 1e-6);
        ++shrunk;
    }
    EXPECT_GT(shrunk, 100);
    EXPECT_GT(threshold, 1e-4) << "well above the tolerance";
}

TEST(NoiseReduction, TopBandIsAlwaysRemoved) {
    Stereo s =
        from_middle_and_side(Samples(48000, 0.0F), instruments::sine(21000.0, 48000.0, 48000, 0.4));
    run(*at_level(0.0001F), s, 0, 47872, 128);
    EXPECT_LT(instruments::mean_square(side_of(s), 24000, 23000), 1e-12);  // 0 measured
}

TEST(NoiseReduction, FloorFollowsSlowlyAndTheOthersQuickly) {
    const auto reduction = at_level(1.0F);
    Stereo hiss = {instruments::noise(9, 128 * 100, 0.1), instruments::noise(10, 128 * 100, 0.1)};
    run(*reduction, hiss, 0, 128 * 100, 128);
    // Past the last of the hiss in the bank, nothing is added to either.
    Stereo silent = {Samples(128 * 6, 0.0F), Samples(128 * 6, 0.0F)};
    run(*reduction, silent, 0, 128 * 5, 128);
    const float floor = reduction->noise_energy;
    const float band = reduction->band_energies[1];
    run(*reduction, silent, 128 * 5, 128 * 6, 128);
    EXPECT_FLOAT_EQ(reduction->noise_energy, 0.9F * floor);
    EXPECT_FLOAT_EQ(reduction->band_energies[1], 0.100000024F * band);
    EXPECT_EQ(reduction->band_energies[0], reduction->noise_energy);
}

// Silence and then a tone, in one call or chunk by chunk.
TEST(NoiseReduction, DroppedBandContributesNothingForTheRestOfTheCall) {
    Samples side(128 * 20, 0.0F);
    const Samples tone = instruments::sine(1500.0, 48000.0, 128 * 20, 0.4);
    std::copy(tone.begin() + 128 * 4, tone.end(), side.begin() + 128 * 4);
    const Samples middle(side.size(), 0.0F);
    Stereo whole = from_middle_and_side(middle, side);
    Stereo pieces = whole;
    const auto in_one = at_level(1.0F);
    const auto in_pieces = at_level(1.0F);
    run(*in_one, whole, 0, side.size(), side.size());
    run(*in_pieces, pieces, 0, side.size(), 128);
    EXPECT_EQ(instruments::mean_square(side_of(whole), 0, side.size()), 0.0);
    EXPECT_GT(instruments::mean_square(side_of(pieces), 128 * 10, 128 * 10), 0.07);
    EXPECT_EQ(in_one->band_energies, in_pieces->band_energies) << "the state is the same";
}

struct Hiss {
    double frequency;                 // of the tone
    double deviation;                 // of the hiss; the tone has amplitude 0.1
    double tone_change, hiss_change;  // in decibels, measured
};

// Level 16. The hiss is what differs from the tone; most of what stays of it lies in the tone's own
// band.
TEST(NoiseReduction, HissFallsByMoreThanTenDecibelsAndTheToneStays) {
    for (const Hiss h : {Hiss{750.0, 0.003, -0.033, -16.93}, Hiss{750.0, 0.01, -0.375, -14.35},
                         Hiss{1500.0, 0.003, -0.032, -13.95}, Hiss{1500.0, 0.01, -0.369, -12.73},
                         Hiss{3000.0, 0.003, -0.034, -11.35}, Hiss{3000.0, 0.01, -0.373, -11.06}}) {
        SCOPED_TRACE(testing::Message() << h.frequency << " Hz, hiss " << h.deviation);
        constexpr int count = 144000;
        const Samples tone = instruments::sine(h.frequency, 48000.0, count, 0.1);
        Samples side = instruments::noise(1, count, h.deviation);
        for (std::size_t i = 0; i < side.size(); ++i)
            side[i] += tone[i];
        Stereo s = from_middle_and_side(instruments::sine(440.0, 48000.0, count, 0.2), side);
        run(*at_level(16.0F), s, 0, 143360, 1024);

        Samples out = side_of(s);
        const auto kept = instruments::tone(out, 48000, 48000, h.frequency, 48000.0);
        for (std::size_t i = 48000; i < 96000; ++i) {
            const double phase = 2.0 * instruments::pi * h.frequency * double(i) / 48000.0;
            out[i] -= static_cast<float>((kept * std::polar(1.0, phase)).real());
        }
        const double tone_change = instruments::decibels(std::abs(kept) / 0.1);
        const double hiss_change = instruments::decibels(
            std::sqrt(instruments::mean_square(out, 48000, 48000)) / h.deviation);
        EXPECT_LT(std::fabs(tone_change), 1.0);
        EXPECT_LT(hiss_change, -10.0);
        EXPECT_NEAR(tone_change, h.tone_change, 0.01);
        EXPECT_NEAR(hiss_change, h.hiss_change, 0.1);
    }
}

}  // namespace
