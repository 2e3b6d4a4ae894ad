// SPDX-License-Identifier: MIT
// Blocks of sound on their way through: decoded samples of any form, conversion to planes and back,
// the processing with any settings, and fades.

#include "audio/audio_converter.h"
#include "audio/audio_processor.h"
#include "core/settings.h"
#include "fuzz/fuzz_input.h"
#include "player/audio_fade.h"
#include "player/audio_samples.h"
#include "player/audio_state.h"

extern "C" {
#include <libavutil/log.h>
}

#include <memory>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

// Exactly so many bytes on the heap: those of the input over and over.
Bytes block(FuzzInput& input, std::size_t size) {
    const std::span<const std::uint8_t> pattern = input.bytes(std::min<std::size_t>(size, 64));
    Bytes out(size);
    for (std::size_t i = 0; i < size && !pattern.empty(); ++i)
        out[i] = pattern[i % pattern.size()];
    return out;
}

void interleave(FuzzInput& input) {
    SampleView view;
    view.format = static_cast<AVSampleFormat>(input.between(-1, AV_SAMPLE_FMT_NB));
    view.channels = input.between(0, 9);
    view.frames = input.between(0, 300);
    const int capacity = input.between(0, 3000);
    const int first = input.between(0, 400);
    const auto channels = static_cast<std::size_t>(view.channels);
    const bool planar = av_sample_fmt_is_planar(view.format) != 0;
    const auto bytes = static_cast<std::size_t>(std::max(av_get_bytes_per_sample(view.format), 0)) *
                       static_cast<std::size_t>(view.frames) * (planar ? 1 : channels);
    std::vector<Bytes> planes(planar ? channels : 1);
    std::vector<const std::uint8_t*> places;
    for (Bytes& plane : planes) {
        plane = block(input, bytes);
        places.push_back(plane.data());
    }
    view.planes = places.data();
    const auto out = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(capacity));
    const int written = interleave_samples(view, first, out.get(), capacity);
    require(written >= 0 && written <= capacity, "no more than there is room for");
}

void set_sound(FuzzInput& input) {
    for (Value* value : {&master_settings.volume, &master_settings.balance, &master_settings.eq_low,
                         &master_settings.eq_mid, &master_settings.eq_high,
                         &master_settings.stereo_enhancer, &master_settings.audio_dnr_level})
        value->setValue(input.take<float>());
}

void process(FuzzInput& input) {
    const int channels = input.between(0, 9);
    const int rate = input.between(0, 1) ? input.take<std::int32_t>() : 48000;
    const auto in = AudioConverter::to_planes(channels, rate, input.take<std::uint64_t>());
    const auto out = AudioConverter::to_samples(rate);
    set_sound(input);
    CircularBuffer<float> scopes[2] = {CircularBuffer<float>(4096), CircularBuffer<float>(4096)};
    const AudioChain chain = {in.get(), out.get(), {&scopes[0], &scopes[1]}};
    for (int i = 0; i < 3; ++i) {
        const int frames =
            input.between(0, 1) ? input.between(0, 4096) : input.take<std::int16_t>();
        const auto samples = static_cast<std::size_t>(std::clamp(frames, 0, max_block_frames));
        const Bytes content =
            block(input, samples * static_cast<std::size_t>(std::max(channels, 2)) * 2);
        std::vector<short> words(content.size() / 2);
        if (!words.empty()) std::memcpy(words.data(), content.data(), words.size() * 2);
        audio_processor(chain, words.data(), frames, channels, 2, rate);
    }
}

void fade(FuzzInput& input) {
    const int total = input.between(1, 600);
    const int start = input.between(0, total);
    const int count = input.between(0, total - start);
    const int flags = input.between(0, 7);
    const int fade_in = input.between(0, total);
    const int fade_out = input.between(0, total - fade_in);
    for (const int channels : {1, 2}) {
        const auto all = static_cast<std::size_t>(total * channels);
        const Bytes content = block(input, all * 2);
        std::vector<short> from(all);
        std::memcpy(from.data(), content.data(), content.size());
        std::vector<short> to(static_cast<std::size_t>(count * channels), 12345);
        auto* copy = channels == 1 ? audio_fadeinout_copy_mono : audio_fadeinout_copy_stereo;
        copy(to.data(), from.data(), total, start, count, flags, fade_in, fade_out);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    av_log_set_level(AV_LOG_QUIET);
    FuzzInput input(data, size);
    for (int step = 0; step < 16 && !input.empty(); ++step) {
        switch (input.between(0, 2)) {
            case 0:
                interleave(input);
                break;
            case 1:
                process(input);
                break;
            default:
                fade(input);
        }
    }
    return 0;
}
