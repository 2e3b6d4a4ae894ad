// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// Volume, balance and stereo width of a pair of channels, with gains that glide to a new setting
/// sample by sample. [audio]
struct VolPanControl {
    float left_gain = 1;  ///< where the gains stand, linear
    float right_gain = 1;
    float left_target = 1;  ///< where they are going
    float right_target = 1;
    float smoothing = 0;  ///< the share of the distance covered per sample; see `update`
    std::int32_t first_block = 1;
    float balance = 0;            ///< −1 (left only) to 1 (right only)
    float volume = 0;             ///< in decibels; 10 of them are a factor of 10
    float smoothing_time = 0.1F;  ///< in seconds, for 60 dB of the distance
    float width = 0.5F;           ///< 0 mono, 0.5 as it is, 1 widest

    VolPanControl();

    /// Computes the smoothing coefficient from the smoothing time, for 44100 Hz whatever the rate
    /// of the stream. Called by the constructor alone.
    void update();

    /// Applies gain, balance and width to `n` samples of both planes in place. The first block
    /// after construction takes its gains at once.
    ///
    /// A gain counts as settled within 1e-6 of its target at the end of a block. In single
    /// precision the glide to a gain near 1 comes to rest 2e-5 short of it, which is −94 dB: such a
    /// gain stays there and goes on being smoothed.
    void work(float* left, float* right, int n);
};

/// The volume stage of the player.
extern VolPanControl vol_pan_control;
