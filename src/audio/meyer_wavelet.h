// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

/// The band filters of the noise reduction: `meyer_filters` linear-phase filters of `meyer_taps`
/// taps, the highest band first. Each is symmetric about tap 128; together they make a unit impulse
/// there, so that the bands add up to the input 128 samples late.
///
/// Source: frequency sampling of a cascade of low-pass filters that fall like the scaling function
/// of the Meyer wavelet. A band is what one low-pass keeps and the next one drops.
inline constexpr int meyer_filters = 7;
inline constexpr int meyer_taps = 256;

using MeyerTable = std::array<std::array<float, meyer_taps>, meyer_filters>;

/// The table that the noise reduction uses, computed by the compiler. Any thread.
extern const MeyerTable meyer_wavelet_filters;

namespace meyer_detail {

inline constexpr double pi = 3.14159265358979323846;
inline constexpr int nyquist = meyer_taps / 2;

/// Cosine from 0 to π/2 by its power series, within 2e-16; std::cos is no constant expression.
constexpr double cosine(double x) {
    double sum = 1.0;
    double term = 1.0;
    for (int n = 1; n <= 24; n += 2) {
        term *= -x * x / (n * (n + 1));
        sum += term;
    }
    return sum;
}

/// cos(2 π j / 256)
constexpr double cosine_of_bin(int j) {
    j %= meyer_taps;
    if (j > nyquist) j = meyer_taps - j;
    const bool second_quadrant = j > nyquist / 2;
    if (second_quadrant) j = nyquist - j;
    const double c = cosine(2.0 * pi * j / meyer_taps);
    return second_quadrant ? -c : c;
}

/// The response of low-pass `i` (0 … 5) at a bin: it falls from 1 to 0 between half its edge and
/// its edge. The edges are the bins 127, 127/4, 127/8, 127/16, 127/32 and 127/64.
constexpr double low_pass(int i, int bin) {
    if (bin == nyquist) return 0.0;
    const double high = 127.0 / (i == 0 ? 1 : 2 << i);
    const double low = high / 2.0;
    if (bin < low) return 1.0;
    if (bin > high) return 0.0;
    const double x = (bin - low) / (high - low);
    const double c = cosine(pi / 2.0 * (x * x * (3.0 - 2.0 * x)));
    return c * c;
}

}  // namespace meyer_detail

/// The response of one filter (0 … 6) at a bin from 0 (the mean) to 128 (Nyquist).
constexpr double meyer_response(int filter, int bin) {
    using namespace meyer_detail;
    const bool at_nyquist = bin == nyquist;
    if (filter == 0) return at_nyquist ? 0.0 : 1.0 - low_pass(0, bin);
    if (filter == meyer_filters - 1) return at_nyquist ? 1.0 : low_pass(filter - 1, bin);
    return low_pass(filter - 1, bin) - low_pass(filter, bin);
}

/// The taps of one filter (0 … 6) before they are rounded to single precision.
constexpr std::array<double, meyer_taps> meyer_filter(int filter) {
    using namespace meyer_detail;
    std::array<double, meyer_taps> cosines{};
    std::array<double, nyquist + 1> response{};
    for (int j = 0; j < meyer_taps; ++j)
        cosines[static_cast<std::size_t>(j)] = cosine_of_bin(j);
    for (int k = 0; k <= nyquist; ++k) {
        response[static_cast<std::size_t>(k)] = meyer_response(filter, k);
    }
    std::array<double, meyer_taps> taps{};
    for (std::size_t m = 0; m <= nyquist; ++m) {
        double sum = response[0] + (m % 2 == 0 ? response[nyquist] : -response[nyquist]);
        for (std::size_t k = 1; k < nyquist; ++k) {
            sum += 2.0 * response[k] * cosines[k * m % meyer_taps];
        }
        taps[nyquist - m] = sum / meyer_taps;
        if (m < nyquist) taps[nyquist + m] = sum / meyer_taps;
    }
    return taps;
}
