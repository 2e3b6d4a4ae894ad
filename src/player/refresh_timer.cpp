// SPDX-License-Identifier: MIT
#include "player/refresh_timer.h"

#include "core/settings.h"
#include "gui/widget_container.h"
#include "platform/threads.h"
#include "platform/window.h"

#include <SDL.h>

#include <chrono>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

std::atomic<bool> refresh_scheduled{false};

namespace {

using Clock = std::chrono::steady_clock;

constexpr int timer_step_ms = 10;
constexpr Uint32 retry_ms = 10;
constexpr int largest_temporal_factor = 4;

// The refreshes asked for, each with its due time. Classic SDL can call a one-shot timer again when
// another one is added at the wrong moment; its request is gone then.
class Requests {
  public:
    using Request = std::map<std::uintptr_t, Clock::time_point>::node_type;

    void* add(Clock::time_point due) {
        const std::lock_guard lock(mutex_);
        due_times_[++last_] = due;
        return reinterpret_cast<void*>(last_);
    }

    void put_back(Request request) {
        const std::lock_guard lock(mutex_);
        due_times_.insert(std::move(request));
    }

    // Empty for one that was taken already. Neither this nor putting back takes memory: nobody
    // would catch what that throws on a thread of SDL's.
    Request take(void* request) {
        const std::lock_guard lock(mutex_);
        return due_times_.extract(reinterpret_cast<std::uintptr_t>(request));
    }

    // Whether there were any; their timers will find nothing to do.
    bool drop_all() {
        const std::lock_guard lock(mutex_);
        const bool any = !due_times_.empty();
        due_times_.clear();
        return any;
    }

  private:
    std::mutex mutex_;
    std::map<std::uintptr_t, Clock::time_point> due_times_;
    std::uintptr_t last_ = 0;
};

Requests& requests() {
    static auto& all = *new Requests;  // a timer may fire until the very end
    return all;
}

std::mutex posting_mutex;
bool refreshes_held = false;  // guarded by `posting_mutex`

// Posts a refresh unless one is waiting. Returns false when SDL's queue was full.
bool post_refresh() {
    const std::lock_guard lock(posting_mutex);
    if (refreshes_held) return true;
    if (refresh_scheduled.exchange(true)) return true;
    if (push_event(event_refresh, global_video_state)) return true;
    refresh_scheduled = false;
    return false;
}

}  // namespace

bool maximize_fps(const VideoState* is) {
    return is && is->video_stream_index >= 0 &&
           master_settings.temporal_upscaling_factor.toInt() >= largest_temporal_factor;
}

int timer_interval(int ms) {
    const int steps = ms / timer_step_ms;
    return (steps > 1 ? steps - (ms % timer_step_ms == 0 ? 1 : 0) : 1) * timer_step_ms;
}

void schedule_refresh(VideoState* is, int ms) {
    // What nobody sees is not drawn, and would turn here without a pause.
    const bool at_once = (maximize_fps(is) || gui.anyVisible()) && window_is_shown();
    if (at_once && post_refresh()) return;
    schedule_refresh_later(is, ms);
}

void schedule_refresh_later(VideoState* /*is*/, int ms) {
    void* request = requests().add(Clock::now() + std::chrono::milliseconds(ms));
    const auto interval = static_cast<Uint32>(timer_interval(ms));
    if (SDL_AddTimer(interval, sdl_refresh_timer_cb, request)) return;
    // Without timers the player would stop for good; a busy loop shows pictures at least.
    requests().take(request);
    post_refresh();
}

void hasten_refresh() {
    if (!requests().drop_all() || post_refresh()) return;
    schedule_refresh_later(nullptr, static_cast<int>(retry_ms));
}

void hold_refreshes(bool held) {
    const std::lock_guard lock(posting_mutex);
    refreshes_held = held;
}

Uint32 sdl_refresh_timer_cb(Uint32 /*interval*/, void* param) {
    set_thread_role(ThreadRole::timer);
    Requests::Request request = requests().take(param);
    if (request.empty()) return 0;
    std::this_thread::sleep_until(request.mapped());
    if (post_refresh()) return 0;
    requests().put_back(std::move(request));
    return retry_ms;
}
