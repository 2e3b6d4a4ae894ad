// SPDX-License-Identifier: MIT
#include "audio/eq3band.h"

#include "audio/instruments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <cstring>
#include <numeric>
#include <ostream>

namespace {

using Complex = std::complex<double>;

/// The response as the analogue filters behind the cookbook have it, taken to the digital frequency
/// axis: s = j tan(w / 2) / tan(w0 / 2).
class Model {
  public:
    explicit Model(const Eq3Band& eq, double sample_rate) : eq_(eq), rate_(sample_rate) {}

    double gain(double frequency) const {
        return std::abs(low_shelf(frequency) * peak(frequency) * high_shelf(frequency));
    }

  private:
    double angle(double frequency) const { return 2.0 * instruments::pi * frequency / rate_; }
    Complex s(double frequency, double corner) const {
        return {0.0, std::tan(angle(frequency) / 2.0) / std::tan(angle(corner) / 2.0)};
    }
    static constexpr double one_over_q = 1.41421356237309505;  // shelf slope 1

    Complex low_shelf(double frequency) const {
        const double a = std::sqrt(double(eq_.low_gain));
        const Complex z = s(frequency, 400.0);
        const Complex middle = std::sqrt(a) * one_over_q * z;
        return a * (z * z + middle + a) / (a * z * z + middle + 1.0);
    }
    Complex high_shelf(double frequency) const {
        const double a = std::sqrt(double(eq_.high_gain));
        const Complex z = s(frequency, 8000.0);
        const Complex middle = std::sqrt(a) * one_over_q * z;
        return a * (a * z * z + middle + 1.0) / (z * z + middle + a);
    }
    Complex peak(double frequency) const {
        const double a = std::sqrt(double(eq_.mid_gain));
        const double w0 = angle(2000.0);
        const double octaves = 2.0 * w0;
        const double q_inverse = 2.0 * std::sinh(std::log(2.0) / 2.0 * octaves * w0 / std::sin(w0));
        const Complex z = s(frequency, 2000.0);
        return (z * z + z * a * q_inverse + 1.0) / (z * z + z * q_inverse / a + 1.0);
    }

    Eq3Band eq_;
    double rate_;
};

Eq3Band equaliser(float low, float mid, float high, double sample_rate) {
    Eq3Band eq;
    eq.low_gain = low;
    eq.mid_gain = mid;
    eq.high_gain = high;
    eq.update(static_cast<float>(sample_rate));
    return eq;
}

/// The gain a sine of a whole frequency meets, measured over a second after it has settled.
double measured_gain(Eq3Band eq, int frequency, int sample_rate) {
    const int settling = sample_rate / 2;
    auto x = instruments::sine(frequency, sample_rate, settling + sample_rate, 0.5);
    eq.work(x.data(), static_cast<int>(x.size()));
    return std::abs(instruments::tone(x, static_cast<std::size_t>(settling),
                                      static_cast<std::size_t>(sample_rate), frequency,
                                      sample_rate)) /
           0.5;
}

struct Setting {
    int sample_rate;
    float low, mid, high;
};

std::ostream& operator<<(std::ostream& out, const Setting& s) {
    return out << s.sample_rate << " Hz, " << s.low << ", " << s.mid << ", " << s.high;
}

class Eq3BandResponse : public testing::TestWithParam<Setting> {};

TEST_P(Eq3BandResponse, EqualsTheTransferFunction) {
    const Setting s = GetParam();
    const Eq3Band eq = equaliser(s.low, s.mid, s.high, s.sample_rate);
    const Model model(eq, s.sample_rate);
    for (const int frequency : {50, 100, 400, 1000, 1700, 2000, 2400, 4000, 8000, 12000, 18000}) {
        const double expected = instruments::decibels(model.gain(frequency));
        const double measured = instruments::decibels(measured_gain(eq, frequency, s.sample_rate));
        EXPECT_NEAR(measured, expected, 0.01) << frequency << " Hz";  // 0.0052 measured
    }
}

INSTANTIATE_TEST_SUITE_P(RatesAndGains, Eq3BandResponse, testing::ValuesIn([] {
                             std::vector<Setting> settings;
                             for (const int rate : {44100, 48000, 96000}) {
                                 for (const float gain : {10.0F, 2.0F, 0.1F, 0.0001F}) {
                                     settings.push_back({rate, gain, 1.0F, 1.0F});
                                     settings.push_back({rate, 1.0F, gain, 1.0F});
                                     settings.push_back({rate, 1.0F, 1.0F, gain});
                                 }
                                 settings.push_back({rate, 10.0F, 0.5F, 2.0F});
                             }
                             return settings;
                         }()));

TEST(Eq3Band, RecordHasItsOrderAndItsDefaults) {
    using Values = std::array<float, 33>;
    auto values = std::bit_cast<Values>(Eq3Band());
    EXPECT_TRUE(std::all_of(values.begin(), values.begin() + 26, [](float v) { return v == 0; }));
    const std::array<float, 7> defaults = {400, 2000, 2000, 8000, 1, 1, 1};
    EXPECT_TRUE(std::equal(defaults.begin(), defaults.end(), values.begin() + 26));

    std::iota(values.begin(), values.end(), 0.0F);
    const auto eq = std::bit_cast<Eq3Band>(values);
    float place = 0;
    for (const Eq3Band::Section* s : {&eq.low_shelf, &eq.peak, &eq.high_shelf}) {
        for (const float v : {s->a0, s->a1, s->a2, s->b0, s->b1, s->b2, s->y1, s->y2}) {
            EXPECT_EQ(v, place++);
        }
    }
    for (const float v : {eq.x1, eq.x2, eq.low_frequency, eq.peak_frequency, eq.peak_width,
                          eq.high_frequency, eq.low_gain, eq.mid_gain, eq.high_gain}) {
        EXPECT_EQ(v, place++);
    }
}

TEST(Eq3Band, FeedbackCoefficientsAreToBeAdded) {
    const Eq3Band eq = equaliser(4.0F, 1.0F, 1.0F, 44100);
    // A = 2, w0 = 2 π 400 / 44100, worked out by hand from the cookbook.
    const double w0 = 2.0 * instruments::pi * 400.0 / 44100.0;
    const double k = 2.0 * std::sin(w0);
    const double a0 = 3.0 + std::cos(w0) + k;
    EXPECT_EQ(eq.low_shelf.a0, 1.0F);
    EXPECT_NEAR(eq.low_shelf.a1, 2.0 * (1.0 + 3.0 * std::cos(w0)) / a0, 3e-7);
    EXPECT_NEAR(eq.low_shelf.a2, -(3.0 + std::cos(w0) - k) / a0, 3e-7);
    EXPECT_NEAR(eq.low_shelf.b0, 2.0 * (3.0 - std::cos(w0) + k) / a0, 3e-7);
    EXPECT_NEAR(eq.low_shelf.b1, 4.0 * (1.0 - 3.0 * std::cos(w0)) / a0, 4e-7);
    EXPECT_NEAR(eq.low_shelf.b2, 2.0 * (3.0 - std::cos(w0) - k) / a0, 3e-7);
}

// The bandwidth in octaves is 2 × 2000 Hz as an angle.
TEST(Eq3Band, WidthOfThePeakDependsOnTheSampleRate) {
    for (const auto& [rate, octaves] : {std::pair(44100.0, 0.56990), {48000.0, 0.52360}}) {
        const Eq3Band eq = equaliser(1.0F, 4.0F, 1.0F, rate);
        const double feedback = -double(eq.peak.a2);  // (1 − α / A) / (1 + α / A), A = 2
        const double alpha = 2.0 * (1.0 - feedback) / (1.0 + feedback);
        const double w0 = 2.0 * instruments::pi * 2000.0 / rate;
        const double measured =
            std::asinh(alpha / std::sin(w0)) * std::sin(w0) / w0 / (std::log(2.0) / 2.0);
        EXPECT_NEAR(measured, octaves, 2e-5);
    }
}

TEST(Eq3Band, LowGainOfTenBoostsTheBassTenfold) {
    const Eq3Band eq = equaliser(10.0F, 1.0F, 1.0F, 44100);
    EXPECT_NEAR(measured_gain(eq, 50, 44100), 9.987, 0.002);
    EXPECT_NEAR(measured_gain(eq, 18000, 44100), 1.0, 1e-4);
}

TEST(Eq3Band, MidGainOfATenThousandthSilencesItsCentre) {
    EXPECT_NEAR(measured_gain(equaliser(1.0F, 0.0001F, 1.0F, 44100), 2000, 44100), 1e-4, 2e-6);
    const double narrower = measured_gain(equaliser(1.0F, 0.0001F, 1.0F, 48000), 2500, 48000);
    const double wider = measured_gain(equaliser(1.0F, 0.0001F, 1.0F, 44100), 2500, 44100);
    EXPECT_GT(narrower, wider * 1.05);
}

TEST(Eq3Band, FlatLeavesSamplesAndMemoriesAlone) {
    Eq3Band eq = equaliser(2.0F, 0.5F, 3.0F, 48000);
    auto loud = instruments::noise(1, 100, 1.0);
    eq.work(loud.data(), 100);
    for (const float gain : {1.0F, 1.00005F, 0.99995F}) {
        eq.low_gain = eq.mid_gain = eq.high_gain = gain;
        eq.update(48000);
        const Eq3Band before = eq;
        auto x = instruments::noise(2, 100, 1.0);
        eq.work(x.data(), 100);
        EXPECT_EQ(x, instruments::noise(2, 100, 1.0)) << gain;
        EXPECT_EQ(std::memcmp(&eq, &before, sizeof eq), 0) << gain;
    }
}

TEST(Eq3Band, OneGainOutsideTheFlatRangeRunsAllSections) {
    // The single-precision neighbours of the two limits lie just outside.
    for (const float gain : {1.0002F, 1.0001001F, 0.9998F, 0.99989F}) {
        for (int band = 0; band < 3; ++band) {
            Eq3Band eq = equaliser(band == 0 ? gain : 1.0F, band == 1 ? gain : 1.0F,
                                   band == 2 ? gain : 1.0F, 48000);
            std::vector<float> x = {0.5F};
            eq.work(x.data(), 1);
            EXPECT_EQ(eq.x1, 0.5F) << gain << ", band " << band;
            EXPECT_NE(eq.low_shelf.y1, 0.0F);
            EXPECT_NE(eq.peak.y1, 0.0F);
            EXPECT_NE(eq.high_shelf.y1, 0.0F);
        }
    }
}

TEST(Eq3Band, MemoriesFromBeforeABypassAreUsedAfterIt) {
    Eq3Band eq = equaliser(4.0F, 1.0F, 1.0F, 48000);
    std::vector<float> x(64, 1.0F);
    eq.work(x.data(), 64);
    eq.low_gain = 1.0F;
    eq.update(48000);
    std::vector<float> silence(1000, 0.0F);
    eq.work(silence.data(), 1000);
    eq.low_gain = 4.0F;
    eq.update(48000);
    const Eq3Band stale = eq;
    float first = 0.0F;
    eq.work(&first, 1);
    EXPECT_NE(first, 0.0F) << "rings on";
    EXPECT_EQ(eq.x2, stale.x1);
    EXPECT_EQ(eq.x2, 1.0F);
}

/// The filter as it is defined, without regard to speed.
void plain_twin(Eq3Band& e, std::vector<float>& samples) {
    for (float& x : samples) {
        Eq3Band::Section &p = e.low_shelf, &q = e.peak, &r = e.high_shelf;
        const float s1 = p.b0 * x + p.b1 * e.x1 + p.b2 * e.x2 + p.a1 * p.y1 + p.a2 * p.y2;
        const float s2 = q.b0 * s1 + q.b1 * p.y1 + q.b2 * p.y2 + q.a1 * q.y1 + q.a2 * q.y2;
        const float s3 = r.b0 * s2 + r.b1 * q.y1 + r.b2 * q.y2 + r.a1 * r.y1 + r.a2 * r.y2;
        p.y2 = p.y1;
        p.y1 = static_cast<float>(double(s1) - 1e-25);
        q.y2 = q.y1;
        q.y1 = static_cast<float>(double(s2) + 1e-25);
        r.y2 = r.y1;
        r.y1 = static_cast<float>(double(s3) - 1e-25);
        e.x2 = e.x1;
        e.x1 = x;
        x = s3;
    }
}

TEST(Eq3Band, EqualsItsPlainTwinBitForBit) {
    Eq3Band eq = equaliser(10.0F, 0.0001F, 3.0F, 44100);
    Eq3Band twin = eq;
    std::vector<std::vector<float>> inputs = {instruments::noise(3, 5000, 0.3),
                                              instruments::noise(4, 5000, 1e-24),
                                              instruments::noise(5, 777, 1e6),
                                              std::vector<float>(300, 0.0F),
                                              {FLT_MAX, -FLT_MAX, FLT_MIN, 0.0F, 1.0F}};
    for (auto& input : inputs) {
        auto expected = input;
        plain_twin(twin, expected);
        // In uneven pieces, with the coefficients computed anew: the memories carry over.
        for (std::size_t i = 0; i < input.size(); i += 97) {
            const auto n = static_cast<int>(std::min<std::size_t>(97, input.size() - i));
            eq.update(44100);
            eq.work(input.data() + i, n);
        }
        EXPECT_EQ(std::memcmp(input.data(), expected.data(), 4 * input.size()), 0);
        EXPECT_EQ(std::memcmp(&eq, &twin, sizeof eq), 0);
    }
}

TEST(Eq3Band, OffsetsAlternateFromSectionToSection) {
    Eq3Band eq = equaliser(10.0F, 0.5F, 3.0F, 44100);
    Eq3Band twin = eq;
    std::vector<float> silence(1000, 0.0F);
    eq.work(silence.data(), 1);
    EXPECT_EQ(silence[0], 0.0F) << "the offset is not heard";
    EXPECT_EQ(eq.low_shelf.y1, -1e-25F);
    EXPECT_EQ(eq.peak.y1, 1e-25F);
    EXPECT_EQ(eq.high_shelf.y1, -1e-25F);
    eq.work(silence.data() + 1, 999);
    std::vector<float> expected(1000, 0.0F);
    plain_twin(twin, expected);
    EXPECT_EQ(silence, expected);
}

TEST(Eq3Band, DecaysInSilenceWithoutDenormals) {
    for (const float gain : {10.0F, 0.0001F}) {
        Eq3Band eq = equaliser(gain, gain, gain, 44100);
        auto loud = instruments::noise(6, 44100, 0.5);
        eq.work(loud.data(), 44100);
        int denormals = 0;
        float loudest = 0.0F;
        for (int i = 0; i < 10 * 44100; ++i) {
            float x = 0.0F;
            eq.work(&x, 1);
            for (const float v : {x, eq.low_shelf.y1, eq.peak.y1, eq.high_shelf.y1}) {
                denormals += instruments::is_denormal(v);
            }
            if (i > 9 * 44100) loudest = std::max(loudest, std::fabs(x));
        }
        EXPECT_EQ(denormals, 0);
        EXPECT_GT(loudest, 0.0F);
        EXPECT_LT(loudest, 2e-22F);  // 9.8e-23 measured
        EXPECT_GE(std::fabs(eq.low_shelf.y1), 1e-26F);
        EXPECT_GE(std::fabs(eq.peak.y1), 1e-26F);
        EXPECT_GE(std::fabs(eq.high_shelf.y1), 1e-26F);
    }
}

// A corner on or above half the sample rate must not fill the memories with not-a-number.
TEST(Eq3Band, StaysStableAtLowSampleRates) {
    for (const int rate : {1, 1000, 4000, 8000, 11025, 12000, 16000, 22050}) {
        for (const float gain : {10.0F, 1.0002F, 0.0001F}) {
            Eq3Band eq = equaliser(gain, gain, gain, rate);
            auto x = instruments::noise(7, 200000, 0.3);
            eq.work(x.data(), 200000);
            const double power = instruments::mean_square(x, 100000, 100000);  // 903 measured
            EXPECT_LT(power, 2000.0) << rate << " Hz, " << gain;
            EXPECT_TRUE(std::isfinite(eq.low_shelf.y1 + eq.peak.y1 + eq.high_shelf.y1));
        }
    }
}

}  // namespace
