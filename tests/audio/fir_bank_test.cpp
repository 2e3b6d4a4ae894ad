// SPDX-License-Identifier: MIT
#include "audio/fir_bank.h"

#include "audio/instruments.h"
#include "audio/meyer_wavelet.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cstring>
#include <memory>
#include <type_traits>

namespace {

using Samples = std::vector<float>;
using Bank = FIR_bank<256, 7>;

bool same_bits(const Samples& a, const Samples& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), 4 * a.size()) == 0;
}

void plain_convolution(const Samples& in, float* out, const Samples& coef) {
    for (std::size_t i = 0; i < in.size(); ++i) {
        for (std::size_t j = 0; j < coef.size(); ++j)
            out[i + j] += coef[j] * in[i];
    }
}

/// Both forms onto the same old contents, with a guard before and behind.
void expect_equals_plain(const Samples& in, const Samples& coef, const Samples& old) {
    constexpr std::size_t guard = 16;
    Samples expected(in.size() + coef.size() - 1 + 2 * guard, 7.0F);
    for (std::size_t i = 0; i < expected.size() - 2 * guard; ++i) {
        expected[guard + i] = old[i % old.size()];
    }
    Samples actual = expected;
    plain_convolution(in, expected.data() + guard, coef);
    convolution(in.data(), actual.data() + guard, static_cast<int>(coef.size()),
                static_cast<int>(in.size()), coef.data());
    EXPECT_TRUE(same_bits(actual, expected)) << coef.size() << " taps, " << in.size() << " samples";
}

TEST(Convolution, EqualsThePlainLoopsBitForBit) {
    for (const int taps : {16, 32, 48, 240, 256, 272, 512}) {
        for (const int count : {0, 1, 7, 8, 9, 15, 16, 100, 256, 301}) {
            expect_equals_plain(instruments::noise(1, count, 1.0), instruments::noise(2, taps, 1.0),
                                instruments::noise(3, 99, 1.0));
        }
    }
}

TEST(Convolution, EqualsThePlainLoopsOnExtremeInput) {
    const Samples extremes = {FLT_MAX, -FLT_MAX, FLT_MIN, -FLT_MIN, 1e-45F, -1e-45F, 0.0F,
                              1.0F,    -1.0F,    3e20F,   -3e20F,   1e-30F, 0.5F};
    Samples in;
    for (int i = 0; i < 250; ++i)
        in.push_back(extremes[static_cast<std::size_t>(i * 7) % 13]);
    for (const double scale : {1e-30, 1e-5, 1.0, 1e15}) {
        expect_equals_plain(in, instruments::noise(1, 256, scale), {0.0F});
        expect_equals_plain(in, instruments::noise(2, 32, scale), {1e30F, -1e-40F});
    }
}

TEST(Convolution, ImpulseCopiesTheCoefficients) {
    const Samples coef = instruments::noise(3, 64, 1.0);
    for (int place = 0; place < 20; ++place) {
        Samples in(20, 0.0F);
        in[static_cast<std::size_t>(place)] = 1.0F;
        Samples out(20 + 63, 0.0F);
        convolution(in.data(), out.data(), 64, 20, coef.data());
        for (int i = 0; i < 83; ++i) {
            const int tap = i - place;
            const float expected =
                tap >= 0 && tap < 64 ? coef[static_cast<std::size_t>(tap)] : 0.0F;
            ASSERT_EQ(out[static_cast<std::size_t>(i)], expected);
        }
    }
}

TEST(FirBank, IsAPlainRecordOfZeros) {
    static_assert(std::is_trivially_copyable_v<Bank> && std::is_standard_layout_v<Bank>);
    static_assert(sizeof(Bank) == 4 * (384 + 7 * 2432 + 7 * 256 + 3));
    const auto bank = std::make_unique<Bank>();
    const Samples zeros(sizeof(Bank) / 4, 0.0F);
    EXPECT_EQ(std::memcmp(bank.get(), zeros.data(), sizeof(Bank)), 0);

    const auto place = [&](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(bank.get());
    };
    EXPECT_EQ(place(&bank->staging), 0);
    EXPECT_EQ(place(&bank->bands), 4 * 384);
    EXPECT_EQ(place(&bank->coefficients), 4 * (384 + 7 * 2432));
    EXPECT_EQ(place(&bank->staged), 4 * (384 + 7 * 2432 + 7 * 256));
    EXPECT_EQ(place(&bank->write_position), place(&bank->staged) + 4);
    EXPECT_EQ(place(&bank->read_position), place(&bank->staged) + 8);
}

std::unique_ptr<Bank> meyer_bank() {
    auto bank = std::make_unique<Bank>();
    bank->coefficients = meyer_wavelet_filters;
    return bank;
}

/// The bank as it is described, but with band areas that never end, so that nothing has to move.
class EndlessBank {
  public:
    /// Appends to every band what comes out.
    void work(const Samples& in, std::array<Samples, 7>& out) {
        std::copy(in.begin(), in.end(), staging_.begin() + staged_);
        staged_ += static_cast<long>(in.size());
        const bool ready = read_ + in.size() <= written_;
        for (std::size_t f = 0; f < 7; ++f) {
            Samples samples(in.size(), 0.0F);
            if (ready) std::copy_n(bands_[f].begin() + long(read_), in.size(), samples.begin());
            out[f].insert(out[f].end(), samples.begin(), samples.end());
        }
        if (ready) read_ += in.size();
        for (; staged_ >= 256; staged_ -= 256)
            pass();
    }

  private:
    void pass() {
        const Samples first(staging_.begin(), staging_.begin() + 256);
        for (std::size_t f = 0; f < 7; ++f) {
            bands_[f].resize(written_ + 512, 0.0F);
            plain_convolution(first, bands_[f].data() + written_,
                              {meyer_wavelet_filters[f].begin(), meyer_wavelet_filters[f].end()});
        }
        written_ += 256;
    }

    Samples staging_ = Samples(384, 0.0F);
    long staged_ = 0;
    std::array<Samples, 7> bands_;
    std::size_t read_ = 0;
    std::size_t written_ = 0;
};

/// Runs `in` through the bank in chunks of the given lengths, in turn.
std::array<Samples, 7> run(Bank& bank, const Samples& in, const std::vector<int>& lengths) {
    std::array<Samples, 7> out;
    for (auto& band : out)
        band.resize(in.size());
    std::size_t turn = 0;
    for (std::size_t i = 0; i < in.size();) {
        const int n = std::min(lengths[turn++ % lengths.size()], static_cast<int>(in.size() - i));
        float* bands[7];
        for (std::size_t f = 0; f < 7; ++f)
            bands[f] = out[f].data() + i;
        bank.Work(in.data() + i, bands, n);
        i += static_cast<std::size_t>(n);
    }
    return out;
}

std::array<Samples, 7> run_endless(const Samples& in, const std::vector<int>& lengths) {
    EndlessBank bank;
    std::array<Samples, 7> out;
    std::size_t turn = 0;
    for (std::size_t i = 0; i < in.size();) {
        const auto wanted = static_cast<std::size_t>(lengths[turn++ % lengths.size()]);
        const std::size_t n = std::min(wanted, in.size() - i);
        bank.work(Samples(in.begin() + long(i), in.begin() + long(i + n)), out);
        i += n;
    }
    return out;
}

TEST(FirBank, WholeChunksGiveTheInputFilteredAndLateBy256) {
    const Samples in = instruments::noise(11, 128 * 100, 0.5);
    const auto bands = run(*meyer_bank(), in, {128});
    for (std::size_t f = 0; f < 7; ++f) {
        Samples expected(256 + in.size() + 255, 0.0F);
        plain_convolution(in, expected.data() + 256,
                          {meyer_wavelet_filters[f].begin(), meyer_wavelet_filters[f].end()});
        expected.resize(in.size());
        EXPECT_TRUE(same_bits(bands[f], expected)) << "band " << f;
    }
}

TEST(FirBank, BandsAddUpToTheInputLateBy384) {
    Samples in(128 * 40, 0.0F);
    in[500] = 1.0F;
    const auto bands = run(*meyer_bank(), in, {128});
    for (std::size_t i = 0; i < in.size(); ++i) {
        double sum = 0.0;
        for (const auto& band : bands)
            sum += double(band[i]);
        ASSERT_NEAR(sum, i == 500 + 384 ? 1.0 : 0.0, 1e-7) << i;  // 2.1e-8 measured
    }
}

TEST(FirBank, AnyLengthsEqualTheEndlessTwin) {
    const Samples in = instruments::noise(12, 15000, 0.5);
    std::vector<int> random;
    std::mt19937 generator(1);
    for (int i = 0; i < 500; ++i)
        random.push_back(static_cast<int>(generator() % 129));
    for (const std::vector<int>& lengths : {std::vector<int>{128},
                                            {64},
                                            {1},
                                            {127},
                                            {100},
                                            {128, 3},
                                            {128, 128, 44},
                                            {0, 77},
                                            random}) {
        const auto actual = run(*meyer_bank(), in, lengths);
        const auto expected = run_endless(in, lengths);
        for (std::size_t f = 0; f < 7; ++f) {
            ASSERT_TRUE(same_bits(actual[f], expected[f]))
                << "band " << f << ", lengths from " << lengths[0];
        }
    }
}

// With chunks of 128 a remainder never arises; other lengths leave one, which stays where it is.
TEST(FirBank, RemainderOfAPassIsNotMovedToTheFront) {
    const auto bank = meyer_bank();
    Samples in(300, 0.0F);
    for (std::size_t i = 0; i < in.size(); ++i)
        in[i] = static_cast<float>(i);
    run(*bank, in, {100});
    EXPECT_EQ(bank->staged, 44);
    EXPECT_EQ(bank->staging[0], 0.0F);
    EXPECT_EQ(bank->staging[299], 299.0F);
    run(*bank, {-1.0F}, {1});
    EXPECT_EQ(bank->staging[44], -1.0F);
    EXPECT_EQ(bank->staging[43], 43.0F);
}

TEST(FirBank, PositionsStayWithinTheBandAreas) {
    const auto bank = meyer_bank();
    int highest = 0;
    std::vector<int> staged;
    for (int i = 0; i < 1000; ++i) {
        run(*bank, Samples(128, 1.0F), {128});
        highest = std::max(highest, bank->write_position);
        if (i < 4) staged.push_back(bank->staged);
        ASSERT_LE(bank->read_position, bank->write_position);
    }
    EXPECT_EQ(highest, 2048) << "whole chunks: the samples move when 2048 are filtered";
    EXPECT_EQ(staged, (std::vector<int>{128, 0, 128, 0}));

    std::mt19937 generator(2);
    for (int i = 0; i < 10000; ++i) {
        const auto n = static_cast<int>(generator() % 129);
        run(*bank, Samples(static_cast<std::size_t>(n), 1.0F), {n});
        ASSERT_LE(bank->write_position + 256, 2432) << "the tail of the last pass ends inside";
    }
}

}  // namespace
