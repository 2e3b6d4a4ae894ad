// SPDX-License-Identifier: MIT
#include "platform/threads.h"
#include "player/clocks.h"
#include "player/picture_queue.h"
#include "player/video_decoder.h"

#include <cstdio>
#include <new>

namespace {

constexpr Uint32 retry_ms = 10;

constexpr Uint32 pause_poll_ms = 10;
// A decoder that reports more errors in a row, without taking a packet, never comes to an end.
constexpr int most_errors = 256;

// The decoding of one film, on its thread.
class VideoDecoding {
  public:
    explicit VideoDecoding(VideoState* is)
        : is_(is), packet_(av_packet_alloc()), frame_(av_frame_alloc()) {}

    void run() {
        if (!packet_ || !frame_) return;
        for (;;) {
            wait_while_paused();
            if (packet_queue_get(&is_->video_queue, packet_.get(), true) < 0) return;
            if (is_flush_packet(packet_.get())) {
                start_again();
            } else if (!decode_packet()) {
                return;
            }
            av_packet_unref(packet_.get());
        }
    }

  private:
    // Nothing is decoded during a pause, unless the film is being scanned.
    void wait_while_paused() const {
        while (is_->paused && !is_->fast_forward && !is_->rewind &&
               !packet_queue_aborted(&is_->video_queue)) {
            SDL_Delay(pause_poll_ms);
        }
    }

    void start_again() {
        {
            const MutexLock lock(is_->video_decoder_mutex);
            avcodec_flush_buffers(is_->video_codec.get());
        }
        draining_ = false;
        is_->decoder_finished = false;
        is_->video_clock = static_cast<double>(is_->seek_target) / 1000000.0;
        seek_ = static_cast<int>(packet_->pts);
        discard_before_ = is_->discard_before;
    }

    // Sends the packet and queues every picture that comes out. Returns false when the film closes.
    bool decode_packet() {
        const bool drain = is_empty_packet(packet_.get());
        if (drain && draining_) return true;
        if (!drain && draining_) {
            // A decoder that was drained takes nothing more until it is flushed.
            const MutexLock lock(is_->video_decoder_mutex);
            avcodec_flush_buffers(is_->video_codec.get());
            draining_ = false;
            is_->decoder_finished = false;
        }
        if (!drain) note_time();
        draining_ = drain;
        for (;;) {
            const int sent = send(drain);
            int taken = 0;
            if (!queue_pictures(drain, taken)) return false;
            // A decoder that is full takes the packet once its pictures are out.
            if (sent != AVERROR(EAGAIN) || taken == 0) return true;
        }
    }

    void note_time() const {
        const std::int64_t time = packet_->pts != AV_NOPTS_VALUE ? packet_->pts : packet_->dts;
        if (time != AV_NOPTS_VALUE && !is_before_target(time)) global_video_pkt_pts = time;
    }

    // Whether a time stamp lies clearly before where the film is to go on. A picture that is due
    // in half its duration may be shown.
    bool is_before_target(std::int64_t timestamp) const {
        if (discard_before_ == nothing_to_discard || timestamp == AV_NOPTS_VALUE) return false;
        const auto tolerance = static_cast<std::int64_t>(frame_duration(is_) * 500000.0);
        return timestamp_microseconds(timestamp, is_->video_stream->time_base) <
               discard_before_ - tolerance;
    }

    int send(bool drain) {
        const MutexLock lock(is_->video_decoder_mutex);
        return avcodec_send_packet(is_->video_codec.get(), drain ? nullptr : packet_.get());
    }

    int receive() {
        const MutexLock lock(is_->video_decoder_mutex);
        return avcodec_receive_frame(is_->video_codec.get(), frame_.get());
    }

    // Queues what the decoder gives and counts in `taken` how often it gave anything, errors
    // included: with frame threads each thread tells of its damaged picture by itself. Returns
    // false when the film closes.
    bool queue_pictures(bool drain, int& taken) {
        int errors = 0;
        for (;;) {
            const int result = receive();
            const bool damaged = result < 0 && result != AVERROR_EOF && result != AVERROR(EAGAIN);
            if (damaged && ++errors <= most_errors) {
                ++taken;
                continue;
            }
            if (result == AVERROR_EOF || (drain && result < 0)) is_->decoder_finished = true;
            if (result < 0) return true;
            errors = 0;
            ++taken;
            if (!queue_frame()) return false;
        }
    }

    bool queue_frame() {
        if (is_before_target(frame_->pkt_dts)) {
            av_frame_unref(frame_.get());
            return true;
        }
        const double stamp = timestamp_seconds(frame_->pkt_dts, is_->video_stream->time_base);
        const double pts = synchronize_video(is_, frame_->repeat_pict, frame_duration(is_), stamp);
        const int result = queue_picture(is_, frame_, pts, seek_);
        if (!frame_) frame_.reset(av_frame_alloc());
        if (!frame_ || result < 0) return false;
        av_frame_unref(frame_.get());
        if (result == 0) is_->seeks_seen = seek_;
        return true;
    }

    VideoState* is_;
    PacketPtr packet_;
    FramePtr frame_;
    bool draining_ = false;
    std::int64_t discard_before_ = nothing_to_discard;
    int seek_ = 0;  // the last seek whose flush packet came through
};

// The film cannot go on: [main] closes it and says so.
void report_no_memory(VideoState* is) {
    std::fputs("Out of memory!\n", stderr);
    while (!packet_queue_aborted(&is->video_queue) && !push_event(event_failed, is))
        SDL_Delay(retry_ms);
}

}  // namespace

int video_thread(void* param) {
    set_thread_role(ThreadRole::video);
    auto* is = static_cast<VideoState*>(param);
    try {
        VideoDecoding(is).run();
    } catch (const std::bad_alloc&) {
        report_no_memory(is);
    }
    is->decoder_finished = true;
    return 0;
}
