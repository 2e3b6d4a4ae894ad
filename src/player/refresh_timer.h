// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

#include <atomic>

/// A refresh event is waiting in the queue.
extern std::atomic<bool> refresh_scheduled;

/// Whether pictures are shown as fast as they can be drawn: the temporal factor stands at its
/// maximum and there is a film. [main]
bool maximize_fps(const VideoState* is);

/// Asks for a refresh in `ms` milliseconds; at once with `maximize_fps` or while a form is visible.
/// `is` may be null. [main]
void schedule_refresh(VideoState* is, int ms);

/// The same, but never at once: where nothing new can be there before. [main]
void schedule_refresh_later(VideoState* is, int ms);

/// There is something new: a refresh that is being waited for comes at once. Any thread.
void hasten_refresh();

/// While refreshes are held, timers that fire post nothing. No callback is posting any more when
/// this returns, so that SDL can be shut down. [main]
void hold_refreshes(bool held);

/// One-shot SDL timer callback: posts the refresh that the request `param` stands for. [timer]
Uint32 sdl_refresh_timer_cb(Uint32 interval, void* param);

/// The interval to arm SDL's timer with for a refresh in `ms`: the step of 10 ms below it. SDL's
/// own steps are that coarse; the callback sleeps the rest.
int timer_interval(int ms);
