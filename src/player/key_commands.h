// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

#include <SDL.h>

/// Carries out the command of a key that went down. `is` may be null. Escape belongs to the event
/// loop. [main]
void key_down(VideoState* is, const SDL_keysym& key);

/// Ends scanning when its key goes up. [main]
void key_up(VideoState* is, const SDL_keysym& key);

/// What the label says about the streams of a film. [main]
std::string stream_description(const VideoState* is);
