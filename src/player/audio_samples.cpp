// SPDX-License-Identifier: MIT
#include "player/audio_samples.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int sample_bytes = 2;

short clip16(int value) {
    return static_cast<short>(std::clamp(value, -32768, 32767));
}

// Clipped before it becomes an integer, which not every float has; not-a-number is silence.
short from_float(float value) {
    const float scaled = value * 32768.0F;
    if (!(scaled > -32768.0F)) return scaled <= -32768.0F ? short{-32768} : short{0};
    return scaled < 32767.0F ? static_cast<short>(scaled) : short{32767};
}

// The sample of a channel in a frame, read as a T.
template <class T>
class Reader {
  public:
    explicit Reader(const SampleView& samples)
        : planes_(samples.planes),
          planar_(av_sample_fmt_is_planar(samples.format) != 0),
          channels_(static_cast<std::size_t>(samples.channels)) {}

    T operator()(std::size_t frame, std::size_t channel) const {
        const std::uint8_t* plane = planes_[planar_ ? channel : 0];
        const std::size_t index = planar_ ? frame : frame * channels_ + channel;
        T value;
        std::memcpy(&value, plane + index * sizeof(T), sizeof(T));
        return value;
    }

  private:
    const std::uint8_t* const* planes_;
    bool planar_;
    std::size_t channels_;
};

template <class T, class Convert>
void interleave(const SampleView& samples, int first, int count, std::uint8_t* out,
                Convert convert) {
    const Reader<T> read(samples);
    const auto channels = static_cast<std::size_t>(samples.channels);
    const auto begin = static_cast<std::size_t>(first);
    for (std::size_t i = begin; i < begin + static_cast<std::size_t>(count); ++i) {
        for (std::size_t c = 0; c < channels; ++c, out += sample_bytes) {
            const short value = convert(read(i, c));
            std::memcpy(out, &value, sample_bytes);
        }
    }
}

}  // namespace

int interleave_samples(const SampleView& samples, int first, std::uint8_t* out, int capacity) {
    if (samples.channels < 1) return 0;
    const int frame_bytes = samples.channels * sample_bytes;
    const int count = std::max(0, std::min(samples.frames - first, capacity / frame_bytes));
    const int bytes = count * frame_bytes;
    switch (samples.format) {
        case AV_SAMPLE_FMT_FLT:
        case AV_SAMPLE_FMT_FLTP:
            if (samples.channels == 1) {
                interleave<std::int32_t>(samples, first, count, out, clip16);
            } else {
                interleave<float>(samples, first, count, out, from_float);
            }
            break;
        case AV_SAMPLE_FMT_S16:
        case AV_SAMPLE_FMT_S16P:
            interleave<short>(samples, first, count, out, [](short value) { return value; });
            break;
        default:
            std::memset(out, 0, static_cast<std::size_t>(bytes));
            break;
    }
    return bytes;
}
