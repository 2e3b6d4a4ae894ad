// SPDX-License-Identifier: MIT
#include "player/refresh_timer.h"

#include "core/settings.h"
#include "platform/threads.h"
#include "player/clocks.h"

#include <SDL.h>

extern "C" {
#include <libavutil/time.h>
}

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

std::atomic<bool> refresh_scheduled{false};

static_assert(SDL_USEREVENT == static_cast<int>(event_alloc_picture));

namespace {

constexpr int timer_step_ms = 10;
constexpr Uint32 retry_ms = 10;
constexpr int largest_temporal_factor = 4;

// SDL's own wait looks for events in steps of 10 ms, classic and compatible library alike. The
// player's events end this one at once; for the window's it looks often enough for a hand on the
// keyboard.
class WakeUp {
  public:
    void signal() {
        {
            const std::lock_guard lock(mutex_);
            signalled_ = true;
        }
        condition_.notify_one();
    }

    void wait() {
        std::unique_lock lock(mutex_);
        condition_.wait_for(lock, input_poll, [this] { return signalled_; });
        signalled_ = false;
    }

  private:
    static constexpr std::chrono::milliseconds input_poll{4};

    std::mutex mutex_;
    std::condition_variable condition_;
    bool signalled_ = false;
};
WakeUp& wake_up() {
    static auto& one = *new WakeUp;  // a timer may fire until the very end
    return one;
}

// Posts a refresh unless one is waiting. Returns false when SDL's queue was full.
bool post_refresh() {
    if (refresh_scheduled.exchange(true)) return true;
    if (push_event(event_refresh, global_video_state)) return true;
    refresh_scheduled = false;
    return false;
}

// The due time travels as the timer's parameter. Where a pointer has 32 bits it wraps, which the
// difference of two nearby times does not mind.
void* encode_due(std::int64_t due) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(due));
}

std::intptr_t microseconds_until(const void* due) {
    return static_cast<std::intptr_t>(reinterpret_cast<std::uintptr_t>(due) -
                                      static_cast<std::uintptr_t>(av_gettime_relative()));
}

}  // namespace

bool push_event(PlayerEvent event, VideoState* state) {
    SDL_Event message{};
    message.type = static_cast<Uint8>(event);
    message.user.type = message.type;
    message.user.data1 = state;
    if (SDL_PushEvent(&message) != 0) return false;
    wake_up().signal();
    return true;
}

bool maximize_fps(const VideoState* is) {
    return is && is->video_stream_index >= 0 &&
           master_settings.temporal_upscaling_factor.toInt() >= largest_temporal_factor;
}

int timer_interval(int ms) {
    const int steps = ms / timer_step_ms;
    return (steps > 1 ? steps - (ms % timer_step_ms == 0 ? 1 : 0) : 1) * timer_step_ms;
}

void schedule_refresh(VideoState* is, int ms) {
    if (maximize_fps(is) && post_refresh()) return;
    const std::int64_t due = av_gettime_relative() + static_cast<std::int64_t>(ms) * 1000;
    const auto interval = static_cast<Uint32>(timer_interval(ms));
    if (SDL_AddTimer(interval, sdl_refresh_timer_cb, encode_due(due))) return;
    // Without timers the player would stop for good; a busy loop shows pictures at least.
    post_refresh();
}

Uint32 sdl_refresh_timer_cb(Uint32 /*interval*/, void* param) {
    set_thread_role(ThreadRole::timer);
    const std::intptr_t wait = microseconds_until(param);
    if (wait > 0 && wait < 1000000) std::this_thread::sleep_for(std::chrono::microseconds(wait));
    return post_refresh() ? 0 : retry_ms;
}

void wait_event(SDL_Event* event) {
    while (!SDL_PollEvent(event))
        wake_up().wait();
}
