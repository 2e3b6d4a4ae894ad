// SPDX-License-Identifier: MIT
#include "player/audio_fade.h"

#include "player/audio_state.h"

#include <algorithm>

namespace {

// The parts of a block that lie in the window, as ends of ranges of frames.
struct Parts {
    int begin;
    int rise_end;    ///< frames before it fade in
    int middle_end;  ///< frames before it are as they are, frames from it on fade out
    int end;

    Parts(int total, int start, int count, int flags, int fade_in, int fade_out) {
        begin = start;
        end = std::min(start + count, total);
        const int rise = flags & AudioBlock::fades_in ? fade_in : 0;
        const int fall = flags & AudioBlock::fades_out ? fade_out : 0;
        rise_end = std::clamp(rise, begin, std::max(begin, end));
        middle_end = std::clamp(total - fall, rise_end, std::max(rise_end, end));
    }
};

}  // namespace

void MIX(short& sample, int addend) {
    sample = static_cast<short>(std::clamp(sample + addend, -32768, 32767));
}

void audio_fadeinout_copy_mono(short* dst, const short* src, int total, int start, int count,
                               int flags, int fade_in, int fade_out) {
    const Parts parts(total, start, count, flags, fade_in, fade_out);
    int i = parts.begin;
    for (; i < parts.rise_end; ++i)
        MIX(dst[i - start], src[i] * i / fade_in);
    for (; i < parts.middle_end; ++i)
        dst[i - start] = src[i];
    for (; i < parts.end; ++i)
        MIX(dst[i - start], src[i] * (total - i) / fade_out);
}

void audio_fadeinout_copy_stereo(short* dst, const short* src, int total, int start, int count,
                                 int flags, int fade_in, int fade_out) {
    const Parts parts(total, start, count, flags, fade_in, fade_out);
    const auto mix = [=](int frame, int numerator, int denominator) {
        for (int channel = 0; channel < 2; ++channel) {
            MIX(dst[2 * (frame - start) + channel],
                src[2 * frame + channel] * numerator / denominator);
        }
    };
    int i = parts.begin;
    for (; i < parts.rise_end; ++i)
        mix(i, i, fade_in);
    for (; i < parts.middle_end; ++i)
        mix(i, 1, 1);
    for (; i < parts.end; ++i)
        mix(i, total - (i + 1), fade_out);
}
