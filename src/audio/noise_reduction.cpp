// SPDX-License-Identifier: MIT
#include "audio/noise_reduction.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float drop = std::numeric_limits<float>::max();  // the threshold of a band that goes
constexpr float share = 0.9F;

/// Left and right become the side (left − right) and the middle (their mean).
void split(float* left, float* right, int n) {
    for (int i = 0; i < n; ++i) {
        left[i] = left[i] - right[i];
        right[i] = right[i] + left[i] * 0.5F;
    }
}

/// The reverse of `split`.
void join(float* side, float* middle, int n) {
    for (int i = 0; i < n; ++i) {
        middle[i] = middle[i] - side[i] * 0.5F;
        side[i] = side[i] + middle[i];
    }
}

}  // namespace

float measure_energy(const float* x, int n) {
    float sum = 0.0F;
    for (int i = 0; i < n; ++i)
        sum += x[i] * x[i];
    return sum;
}

NoiseReduction::NoiseReduction() {
    bank.coefficients = meyer_wavelet_filters;
}

void NoiseReduction::work(float* left, float* right, int n) {
    Call call;
    call.gains.fill(1.0F);
    call.thresholds.fill(0.0F);
    split(left, right, n);
    for (int i = 0; i < n; i += bank.chunk) {
        work_chunk(call, left + i, right + i, std::min(bank.chunk, n - i));
    }
}

void NoiseReduction::work_chunk(Call& call, float* side, float* middle, int n) {
    float samples[bands][2 * decltype(bank)::chunk];
    float* band[bands];
    for (int b = 0; b < bands; ++b)
        band[b] = samples[b];
    bank.Work(side, band, n);
    follow_energies(band, n);
    set_thresholds(call);

    std::fill_n(side, n, 0.0F);
    for (std::size_t b = 0; b < bands; ++b) {
        float* const x = samples[b];
        const float threshold = call.thresholds[b];
        if (threshold == drop) {
            call.gains[b] = 0.0F;
        } else {
            for (int i = 0; i < n; ++i)
                softthresh(x[i], threshold);
        }
        for (int i = 0; i < n; ++i)
            side[i] += x[i] * call.gains[b];
    }
    join(side, middle, n);
}

// The floor follows its band slowly and the other energies quickly, so the weights are exchanged.
void NoiseReduction::follow_energies(float* const (&band)[bands], int n) {
    noise_energy = share * noise_energy + (1.0F - share) * measure_energy(band[0], n);
    band_energies[0] = noise_energy;
    for (std::size_t b = 1; b < bands; ++b) {
        band_energies[b] = share * measure_energy(band[b], n) + (1.0F - share) * band_energies[b];
    }
}

void NoiseReduction::set_thresholds(Call& call) const {
    const float strength = noise_energy * (level / 16.0F);
    for (std::size_t b = 0; b < bands; ++b) {
        const float above = band_energies[b] - noise_energy;
        call.thresholds[b] = above > 0.0F
                                 ? static_cast<float>(static_cast<double>(strength) /
                                                      std::sqrt(static_cast<double>(above)))
                                 : drop;
    }
}
