// SPDX-License-Identifier: MIT
#pragma once

/// A three-band tone control for one channel: low shelf, peaking band and high shelf in cascade,
/// with the coefficients of the Audio EQ Cookbook at shelf slope 1. [audio]
///
/// A gain is the amplitude factor of its band: 1 leaves the band alone. Whoever owns the record
/// sets the gains and calls `update`, then `work`.
struct Eq3Band {
    /// One second-order section. After `update` a0 is 1, and a1 and a2 are to be added.
    struct Section {
        float a0 = 0, a1 = 0, a2 = 0;
        float b0 = 0, b1 = 0, b2 = 0;
        float y1 = 0, y2 = 0;  ///< the last two outputs, the latest first
    };

    Section low_shelf;
    Section peak;
    Section high_shelf;
    float x1 = 0, x2 = 0;  ///< the last two inputs, the latest first
    float low_frequency = 400;
    float peak_frequency = 2000;
    float peak_width = 2000;
    float high_frequency = 8000;
    float low_gain = 1;
    float mid_gain = 1;
    float high_gain = 1;

    /// Nothing but silence in the memories and gains of 1.
    Eq3Band() = default;

    /// Computes all coefficients for a sample rate in Hz. The memories stay.
    void update(float sample_rate);

    /// Filters `n` samples in place. With all three gains between 0.9999 and 1.0001 neither samples
    /// nor memories are touched.
    void work(float* samples, int n);
};

static_assert(sizeof(Eq3Band) == 33 * sizeof(float));

/// The equalisers of the left and of the right channel.
extern Eq3Band eq3band[2];
