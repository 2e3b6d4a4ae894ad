// SPDX-License-Identifier: MIT
#include "player/demux.h"

#include "platform/threads.h"
#include "player/audio_output.h"
#include "player/clocks.h"
#include "player/input_ahead.h"
#include "player/seeking.h"
#include "player/stream.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace {

constexpr Uint32 poll_ms = 5;
constexpr Uint32 end_poll_ms = 10;
constexpr Uint32 after_end_event_ms = 100;
constexpr Uint32 close_poll_ms = 10;
constexpr int preload_passes = 2;
// A demuxer that fails this often in a row has nothing more to give.
constexpr int hopeless_reads = 100;

// A camera lends its own memory, which is gone when it is closed; pictures may stay longer. Returns
// false when memory runs out.
bool own_data(AVPacket& packet) {
    const PacketPtr copy(av_packet_alloc());
    if (!copy || av_new_packet(copy.get(), packet.size) < 0) return false;
    std::memcpy(copy->data, packet.data, static_cast<std::size_t>(packet.size));
    if (av_packet_copy_props(copy.get(), &packet) < 0) return false;
    av_packet_unref(&packet);
    av_packet_move_ref(&packet, copy.get());
    return true;
}

// The demuxing of one file, on its thread.
class Demuxing {
  public:
    explicit Demuxing(VideoState* is) : is_(is), packet_(av_packet_alloc()) {}

    bool open() {
        if (!packet_ || !open_input() || !open_components()) return false;
        publish_duration();
        if (is_->preload) preload();
        return true;
    }

    void run() {
        while (!is_->abort_request && !broken_)
            pass();
        while (!is_->abort_request)
            SDL_Delay(close_poll_ms);
    }

  private:
    bool open_input() {
        const InputAhead ahead = take_input_ahead(is_);
        if (ahead == InputAhead::failed) return false;
        if (ahead == InputAhead::none && !open_and_probe()) return false;
        AVFormatContext* context = is_->format_context.get();
        if (context->pb) context->pb->eof_reached = 0;
        av_read_play(context);
        return true;
    }

    bool open_and_probe() {
        AVFormatContext* context = avformat_alloc_context();
        if (!context) return false;
        // Set before opening: opening may block too.
        context->interrupt_callback = {decode_interrupt_cb, is_};
        if (avformat_open_input(&context, is_->filename.c_str(), is_->input_format,
                                is_->open_options.ref()) < 0) {
            return false;
        }
        is_->format_context.reset(context);
        return avformat_find_stream_info(context, nullptr) >= 0;
    }

    // The first stream of a type; cover art is no video.
    int first_stream(AVMediaType type) const {
        const AVFormatContext* context = is_->format_context.get();
        for (unsigned i = 0; i < context->nb_streams; ++i) {
            const AVStream* stream = context->streams[i];
            const bool cover = stream->disposition & AV_DISPOSITION_ATTACHED_PIC;
            if (stream->codecpar->codec_type == type && !cover) return static_cast<int>(i);
        }
        return -1;
    }

    bool open_components() {
        stream_component_open(is_, first_stream(AVMEDIA_TYPE_VIDEO));
        stream_component_open(is_, first_stream(AVMEDIA_TYPE_AUDIO));
        const AVFormatContext* context = is_->format_context.get();
        for (unsigned i = 0; i < context->nb_streams; ++i) {
            const int index = static_cast<int>(i);
            const bool used = index == is_->video_stream_index || index == is_->audio_stream_index;
            if (!used) context->streams[i]->discard = AVDISCARD_ALL;
        }
        if (reference_stream(is_) >= 0) return true;
        std::fprintf(stderr, "%s: could not open codecs\n", is_->filename.c_str());
        return false;
    }

    void publish_duration() {
        const std::int64_t duration = is_->format_context->duration;
        is_->duration = duration > 0 ? static_cast<double>(duration) / AV_TIME_BASE : 0.0;
        const std::int64_t start = is_->format_context->start_time;
        is_->start_time = start != AV_NOPTS_VALUE ? start : 0;
    }

    // Reads the file through, so that it comes from memory when it plays.
    void preload() {
        for (int i = 0; i < preload_passes && !is_->abort_request; ++i) {
            while (!is_->abort_request &&
                   av_read_frame(is_->format_context.get(), packet_.get()) >= 0)
                av_packet_unref(packet_.get());
            seek_file(is_, 0, AVSEEK_FLAG_BACKWARD, false);
        }
        is_->preload = false;
    }

    void pass() {
        pass_on_pause();
        if (carry_out_seek(is_)) end_of_file_ = false;
        publish_position();
        if (reading_is_ahead(is_)) {
            wait_for_request();
        } else if (end_of_file_) {
            handle_end_of_file();
        } else {
            read_packet();
        }
    }

    void wait_for_request() {
        MutexLock lock(is_->demux_mutex);
        if (!is_->seek_request) lock.wait_for(is_->demux_cond, poll_ms);
    }

    void pass_on_pause() {
        const bool paused = is_->paused;
        if (paused == is_->last_paused) return;
        is_->last_paused = paused;
        if (paused) {
            av_read_pause(is_->format_context.get());
        } else {
            av_read_play(is_->format_context.get());
        }
    }

    // Recordings may start at any time; the interface counts from there.
    void publish_position() {
        const int index = reference_stream(is_);
        const double position =
            timestamp_seconds(global_video_pkt_pts, is_->format_context->streams[index]->time_base);
        const double start = static_cast<double>(is_->start_time) / AV_TIME_BASE;
        is_->position = std::max(0.0, position - start);
    }

    void handle_end_of_file() {
        if (is_->video_stream_index >= 0) {
            packet_queue_put_empty(&is_->video_queue, is_->video_stream_index);
        }
        if (is_->audio_stream_index >= 0 && sound_is_delayed()) {
            packet_queue_put_empty(&is_->audio_queue, is_->audio_stream_index);
        }
        SDL_Delay(end_poll_ms);
        if (everything_played() && push_event(event_end_of_stream, is_)) {
            SDL_Delay(after_end_event_ms);
        }
        end_of_file_ = false;
    }

    bool sound_is_delayed() const {
        return (is_->audio_codec->codec->capabilities & AV_CODEC_CAP_DELAY) != 0;
    }

    // Nothing is queued, the decoders hold nothing back, the pictures are on screen and the sound
    // has gone to its device. In this order: a packet leaves the queue before it is heard.
    bool everything_played() const {
        const bool has_audio = is_->audio_stream_index >= 0;
        if (has_audio && (is_->audio_queue.byte_size > 0 || !sound_is_over(is_))) return false;
        if (is_->video_stream_index < 0) return true;
        if (is_->video_queue.byte_size > 0 || !is_->decoder_finished) return false;
        const MutexLock lock(is_->picture_queue_mutex);
        return is_->picture_queue_size == 0;
    }

    void read_packet() {
        AVFormatContext* context = is_->format_context.get();
        const int result = av_read_frame(context, packet_.get());
        if (result >= 0) {
            failed_reads_ = 0;
            queue_packet();
            av_packet_unref(packet_.get());
            return;
        }
        const bool nothing_yet = is_->is_camera || result == AVERROR(EAGAIN);
        if (result == AVERROR_EOF || (!nothing_yet && ++failed_reads_ >= hopeless_reads)) {
            end_of_file_ = true;
        } else if (result == AVERROR(ENODEV) || (context->pb && context->pb->error)) {
            broken_ = true;
        } else {
            SDL_Delay(end_poll_ms);
        }
    }

    void queue_packet() {
        // To a decoder a packet without data would mean the end of the file.
        if (packet_->size == 0) return;
        if (is_->is_camera && !own_data(*packet_)) return;
        if (packet_->stream_index == is_->video_stream_index) {
            packet_queue_put(&is_->video_queue, packet_.get());
        } else if (packet_->stream_index == is_->audio_stream_index) {
            if (ends_too_early()) return;
            is_->sound_over = false;
            packet_queue_put(&is_->audio_queue, packet_.get());
        }
    }

    // Sound from between the key picture that a seek found and its target.
    bool ends_too_early() const {
        const std::int64_t target = is_->discard_before;
        if (target == nothing_to_discard || packet_->pts == AV_NOPTS_VALUE) return false;
        return timestamp_microseconds(packet_->pts + packet_->duration,
                                      is_->audio_stream->time_base) < target;
    }

    VideoState* is_;
    PacketPtr packet_;
    bool end_of_file_ = false;
    bool broken_ = false;
    int failed_reads_ = 0;
};

// Returns whether the file could be opened and nothing failed since but its reading.
bool demux(VideoState* is) {
    try {
        Demuxing demuxing(is);
        const bool opened = demuxing.open();
        is->preload = false;  // nobody may wait for it any more
        if (opened) demuxing.run();
        return opened;
    } catch (const std::bad_alloc&) {
        std::fputs("Out of memory!\n", stderr);
        is->preload = false;
        return false;
    }
}

void report_failure(VideoState* is) {
    while (!is->abort_request && !push_event(event_failed, is))
        SDL_Delay(close_poll_ms);
}

}  // namespace

int reference_stream(const VideoState* is) {
    return is->video_stream_index >= 0 ? is->video_stream_index.load()
                                       : is->audio_stream_index.load();
}

bool reading_is_ahead(const VideoState* is) {
    const bool has_audio = is->audio_stream_index >= 0;
    const bool has_video = is->video_stream_index >= 0;
    const int audio_bytes = has_audio ? is->audio_queue.byte_size.load() : 0;
    const int video_bytes = has_video ? is->video_queue.byte_size.load() : 0;
    if (audio_bytes + video_bytes > most_queued_bytes) return true;
    if (has_audio && audio_bytes <= enough_audio_bytes) return false;
    return !has_video || is->video_queue.packet_count > enough_video_packets;
}

int decode_thread(void* param) {
    set_thread_role(ThreadRole::demux);
    auto* is = static_cast<VideoState*>(param);
    is->demux_native = pthread_self();
    global_video_state = is;
    const bool ok = demux(is);
    VideoState* current = is;
    global_video_state.compare_exchange_strong(current, nullptr);
    stream_component_close(is, is->audio_stream_index);
    stream_component_close(is, is->video_stream_index);
    is->format_context.reset();
    if (!ok) report_failure(is);
    is->demux_finished = true;
    return 0;
}
