// SPDX-License-Identifier: MIT
#include "audio/meyer_wavelet.h"

#include "audio/instruments.h"

#include <gtest/gtest.h>

namespace {

/// The same taps from the standard library's cosine, term by term.
double plain_tap(int filter, int n) {
    const auto low_pass = [](int i, int k) {
        const double divisors[] = {1.0, 4.0, 8.0, 16.0, 32.0, 64.0};
        const double high = 127.0 / divisors[i];
        const double x = std::clamp((k - high / 2.0) / (high / 2.0), 0.0, 1.0);
        return k == 128 ? 0.0
                        : std::pow(std::cos(instruments::pi / 2.0 * x * x * (3.0 - 2.0 * x)), 2);
    };
    double sum = 0.0;
    for (int k = -127; k <= 128; ++k) {
        const int bin = std::abs(k);
        double weight = (filter == 0 ? 1.0 : low_pass(filter - 1, bin)) -
                        (filter == 6 ? 0.0 : low_pass(filter, bin));
        if (bin == 128) weight = filter == 6 ? 1.0 : 0.0;
        sum += weight * std::cos(2.0 * instruments::pi * k * (n - 128) / 256.0);
    }
    return sum / 256.0;
}

TEST(MeyerWavelet, EqualsThePlainSums) {
    for (int f = 0; f < 7; ++f) {
        const auto taps = meyer_filter(f);
        for (int n = 0; n < 256; ++n) {
            ASSERT_NEAR(taps[static_cast<std::size_t>(n)], plain_tap(f, n),
                        4e-15);  // 1.8e-15 measured
        }
    }
}

TEST(MeyerWavelet, TableIsTheRoundedFilters) {
    for (std::size_t f = 0; f < 7; ++f) {
        const auto taps = meyer_filter(static_cast<int>(f));
        for (std::size_t n = 0; n < 256; ++n) {
            ASSERT_EQ(meyer_wavelet_filters[f][n], static_cast<float>(taps[n]));
        }
    }
}

TEST(MeyerWavelet, FiltersAreSymmetricAboutTap128) {
    for (const auto& filter : meyer_wavelet_filters) {
        for (std::size_t k = 1; k < 128; ++k)
            ASSERT_EQ(filter[128 - k], filter[128 + k]);
    }
}

TEST(MeyerWavelet, FiltersAddUpToAUnitImpulse) {
    for (std::size_t n = 0; n < 256; ++n) {
        double exact = 0.0;
        double rounded = 0.0;
        for (std::size_t f = 0; f < 7; ++f) {
            exact += meyer_filter(static_cast<int>(f))[n];
            rounded += double(meyer_wavelet_filters[f][n]);
        }
        const double impulse = n == 128 ? 1.0 : 0.0;
        ASSERT_NEAR(exact, impulse, 2e-15) << n;   // 1.2e-16 measured
        ASSERT_NEAR(rounded, impulse, 1e-7) << n;  // 2.1e-8 measured
    }
}

TEST(MeyerWavelet, CentreAndFirstTaps) {
    const double centres[] = {0.251953, 0.558105, 0.093018, 0.046511, 0.023286, 0.011501, 0.015625};
    for (std::size_t f = 0; f < 7; ++f) {
        EXPECT_NEAR(double(meyer_wavelet_filters[f][128]), centres[f], 5e-7) << f;
    }
    EXPECT_NEAR(double(meyer_wavelet_filters[0][0]), -0.003906, 5e-7);
    EXPECT_NEAR(double(meyer_wavelet_filters[0][1]), 0.003906, 5e-7);
    EXPECT_NEAR(double(meyer_wavelet_filters[0][2]), -0.003906, 5e-7);
}

TEST(MeyerWavelet, LowestFilterAlternatesAroundItsCentre) {
    for (std::size_t n = 120; n <= 136; ++n) {
        EXPECT_NEAR(double(meyer_wavelet_filters[6][n]), n % 2 == 0 ? 0.0156 : 0.0078, 2e-4) << n;
    }
}

double response(std::size_t filter, double fraction_of_nyquist) {
    double sum = 0.0;
    for (std::size_t n = 0; n < 256; ++n) {
        sum += double(meyer_wavelet_filters[filter][n]) *
               std::cos(instruments::pi * fraction_of_nyquist * (double(n) - 128.0));
    }
    return sum;
}

TEST(MeyerWavelet, PassBandsAreDyadicHighestFirst) {
    struct Band {
        double from, to;  // where the response passes one half
    };
    constexpr double margin = 0.005;  // a little more than half the distance of the bins
    const Band bands[] = {{0.75, 1.0},    {0.19, 0.74},   {0.094, 0.19}, {0.047, 0.092},
                          {0.023, 0.045}, {0.014, 0.021}, {0.0, 0.012}};
    for (std::size_t f = 0; f < 7; ++f) {
        const Band band = bands[f];
        SCOPED_TRACE(f);
        EXPECT_GT(response(f, (band.from + band.to) / 2.0), 0.5);
        if (f > 0) {
            EXPECT_LT(response(f, band.to + margin), 0.5);
            EXPECT_GT(response(f, band.to - margin), 0.5);
        }
        if (f < 6) {
            EXPECT_LT(response(f, band.from - margin), 0.5);
            EXPECT_GT(response(f, band.from + margin), 0.5);
        }
    }
}

TEST(MeyerWavelet, NyquistBelongsToTheLowestFilter) {
    for (std::size_t f = 0; f < 6; ++f)
        EXPECT_NEAR(response(f, 1.0), 0.0, 1e-6) << f;
    EXPECT_NEAR(response(6, 1.0), 1.0, 1e-6);
    EXPECT_NEAR(response(6, 127.0 / 128.0), 0.0, 1e-6) << "a narrow sliver";
    EXPECT_GT(response(0, 127.0 / 128.0), 0.5);
}

}  // namespace
