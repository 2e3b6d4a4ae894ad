// SPDX-License-Identifier: MIT
#include "player/events.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

static_assert(SDL_USEREVENT == 24);

namespace {

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

std::atomic<bool> quit_seen{false};
std::atomic<bool> motion_wanted{true};

// Returns whether the event goes into the queue.
int look_at_event(const SDL_Event* event) {
    const bool escape = event->type == SDL_KEYDOWN && event->key.keysym.sym == SDLK_ESCAPE;
    if (event->type == SDL_QUIT || escape) quit_seen = true;
    return event->type != SDL_MOUSEMOTION || motion_wanted ? 1 : 0;
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

void wait_event(SDL_Event* event) {
    while (!SDL_PollEvent(event))
        wake_up().wait();
}

void watch_for_quit() {
    quit_seen = false;
    SDL_SetEventFilter(look_at_event);
}

void queue_mouse_motion(bool wanted) {
    motion_wanted = wanted;
}

bool quit_came_in() {
    SDL_PumpEvents();
    return quit_seen;
}
