// SPDX-License-Identifier: MIT
#include "player/audio_decoder.h"

#include "platform/threads.h"
#include "player/audio_resampling.h"
#include "player/clocks.h"

#include <algorithm>
#include <cstdio>

namespace {

// More packets in a row that give no sound would keep the device waiting.
constexpr int most_packets = 16;

void flush_decoder(VideoState* is) {
    const MutexLock lock(is->audio_decoder_mutex);
    avcodec_flush_buffers(is->audio_codec.get());
    is->audio->decoding.draining = false;
}

// The flush packet came through: the film plays from another place now.
void start_again(VideoState* is) {
    AudioOutput& out = *is->audio;
    flush_decoder(is);
    out.decoding.packet_waits = false;
    out.decoding.frames = out.decoding.taken = 0;
    out.decoding.resampler_format = -1;  // it holds samples back
    out.decode_clock = static_cast<double>(is->seek_target) / 1000000.0;
    out.forget_blocks();
    out.held_bytes = 0;
    if (is->video_stream_index < 0) is->seeks_seen = static_cast<int>(out.decoding.packet->pts);
}

// Gets samples out of packets, for one block.
class SampleSource {
  public:
    explicit SampleSource(VideoState* is)
        : is_(is), out_(*is->audio), decoding_(is->audio->decoding) {}

    // Returns 1 when there are samples to hand out, else what `audio_decode_frame` returns.
    int fill() {
        while (decoding_.taken >= decoding_.frames) {
            if (decoding_.packet_waits) send();
            const int result = receive();
            if (result == 0) {
                take_in_frame(decoding_);
            } else if (decoding_.packet_waits) {
                decoding_.packet_waits = false;  // the decoder neither takes it nor gives
            } else {
                const int taken = packets_ < most_packets ? take_packet() : 0;
                if (taken <= 0) return taken;
            }
        }
        return 1;
    }

  private:
    // Takes the next packet in hand. Returns as `fill`.
    int take_packet() {
        if (is_->paused || is_->abort_request) return -1;
        AVPacket* packet = decoding_.packet.get();
        const int got = packet_queue_get_within(&is_->audio_queue, packet, time_left_ms());
        if (got <= 0) return got;
        if (is_flush_packet(packet)) {
            start_again(is_);
            return -1;
        }
        const bool end = is_empty_packet(packet);
        if (end && decoding_.draining) return 0;  // said before
        // A decoder that was drained takes nothing more until it is flushed.
        if (!end && decoding_.draining) flush_decoder(is_);
        decoding_.draining = end;
        decoding_.packet_waits = true;
        ++packets_;
        note_time(*packet);
        return 1;
    }

    Uint32 time_left_ms() const {
        const auto left = static_cast<Sint32>(out_.wait_until - SDL_GetTicks());
        return static_cast<Uint32>(std::max(left, 0));
    }

    void note_time(const AVPacket& packet) {
        if (packet.pts == AV_NOPTS_VALUE) return;
        out_.decode_clock = timestamp_seconds(packet.pts, decoding_.time_base);
        if (is_->video_stream_index < 0) global_video_pkt_pts = packet.pts;
    }

    void send() {
        const MutexLock lock(is_->audio_decoder_mutex);
        const AVPacket* packet = decoding_.draining ? nullptr : decoding_.packet.get();
        const int result = avcodec_send_packet(is_->audio_codec.get(), packet);
        decoding_.packet_waits = result == AVERROR(EAGAIN);
    }

    int receive() {
        const MutexLock lock(is_->audio_decoder_mutex);
        return avcodec_receive_frame(is_->audio_codec.get(), decoding_.frame.get());
    }

    VideoState* is_;
    AudioOutput& out_;
    AudioDecoding& decoding_;
    int packets_ = 0;  // taken in this call
};

}  // namespace

CodecContextPtr open_audio_decoder(const AVStream* stream) {
    const AVCodec* decoder = avcodec_find_decoder(stream->codecpar->codec_id);
    CodecContextPtr codec(decoder ? avcodec_alloc_context3(decoder) : nullptr);
    if (codec && avcodec_parameters_to_context(codec.get(), stream->codecpar) >= 0) {
        codec->pkt_timebase = stream->time_base;
        if (avcodec_open2(codec.get(), decoder, nullptr) >= 0) return codec;
    }
    std::fputs("Unsupported codec!\n", stderr);
    return nullptr;
}

int audio_decode_frame(VideoState* is, std::uint8_t* buf, int capacity, double* pts_out) {
    assert_thread(ThreadRole::audio);
    const int filled = SampleSource(is).fill();
    if (filled <= 0) return filled;
    AudioOutput& out = *is->audio;
    AudioDecoding& decoding = out.decoding;
    const int bytes = interleave_samples(decoded_samples(decoding), decoding.taken, buf, capacity);
    const int frame_bytes = decoding.channels * 2;
    decoding.taken += bytes / frame_bytes;
    *pts_out = out.decode_clock;
    out.decode_clock +=
        static_cast<double>(bytes) / (static_cast<double>(decoding.sample_rate) * frame_bytes);
    return bytes;
}

void audio_follow_seek(VideoState* is) {
    if (!packet_queue_flush_waits(&is->audio_queue)) return;
    AVPacket* packet = is->audio->decoding.packet.get();
    if (packet_queue_get(&is->audio_queue, packet, false) > 0) start_again(is);
}
