// SPDX-License-Identifier: MIT
// Sound that follows a film: packets with any time stamps, clocks that jump, speeds, pauses and
// seeks, between calls of the device.

#include "core/settings.h"
#include "fuzz/fuzz_input.h"
#include "player/audio_decoder.h"
#include "player/clocks.h"
#include "support/sound_rig.h"

#include <cmath>

namespace {

constexpr AVCodecID codecs[] = {AV_CODEC_ID_PCM_S16LE, AV_CODEC_ID_PCM_F32LE, AV_CODEC_ID_PCM_U8,
                                AV_CODEC_ID_PCM_S32LE, AV_CODEC_ID_PCM_F64LE};
constexpr int rates[] = {8000, 22050, 44100, 48000, 96000, 192000};

PcmFormat take_format(FuzzInput& input) {
    PcmFormat format;
    format.codec = codecs[input.between(0, 4)];
    format.channels = input.between(1, 8);
    format.sample_rate = rates[input.between(0, 5)];
    if (input.between(0, 3) == 0) format.sample_rate = input.take<std::int32_t>();
    return format;
}

// Mostly near each other, sometimes anywhere.
double take_time(FuzzInput& input) {
    if (input.between(0, 7) == 0) return input.take<double>();
    return input.between(0, 20000) / 1000.0;
}

// What the rig takes as microseconds.
double as_stamp(double time) {
    return std::abs(time) < 1e12 ? time : SoundRig::no_time;
}

void put(SoundRig& rig, FuzzInput& input) {
    const double time = as_stamp(take_time(input));
    const auto count = static_cast<std::size_t>(input.between(1, 20000));
    const std::span<const std::uint8_t> pattern = input.bytes(16);
    std::vector<std::uint8_t> bytes(count);
    for (std::size_t i = 0; i < count && !pattern.empty(); ++i)
        bytes[i] = pattern[i % pattern.size()];
    rig.put(bytes.data(), bytes.size(), time);
}

void step(SoundRig& rig, FuzzInput& input) {
    VideoState& state = rig.state;
    switch (input.between(0, 11)) {
        case 0:
        case 1:
        case 2:
            put(rig, input);
            break;
        case 3:
            rig.add_film(take_time(input));
            break;
        case 4:
            rig.set_video_clock(take_time(input));
            break;
        case 5:
            rig.seek(input.between(0, 20000) / 1000.0);
            break;
        case 6:
            state.paused = !state.paused;
            break;
        case 7:
            state.playback_speed_index = input.between(0, playback_speeds.size() - 1);
            break;
        case 8:
            packet_queue_put_empty(&state.audio_queue, 0);
            break;
        case 9:
            state.sync_source = input.between(0, 3);
            master_settings.audio_latency.setValue(input.take<float>());
            break;
        case 10:
            SoundRig::now += input.between(0, 1) ? input.take<std::int32_t>() : 20000;
            break;
        default:
            state.video_clock_seeks = state.seeks_done.load();
    }
}

}  // namespace

// Who waits for a packet finds that the time is over.
extern "C" Uint32 SDLCALL SDL_GetTicks() {
    static Uint32 ticks = 0;
    return ticks += 100000;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    SoundRig rig(take_format(input));
    if (rig.opened != 0) return 0;
    for (int i = 0; i < 60 && !input.empty(); ++i) {
        step(rig, input);
        const int frames = input.between(0, 3) ? 1024 : input.between(1, 4096);
        const Shorts played = rig.play(frames);
        require(played.size() == 2 * static_cast<std::size_t>(frames), "the device got its sound");
    }
    return 0;
}
