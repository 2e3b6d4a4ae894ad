// SPDX-License-Identifier: MIT
#include "player/audio_output.h"

#include "platform/threads.h"
#include "player/audio_blocks.h"
#include "player/audio_decoder.h"
#include "player/audio_start.h"
#include "player/audio_sync.h"
#include "player/clocks.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace {

constexpr int device_channels = 2;
constexpr Uint16 device_samples = 1024;
constexpr int scope_samples = 4096;
constexpr double sync_coefficient = 0.0005;
constexpr double sync_samples = 2048.0;
// Twice what the finest recordings have; the bytes of ten seconds still fit into an integer.
constexpr int highest_sample_rate = 12000000;
// With less, closing the device would have to wait for a buffer that lasts for seconds.
constexpr int lowest_sample_rate = 2000;
constexpr char unsupported[] = "Unsupported codec!\n";
constexpr std::int64_t device_patience = 2000000;  // microseconds

bool open_sdl_audio(SDL_AudioSpec* spec) {
    // Without a second argument the library converts to what the device takes.
    return SDL_OpenAudio(spec, nullptr) == 0;
}

void start_sdl_audio() {
    SDL_PauseAudio(0);
}

constexpr AudioDevice sdl_device = {open_sdl_audio, start_sdl_audio, SDL_CloseAudio};

std::atomic<const AudioDevice*> replaced_device{nullptr};

const AudioDevice& audio_device() {
    const AudioDevice* device = replaced_device;
    return device ? *device : sdl_device;
}

bool open_device(VideoState* is, int sample_rate) {
    SDL_AudioSpec& spec = is->audio->spec;
    spec.freq = sample_rate;
    spec.format = AUDIO_S16SYS;
    spec.channels = device_channels;
    spec.silence = 0;
    spec.samples = device_samples;
    spec.callback = audio_callback;
    spec.userdata = is;
    if (!audio_device().open(&spec)) {
        std::fprintf(stderr, "SDL_OpenAudio: %s\n", SDL_GetError());
        return false;
    }
    is->audio->hardware_bytes = spec.samples * is->audio->frame_bytes();
    return true;
}

// There is none for streams without a rate, or one out of this world, or with more channels than
// loudspeakers are known for.
bool open_chain(VideoState* is, const AVStream* stream) {
    const AVChannelLayout& layout = stream->codecpar->ch_layout;
    const int channels = layout.nb_channels;
    const int sample_rate = stream->codecpar->sample_rate;
    if (sample_rate < lowest_sample_rate || sample_rate > highest_sample_rate) return false;
    const std::uint64_t mask = layout.order == AV_CHANNEL_ORDER_NATIVE ? layout.u.mask : 0;
    is->audio_scope[0] = new CircularBuffer<float>(scope_samples);
    if (channels > 1) is->audio_scope[1] = new CircularBuffer<float>(scope_samples);
    is->resampler_in = AudioConverter::to_planes(channels, sample_rate, mask);
    is->resampler_out = AudioConverter::to_samples(sample_rate);
    return is->resampler_in && is->resampler_out;
}

bool prepare_decoding(VideoState* is, const AVStream* stream) {
    AudioOutput& out = *is->audio;
    AudioDecoding& decoding = out.decoding;
    decoding.packet.reset(av_packet_alloc());
    decoding.frame.reset(av_frame_alloc());
    decoding.time_base = stream->time_base;
    decoding.channels = stream->codecpar->ch_layout.nb_channels;
    decoding.sample_rate = stream->codecpar->sample_rate;
    decoding.delays = (is->audio_codec->codec->capabilities & AV_CODEC_CAP_DELAY) != 0;
    out.sync_coefficient = sync_coefficient;
    out.sync_threshold = sync_samples / decoding.sample_rate;
    return decoding.packet && decoding.frame;
}

// Closes the device at the end of the scope, unless it is to stay open.
class OpenDevice {
  public:
    OpenDevice() = default;
    ~OpenDevice() {
        if (!kept_) audio_device().close();
    }
    OpenDevice(const OpenDevice&) = delete;
    OpenDevice& operator=(const OpenDevice&) = delete;

    void keep() { kept_ = true; }

  private:
    bool kept_ = false;
};

bool open_decoder(VideoState* is, const AVStream* stream) {
    is->audio_codec = open_audio_decoder(stream);
    return is->audio_codec && prepare_decoding(is, stream);
}

StreamInfo audio_stream_info(const AVStream* stream, const AVCodecContext* codec) {
    StreamInfo info;
    info.codec_name = codec->codec->name;
    info.bit_rate = codec->bit_rate;
    info.channels = stream->codecpar->ch_layout.nb_channels;
    info.time_base = stream->time_base;
    return info;
}

// Whether the film stands still. The blocks wait where they are then.
bool check_pause(VideoState* is) {
    if (is->abort_request) return true;
    AudioOutput& out = *is->audio;
    if (is->paused) {
        out.was_paused = true;
        return true;
    }
    if (out.was_paused && !out.starting) resume_sound(is);
    out.was_paused = false;
    return false;
}

// Returns the bytes written.
int play(VideoState* is, Uint8* stream, int len) {
    AudioOutput& out = *is->audio;
    if (out.starting && !start_sound(is, len)) return 0;
    const int silent = static_cast<int>(std::min<std::int64_t>(len, out.silent_bytes));
    std::memset(stream, 0, static_cast<std::size_t>(silent));
    out.silent_bytes -= silent;
    if (silent == len) return len;
    const int written = mix_blocks(is, stream + silent, len - silent);
    if (!out.blocks[0].is_loaded() && !out.blocks[1].is_loaded()) out.starting = true;
    return silent + written;
}

// What the device hears of a film. Returns the bytes written.
int fill(VideoState* is, Uint8* stream, int len, double duration) {
    AudioOutput& out = *is->audio;
    if (check_pause(is)) return 0;
    if (!out.starting && out.silent_bytes == 0) note_drift(is, duration);
    const int written = play(is, stream, len);
    is->sound_over = out.starting && (out.decoding.draining || !out.decoding.delays);
    return written;
}

}  // namespace

const AudioDevice& sdl_audio_device() {
    return sdl_device;
}

void set_audio_device(const AudioDevice* device) {
    replaced_device = device;
}

void AudioOutput::forget_blocks() {
    for (AudioBlock& block : blocks)
        place_block(block, 0, output_position);
    for (AudioBlock& block : blocks)
        block.flags = 0;
    starting = true;
    silent_bytes = 0;
}

int open_audio(VideoState* is, AVStream* stream, int index) {
    is->audio = std::make_unique<AudioOutput>();
    if (!open_chain(is, stream)) {
        std::fputs(unsupported, stderr);
        return -1;
    }
    if (!open_device(is, stream->codecpar->sample_rate)) return -1;
    OpenDevice device;
    if (!open_decoder(is, stream)) {
        is->audio_codec.reset();
        return -1;
    }
    is->audio_stream = stream;
    is->audio_info = audio_stream_info(stream, is->audio_codec.get());
    is->audio_clock_time = wall_clock();
    packet_queue_init(&is->audio_queue);
    device.keep();
    is->audio_stream_index = index;
    audio_device().start();
    return 0;
}

void close_audio(VideoState* is) {
    packet_queue_abort(&is->audio_queue);
    audio_device().close();
    packet_queue_end(&is->audio_queue);
    is->audio_codec.reset();
    is->audio_stream = nullptr;
}

void audio_callback(void* userdata, Uint8* stream, int len) {
    set_thread_role(ThreadRole::audio);
    auto* is = static_cast<VideoState*>(userdata);
    // Set once everything else is: that SDL was told to start orders nothing between the threads.
    if (is->audio_stream_index < 0) {
        std::memset(stream, 0, static_cast<std::size_t>(len));
        return;
    }
    AudioOutput& out = *is->audio;
    const double duration = static_cast<double>(len) / out.bytes_per_second();
    out.wait_until = SDL_GetTicks() + static_cast<Uint32>(duration * 500.0);
    // Before a packet leaves the queue: [demux] always finds it or its sound.
    if (!is->paused && is->audio_queue.byte_size > 0) is->sound_over = false;
    note_audio_clock(is);
    audio_follow_seek(is);
    int written = 0;
    try {
        written = fill(is, stream, len, duration);
    } catch (const std::bad_alloc&) {
        out.forget_blocks();  // silence; what comes next may need less
    }
    std::memset(stream + written, 0, static_cast<std::size_t>(len - written));
}

bool sound_is_over(const VideoState* is) {
    return is->sound_over || wall_clock() - is->audio_clock_time > device_patience;
}
