// SPDX-License-Identifier: MIT
#pragma once

#include "audio/audio_converter.h"
#include "audio/circular_buffer.h"

/// What the processing needs of the stream that plays. Owns nothing; each field may be null.
struct AudioChain {
    AudioConverter* resampler_in = nullptr;   ///< the stream's samples to two float planes
    AudioConverter* resampler_out = nullptr;  ///< and back to 16-bit stereo
    CircularBuffer<float>* scope[2] = {};     ///< waveforms of the left and the right channel
};

/// The most sample frames a block may have: 65,536 bytes of 16-bit stereo.
inline constexpr int max_block_frames = AudioConverter::max_frames;

/// Runs one decoded block through the chain: to float, waveform, noise reduction, volume with
/// balance and width, equaliser, back to 16 bits. The settings are read anew for each block.
/// [audio]
///
/// `samples` holds `frames` interleaved frames of the stream on entry and as many interleaved
/// stereo frames on exit, so there must be room for the larger of the two. `channels` and `extra`
/// are not used. `sample_rate` is in Hz.
///
/// If a conversion fails, or its converter is null, or `frames` is not in 1 … max_block_frames,
/// "audio_resample() failed\n" goes to standard error. After a failure of the first conversion the
/// block stays as it was decoded. Takes 128 KiB of stack, no heap and no lock.
void audio_processor(const AudioChain& chain, short* samples, int frames, int channels, int extra,
                     int sample_rate);
