// SPDX-License-Identifier: MIT
#pragma once

#include <SDL.h>

/// Handles events until the user quits; everything is shut down then. Returns 0. [main]
int run_event_loop();

/// Handles one event. Returns false when it ends the player. [main]
bool handle_event(const SDL_Event& event);

/// Notes a left click at `ticks` (milliseconds) and tells whether it follows the one before by at
/// most 250 ms. [main]
bool DoubleClickDetected(Uint32 ticks);
