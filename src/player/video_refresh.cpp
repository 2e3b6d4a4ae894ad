// SPDX-License-Identifier: MIT
#include "player/video_refresh.h"

#include "core/settings.h"
#include "gpu/video_display.h"
#include "gui/forms.h"
#include "platform/window.h"
#include "player/clocks.h"
#include "player/display.h"
#include "player/refresh_plan.h"
#include "player/refresh_timer.h"
#include "player/still_picture.h"

#include <utility>

std::int64_t lastframe_timestamp[timestamp_ring_size] = {};
int lastframe_timestamp_qi = 0;

namespace {

constexpr int idle_ms = 25;
constexpr int audio_only_ms = 50;
constexpr int camera_ms = 10;

double video_fps = 0.0;
bool gui_runs_freely = false;  // a form was visible when this refresh began

int queued_pictures(VideoState* is) {
    const MutexLock lock(is->picture_queue_mutex);
    return is->picture_queue_size;
}

// The video thread leaves alone the slot before the read index. The picture on screen moves there
// when others go unseen: it may have to be drawn again.
void keep_shown_picture(VideoState* is) {
    const int released = is->picture_queue_rindex;
    if (is->shown_picture < 0 || is->shown_picture == released) return;
    std::swap(is->pictures[static_cast<std::size_t>(is->shown_picture)],
              is->pictures[static_cast<std::size_t>(released)]);
    is->shown_picture = released;
}

// What lies over a picture, without one.
void show_interface(VideoState* is) {
    clear_window(screen->w, screen->h);
    if (!video_suppressed()) hud_display(is);
    gui_display();
}

void show(VideoState* is) {
    if (!window_is_shown() || is_still(is)) return;
    if (video_suppressed()) {
        show_interface(is);
    } else if (!is) {
        video_nosignal_display();
    } else if (is->video_stream_index >= 0) {
        video_display(is);
    } else {
        audio_display(is);
    }
}

// A form that is open moves as fast as it can be drawn.
void refresh_again(VideoState* is, int ms) {
    if (gui.anyVisible()) {
        schedule_refresh(is, ms);
    } else {
        schedule_refresh_later(is, ms);
    }
}

VideoPicture& head(VideoState* is) {
    return is->pictures[static_cast<std::size_t>(is->picture_queue_rindex)];
}

// The newest picture of a live source, as soon as possible.
void refresh_camera(VideoState* is, int queued) {
    if (queued > 1) release_picture(is);
    refresh_again(is, camera_ms);
    // The picture itself, not one between it and the one before.
    is->clocks.subframe_counter = master_settings.temporal_upscaling_factor.toInt() + 1;
    is->clocks.interpolation_phase = 0.0F;
    show(is);
}

RefreshInput refresh_input(VideoState* is, const VideoPicture& pic) {
    RefreshInput in{};
    in.pts = pic.pts;
    in.now = static_cast<double>(wall_clock()) / 1000000.0;
    in.speed = playback_speeds[static_cast<std::size_t>(is->playback_speed_index)];
    in.n = master_settings.temporal_upscaling_factor.toInt() + 1;
    in.free_running = maximize_fps(is) || gui_runs_freely;
    in.follows = (is->sync_source == sync_audio && is->audio_stream_index >= 0) ||
                 is->sync_source == sync_external;
    in.difference = in.follows ? pic.pts - get_master_clock(is) : 0.0;
    in.starved = is->starved;
    in.jumped = in.starved && pic.seeks != is->video_clock_seeks;
    return in;
}

// One picture or one sub-frame of it. Returns false when the decision has to be taken again.
bool refresh_picture(VideoState* is, int queued) {
    VideoPicture& pic = head(is);
    is->video_current_pts = pic.pts;
    is->video_current_pts_time = wall_clock();
    const RefreshInput in = refresh_input(is, pic);
    const RefreshPlan plan = plan_refresh(is->clocks, in);
    is->starved = false;
    if (in.starved && plan.display) {
        // The first picture takes long to draw. Time starts to count when it is on screen.
        show(is);
        is->video_current_pts_time = wall_clock();
        is->clocks.frame_timer += static_cast<double>(wall_clock()) / 1e6 - in.now;
        schedule_refresh(is, plan.delay_ms);
    } else {
        if (plan.delay_ms >= 0) schedule_refresh(is, plan.delay_ms);
        // Too late, but there is nothing newer: dropping it would save no time.
        const bool only_one = plan.release && !pic.seen && queued == 1;
        if (plan.display || only_one) show(is);
    }
    is->video_clock_seeks = pic.seeks;
    if (plan.release) {
        if (!pic.seen) ++is->pictures_unseen;
        release_picture(is);
    }
    return plan.delay_ms >= 0;
}

void refresh_video(VideoState* is) {
    const bool scanning = is->rewind || is->fast_forward;
    if (is->paused && !scanning) {
        refresh_again(is, idle_ms);
        show(is);
        return;
    }
    bool jumps = false;
    for (;;) {
        const int queued = queued_pictures(is);
        if (queued == 0) {
            is->starved = true;
            // The picture is on its way after a jump: drawing the old one again would delay it.
            if (!jumps) show(is);
            refresh_again(is, idle_ms);
            // It may have come meanwhile.
            if (queued_pictures(is) > 0) hasten_refresh();
            return;
        }
        if (!scanning && head(is).seeks != is->seeks_done) {
            release_picture(is);  // from before a seek: nobody waits for it any more
            jumps = true;
            continue;
        }
        if (is->is_camera) {
            refresh_camera(is, queued);
            return;
        }
        if (refresh_picture(is, queued)) return;
    }
}

}  // namespace

void start_frame_times(std::int64_t now) {
    constexpr std::int64_t interval = 40000;
    constexpr double intervals_per_second = 25.0;
    for (std::int64_t age = timestamp_ring_size - 1; age >= 0; --age)
        note_frame_shown(now - age * interval);
    video_fps = intervals_per_second;
}

void note_frame_shown(std::int64_t now) {
    lastframe_timestamp[lastframe_timestamp_qi] = now;
    lastframe_timestamp_qi = (lastframe_timestamp_qi + 1) % timestamp_ring_size;
}

double video_estimate_fps() {
    const std::int64_t newest =
        lastframe_timestamp[(lastframe_timestamp_qi + timestamp_ring_size - 1) %
                            timestamp_ring_size];
    const std::int64_t oldest = lastframe_timestamp[lastframe_timestamp_qi];
    constexpr double intervals = 31000000.0;
    const double instant =
        newest != oldest ? intervals / static_cast<double>(newest - oldest) : intervals;
    video_fps += 0.2 * (instant - video_fps);
    return video_fps;
}

bool video_suppressed() {
    return !formMediaBrowser.IsNull() && formMediaBrowser->visible &&
           !formMediaBrowser->is_animating();
}

void release_picture(VideoState* is) {
    is->clocks.subframe_counter = 0;
    keep_shown_picture(is);
    is->picture_queue_rindex = (is->picture_queue_rindex + 1) % picture_slots;
    const MutexLock lock(is->picture_queue_mutex);
    --is->picture_queue_size;
    SDL_CondSignal(is->picture_queue_cond.get());
}

void video_refresh_timer(VideoState* is) {
    gui_runs_freely = gui.anyVisible();
    gui.tick(-1.0);
    if (!is) {
        show(nullptr);
        schedule_refresh(nullptr, idle_ms);
        return;
    }
    if (is->video_stream_index >= 0) {
        refresh_video(is);
        return;
    }
    if (is->audio_stream_index >= 0) {
        schedule_refresh(is, audio_only_ms);
        show(is);
        return;
    }
    schedule_refresh(is, idle_ms);
    // The file is still being opened: what was there stays, but forms move.
    if (gui_runs_freely) show_interface(is);
}
