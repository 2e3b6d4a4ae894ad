// SPDX-License-Identifier: MIT
#pragma once

#include <SDL.h>

struct VideoState;

/// User events of the player; the first data word is the `VideoState` concerned or null.
enum PlayerEvent : int {
    event_alloc_picture = SDL_USEREVENT,  ///< a slot of the picture queue wants storage
    event_refresh,                        ///< the window is to be redrawn
    event_quit,
    event_failed,         ///< the file could not be opened or played
    event_end_of_stream,  ///< everything was played
};

/// Posts a user event. Returns false when SDL's queue is full. Any thread.
bool push_event(PlayerEvent event, VideoState* state);

/// Waits for the next event. [main]
void wait_event(SDL_Event* event);

/// From now on notes the wish to quit, a closed window or Escape, when it comes in: it may have to
/// wait in SDL's queue, or find that full. Classic SDL empties its queue here, as it does in
/// SDL_EventState: call before anything is posted. [main]
void watch_for_quit();

/// Whether the pointer's moves are queued, from `watch_for_quit` on: yes unless told otherwise.
/// Any thread.
void queue_mouse_motion(bool wanted);

/// Looks whether the wish to quit came in since `watch_for_quit`. [main]
bool quit_came_in();
