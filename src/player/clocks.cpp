// SPDX-License-Identifier: MIT
#include "player/clocks.h"

#include "platform/threads.h"

extern "C" {
#include <libavutil/mathematics.h>
#include <libavutil/time.h>
}

#include <algorithm>

namespace {

std::atomic<std::int64_t (*)()> replaced_clock{nullptr};

// Seconds from `since` to now.
double elapsed(std::int64_t since) {
    return static_cast<double>(wall_clock() - since) / 1000000.0;
}

}  // namespace

std::int64_t wall_clock() {
    auto* clock = replaced_clock.load(std::memory_order_relaxed);
    return clock ? clock() : av_gettime();
}

void set_wall_clock(std::int64_t (*clock)()) {
    replaced_clock = clock;
}

double get_audio_clock(const VideoState* is) {
    if (is->paused) return is->audio_clock;
    return is->audio_clock + elapsed(is->audio_clock_time);
}

double get_video_clock(const VideoState* is) {
    if (is->paused) return is->video_current_pts;
    return is->video_current_pts + elapsed(is->video_current_pts_time);
}

double get_external_clock(const VideoState* is) {
    return is->external_clock +
           static_cast<double>(wall_clock() - is->external_clock_time) * 0.000001;
}

double get_master_clock(const VideoState* is) {
    const bool has_video = is->video_stream_index >= 0;
    const bool has_audio = is->audio_stream_index >= 0;
    switch (is->sync_source) {
        case sync_video:
            return has_video ? get_video_clock(is) : get_audio_clock(is);
        case sync_audio:
            return has_audio ? get_audio_clock(is) : get_video_clock(is);
        default:
            return get_external_clock(is);
    }
}

double synchronize_video(VideoState* is, int repeat_pict, double frame_delay, double pts) {
    assert_thread(ThreadRole::video);
    double clock = is->video_clock;
    if (pts == 0.0) {  // NOLINT: exactly 0 stands for "not known"
        pts = clock;
    } else {
        clock = pts;
    }
    is->video_clock = clock + frame_delay + repeat_pict * frame_delay * 0.5;
    return pts;
}

double timestamp_seconds(std::int64_t timestamp, AVRational time_base) {
    if (timestamp == AV_NOPTS_VALUE || time_base.den == 0) return 0.0;
    return static_cast<double>(timestamp) * av_q2d(time_base);
}

std::int64_t timestamp_microseconds(std::int64_t timestamp, AVRational time_base) {
    if (timestamp == AV_NOPTS_VALUE || time_base.den == 0) return 0;
    return av_rescale_q(timestamp, time_base, av_get_time_base_q());
}

std::int64_t time_in_film(const VideoState* is, std::int64_t time) {
    const std::int64_t start = is->start_time;
    if (time <= start) return 0;
    // Files may tell of times so far apart that no signed number holds what lies between.
    const std::uint64_t passed =
        static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(start);
    return static_cast<std::int64_t>(std::min<std::uint64_t>(passed, INT64_MAX));
}
