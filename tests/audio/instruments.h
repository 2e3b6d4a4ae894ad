// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <random>
#include <vector>

/// Test signals and the instruments that measure them.
namespace instruments {

inline constexpr double pi = 3.14159265358979323846;

inline std::vector<float> sine(double frequency, double sample_rate, int count, double amplitude) {
    std::vector<float> x(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double phase = 2.0 * pi * frequency * static_cast<double>(i) / sample_rate;
        x[i] = static_cast<float>(amplitude * std::sin(phase));
    }
    return x;
}

/// Normally distributed noise; the same for the same seed.
inline std::vector<float> noise(unsigned seed, int count, double deviation) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal(0.0, deviation);
    std::vector<float> x(static_cast<std::size_t>(count));
    for (float& sample : x)
        sample = static_cast<float>(normal(generator));
    return x;
}

/// Amplitude and phase of one frequency over samples from `first` on. Exact where `count` samples
/// hold a whole number of periods.
inline std::complex<double> tone(const std::vector<float>& x, std::size_t first, std::size_t count,
                                 double frequency, double sample_rate) {
    std::complex<double> sum = 0.0;
    for (std::size_t i = first; i < first + count; ++i) {
        const double phase = 2.0 * pi * frequency * static_cast<double>(i) / sample_rate;
        sum += static_cast<double>(x[i]) * std::polar(1.0, -phase);
    }
    return sum * 2.0 / static_cast<double>(count);
}

inline double decibels(double ratio) {
    return 20.0 * std::log10(ratio);
}

inline double mean_square(const std::vector<float>& x, std::size_t first, std::size_t count) {
    double sum = 0.0;
    for (std::size_t i = first; i < first + count; ++i) {
        sum += static_cast<double>(x[i]) * static_cast<double>(x[i]);
    }
    return sum / static_cast<double>(count);
}

inline bool is_denormal(float x) {
    return std::fpclassify(x) == FP_SUBNORMAL;
}

}  // namespace instruments
