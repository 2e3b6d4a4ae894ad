// SPDX-License-Identifier: MIT
#pragma once

extern "C" {
#include <libavutil/samplefmt.h>
}

#include <cstdint>

/// Decoded samples where they lie. Owns nothing.
struct SampleView {
    AVSampleFormat format = AV_SAMPLE_FMT_NONE;
    int channels = 0;
    int frames = 0;
    /// One plane per channel, or a single one with the channels in turn, as the format says.
    const std::uint8_t* const* planes = nullptr;
};

/// Writes the frames from `first` on as interleaved signed 16-bit samples, as many whole frames as
/// fit into `capacity` bytes. Returns the bytes written. [audio]
///
/// 16-bit samples are copied. Floats are scaled by 32,768, cut towards zero and clipped. The words
/// of a single channel of floats count as 32-bit integers and are clipped; such sound has to be
/// brought to 16 bits before it comes here. Any other format gives silence.
int interleave_samples(const SampleView& samples, int first, std::uint8_t* out, int capacity);
