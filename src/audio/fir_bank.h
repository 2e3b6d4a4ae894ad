// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>

/// Adds coef[j] × in[i] to out[i + j] for every i below `count` and j below `taps`: a direct-form
/// convolution that adds onto what `out` holds. `out` has count + taps − 1 samples and overlaps
/// neither `in` nor `coef`; `taps` is a multiple of 16. Any thread.
///
/// An output sums its products in the order of the inputs, so for finite input the result equals
/// that of the two plain nested loops bit for bit (but a −0 in `out` may become +0).
void convolution(const float* in, float* out, int taps, int count, const float* coef);

/// A bank of `Filters` linear-phase filters of `Taps` taps, run by overlap-add in passes of `Taps`
/// samples. A plain record without pointers; one thread at a time. [audio]
template <int Taps, int Filters>
struct FIR_bank {
    static constexpr int chunk = 128;  ///< the most samples one call of `Work` takes
    static constexpr int staging_size = Taps + chunk;
    static constexpr int band_size = 9 * Taps + chunk;
    /// The last position at which a pass, with its tail, fits into a band area.
    static constexpr int last_pass = band_size - 2 * Taps;

    std::array<float, staging_size> staging{};
    std::array<std::array<float, band_size>, Filters> bands{};
    std::array<std::array<float, Taps>, Filters> coefficients{};
    std::int32_t staged = 0;          ///< samples that wait in the staging area
    std::int32_t write_position = 0;  ///< where the next pass begins in every band area
    std::int32_t read_position = 0;   ///< the next sample to hand out

    /// Takes `n` samples (0 to 128) and writes `n` samples of each band to out[0 … Filters − 1].
    ///
    /// The bands come out late: zeros as long as too little is filtered (256 samples in chunks of
    /// 128), and the delay of the filters on top. What the staging area holds beyond a pass is not
    /// moved to its front, so only chunks that divide `Taps` keep the signal whole.
    void Work(const float* in, float** out, int n) {
        assert(n >= 0 && n <= chunk);
        std::copy_n(in, n, staging.begin() + staged);
        staged += n;
        hand_out(out, n);
        while (staged >= Taps) {
            if (write_position > last_pass) compact();
            pass();
            staged -= Taps;
            write_position += Taps;
        }
    }

  private:
    void hand_out(float** out, int n) {
        const bool ready = read_position + n <= write_position;
        for (int f = 0; f < Filters; ++f) {
            if (ready) {
                std::copy_n(bands[index(f)].begin() + read_position, n, out[f]);
            } else {
                std::fill_n(out[f], n, 0.0F);
            }
        }
        if (ready) read_position += n;
    }

    void compact() {
        for (auto& band : bands) {
            std::copy(band.begin() + read_position, band.begin() + write_position + Taps,
                      band.begin());
        }
        write_position -= read_position;
        read_position = 0;
    }

    void pass() {
        for (int f = 0; f < Filters; ++f) {
            float* band = bands[index(f)].data() + write_position;
            std::fill_n(band + Taps, Taps, 0.0F);
            convolution(staging.data(), band, Taps, Taps, coefficients[index(f)].data());
        }
    }

    static constexpr std::size_t index(int f) { return static_cast<std::size_t>(f); }
};
