// SPDX-License-Identifier: MIT
#include "support/sound_rig.h"

#include "player/clocks.h"

#include <cmath>
#include <cstring>

std::int64_t SoundRig::now = 0;

namespace {

constexpr int time_base = 1000000;

constexpr AudioDevice no_device = {[](SDL_AudioSpec*) { return true; }, [] {}, [] {}};

AVStream* make_stream(VideoState& state, const PcmFormat& format) {
    state.format_context.reset(avformat_alloc_context());
    AVStream* stream = avformat_new_stream(state.format_context.get(), nullptr);
    stream->time_base = {1, time_base};
    AVCodecParameters* parameters = stream->codecpar;
    parameters->codec_type = AVMEDIA_TYPE_AUDIO;
    parameters->codec_id = format.codec;
    parameters->sample_rate = format.sample_rate;
    av_channel_layout_default(&parameters->ch_layout, format.channels);
    if (format.layout) av_channel_layout_from_mask(&parameters->ch_layout, format.layout);
    return stream;
}

}  // namespace

SoundRig::SoundRig(const PcmFormat& format) : format_(format) {
    av_log_set_level(AV_LOG_QUIET);
    now = 1000000000;
    set_wall_clock([] { return now; });
    set_audio_device(&no_device);
    state.audio_decoder_mutex = make_mutex();
    opened = open_audio(&state, make_stream(state, format), 0);
}

SoundRig::~SoundRig() {
    if (opened == 0) close_audio(&state);
    set_audio_device(nullptr);
    set_wall_clock(nullptr);
}

void SoundRig::put(const void* data, std::size_t bytes, double pts) {
    PacketPtr packet(av_packet_alloc());
    av_new_packet(packet.get(), static_cast<int>(bytes));
    std::memcpy(packet->data, data, bytes);
    if (pts != no_time) packet->pts = std::llround(pts * time_base);
    packet_queue_put(&state.audio_queue, packet.get());
}

Shorts SoundRig::play(int frames) {
    Shorts buffer(2 * static_cast<std::size_t>(frames), 0x5555);
    audio_callback(&state, reinterpret_cast<Uint8*>(buffer.data()), 4 * frames);
    set_thread_role(ThreadRole::unnamed);  // this thread goes on as the test's
    return buffer;
}

void SoundRig::add_film(double video_clock) {
    state.video_stream_index = 1;
    state.video_clock_seeks = state.seeks_done.load();
    set_video_clock(video_clock);
}

void SoundRig::set_video_clock(double seconds) {
    state.video_current_pts = seconds;
    state.video_current_pts_time = now;
}

void SoundRig::seek(double target) {
    state.seek_target = std::llround(target * 1e6);
    flush_packet()->pts = ++state.seeks_done;
    packet_queue_flush(&state.audio_queue);
    packet_queue_put(&state.audio_queue, flush_packet());
}
