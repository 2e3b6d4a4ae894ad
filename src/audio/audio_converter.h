// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

/// Converts blocks of sound between 16-bit samples as they are decoded or played and the pair of
/// float planes that the processing works on. Full scale is ±1.
///
/// The sample rate stays, nothing is held back: a call gives as many frames as it takes. Made and
/// destroyed by the thread that owns the stream; used by one thread at a time. [audio]
class AudioConverter {
  public:
    /// The most frames one call converts.
    static constexpr int max_frames = 16384;

    /// From interleaved 16-bit samples of `channels` channels to stereo. One channel goes to both
    /// sides unchanged; more than two are mixed down so that no sum exceeds full scale.
    /// `layout_mask` says which loudspeakers the channels belong to; 0, or a mask that does not fit
    /// the channels or cannot be mixed down, stands for the usual layout of that many channels.
    /// Null where there is none, or where memory is short.
    static std::unique_ptr<AudioConverter> to_planes(int channels, int sample_rate,
                                                     std::uint64_t layout_mask = 0);

    /// From stereo planes to interleaved 16-bit stereo, which saturates (up to ±65,535, thousands
    /// of times what the processing can make of full scale). Null on failure.
    static std::unique_ptr<AudioConverter> to_samples(int sample_rate);

    AudioConverter(const AudioConverter&) = delete;
    AudioConverter& operator=(const AudioConverter&) = delete;
    ~AudioConverter();

    /// Converts `frames` frames and returns how many came out; below 1 on failure, which includes a
    /// converter of the other direction and a number of frames outside 1 … `max_frames`. Neither
    /// allocates nor locks.
    int convert(const short* samples, float* left, float* right, int frames);
    int convert(const float* left, const float* right, short* samples, int frames);

  private:
    struct Context;
    explicit AudioConverter(std::unique_ptr<Context> context);

    static std::unique_ptr<AudioConverter> make(Context&& opened, int channels);
    bool prime(int channels);

    std::unique_ptr<Context> context_;
};
