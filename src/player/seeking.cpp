// SPDX-License-Identifier: MIT
#include "player/seeking.h"

#include "media/subtitles.h"
#include "player/clocks.h"
#include "player/demux.h"
#include "player/refresh_timer.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr Uint32 retry_ms = 10;
constexpr std::int64_t scan_step = 1000000;      // microseconds
constexpr std::int64_t scan_patience = 1000000;  // microseconds
// Longer than key pictures of broadcasts usually are apart.
constexpr std::int64_t search_run_up = 3000000;  // microseconds

AVStream* stream_at(const VideoState* is, int index) {
    return index >= 0 ? is->format_context->streams[index] : nullptr;
}

// Whether the last step of a scan has shown a picture, or has had its time.
bool may_step(const VideoState* is) {
    if (wall_clock() - is->last_seek_time >= scan_patience) return true;
    return is->seeks_seen == is->seeks_done && !is->last_seek_failed;
}

// Without the flush packet nothing that is decoded from now on would be shown. Dropping what waits
// has given memory back.
void forget_queued(const VideoState* is, PacketQueue& queue, int seek) {
    packet_queue_flush(&queue);
    flush_packet()->pts = seek;
    while (packet_queue_put(&queue, flush_packet()) < 0 && !is->abort_request)
        SDL_Delay(retry_ms);
}

// Nothing lies before the start, so that no position ever does.
std::int64_t within_file(const AVFormatContext* context, std::int64_t target) {
    const bool known = context->start_time != AV_NOPTS_VALUE;
    return std::max(target, known ? context->start_time : 0);
}

// Whether positions are found by looking for time stamps in the file: what is found is any picture
// then, and the next key picture may come much later.
bool is_searched(const VideoState* is) {
    const AVInputFormat* format = is->format_context->iformat;
    return is->video_stream_index >= 0 && (format->flags & AVFMT_TS_DISCONT) &&
           !(format->flags & (AVFMT_NOBINSEARCH | AVFMT_GENERIC_INDEX));
}

void restart_queues(VideoState* is, std::int64_t target) {
    is->seek_target = target;
    is->last_seek_failed = false;
    is->last_seek_time = wall_clock();
    const int seek = ++is->seeks_done;
    if (is->audio_stream_index >= 0) forget_queued(is, is->audio_queue, seek);
    if (is->video_stream_index >= 0) forget_queued(is, is->video_queue, seek);
    // Pictures from before need not stay until the next one would have been due, nor be queued.
    {
        const MutexLock lock(is->picture_queue_mutex);
        SDL_CondSignal(is->picture_queue_cond.get());
    }
    hasten_refresh();
}

}  // namespace

bool seek_file(VideoState* is, std::int64_t target, int flags, bool try_backwards, bool early) {
    AVFormatContext* context = is->format_context.get();
    const int index = reference_stream(is);
    target = within_file(context, target);
    const bool at_start = target <= context->start_time;
    if ((early || at_start) && is_searched(is)) target -= search_run_up;
    const AVStream* stream = stream_at(is, index);
    const std::int64_t timestamp =
        stream ? av_rescale_q(target, av_get_time_base_q(), stream->time_base) : target;
    if (av_seek_frame(context, index, timestamp, flags) >= 0) return true;
    return try_backwards && !(flags & AVSEEK_FLAG_BACKWARD) &&
           av_seek_frame(context, index, timestamp, flags | AVSEEK_FLAG_BACKWARD) >= 0;
}

bool carry_out_seek(VideoState* is) {
    const bool forward = is->fast_forward;
    const bool backward = is->rewind && !forward;
    const bool scanning = forward || backward;
    if (!is->seek_request && !scanning) return false;
    const AVStream* stream = stream_at(is, reference_stream(is));
    const AVRational time_base = stream ? stream->time_base : av_get_time_base_q();
    const std::int64_t current = timestamp_microseconds(global_video_pkt_pts, time_base);

    std::int64_t target = is->seek_position;
    int flags = is->seek_flags;
    const bool exactly = is->seek_exactly && !scanning;
    if (scanning) {
        if (!may_step(is)) return false;
        target = current + (forward ? scan_step : -scan_step);
        flags = forward ? 0 : AVSEEK_FLAG_BACKWARD;
    } else if (target < current || exactly) {
        flags |= AVSEEK_FLAG_BACKWARD;
    }
    target = within_file(is->format_context.get(), target);

    is->seeking = true;
    // Those of another film are none of this one's business.
    if (is == global_video_state) {
        subtitles.seek(static_cast<unsigned long>(time_in_film(is, target)));
    }
    const bool found = seek_file(is, target, flags, !forward, exactly);
    if (found) {
        is->discard_before = exactly ? target : nothing_to_discard;
        restart_queues(is, target);
        // A scan through sound alone sees no new packets while the clock is paused.
        if (!scanning || is->video_stream_index < 0) {
            global_video_pkt_pts = av_rescale_q(target, av_get_time_base_q(), time_base);
        }
    } else {
        std::fprintf(stderr, "%s: error while seeking\n", is->filename.c_str());
        is->last_seek_time = wall_clock();
        is->last_seek_failed = true;
    }
    if (!scanning) is->seek_exactly = false;
    is->seek_request = false;
    is->seeking = false;
    return found;
}
