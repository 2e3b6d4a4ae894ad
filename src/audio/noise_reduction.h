// SPDX-License-Identifier: MIT
#pragma once

#include "audio/fir_bank.h"
#include "audio/meyer_wavelet.h"

#include <array>

/// The sum of the squares of `n` samples.
float measure_energy(const float* x, int n);

/// Moves `x` towards zero by `t`; what lies within ±t becomes zero.
inline void softthresh(float& x, float t) {
    if (x < -t) {
        x += t;
    } else if (x > t) {
        x -= t;
    } else {
        x = 0.0F;
    }
}

/// What lies strictly within ±t becomes zero; the rest stays.
inline void hardthresh(float& x, float t) {
    if (-t < x && x < t) x = 0.0F;
}

/// Removes hiss from the difference of two channels. [audio]
///
/// The side signal (left − right) is split into seven bands. The energy of the highest one is taken
/// for the floor of the noise; every other band shrinks by a threshold that grows with the floor
/// and with the level, and is dropped where it does not rise above the floor. The highest band is
/// always dropped. The side signal comes out late by the latency of the bank (384 samples in blocks
/// of whole chunks) and is not brought back into line with the middle.
struct NoiseReduction {
    static constexpr int bands = meyer_filters;

    FIR_bank<meyer_taps, meyer_filters> bank;
    float noise_energy = 0;                    ///< follows the energy of the highest band slowly
    std::array<float, bands> band_energies{};  ///< follow quickly; the first one is the noise
    float level = 0;                           ///< the strength, 0 to 1024

    NoiseReduction();

    /// Denoises `n` samples of both planes in place. The state stays from call to call, but for
    /// this: a band that was dropped contributes nothing for the rest of the call.
    void work(float* left, float* right, int n);

  private:
    /// What holds for one call of `work`.
    struct Call {
        std::array<float, bands> gains;
        std::array<float, bands> thresholds;
    };

    void work_chunk(Call& call, float* side, float* middle, int n);
    void follow_energies(float* const (&band)[bands], int n);
    void set_thresholds(Call& call) const;
};

/// The noise reduction of the player.
extern NoiseReduction audio_noisereduction;
