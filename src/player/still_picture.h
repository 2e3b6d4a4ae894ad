// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// The user or the window system did something after which the window may look different. Redraws
/// go on for a while then: forms, labels and sizes move. [main]
void note_activity();

/// Whether drawing the window again would show the same picture: playback stands still, nothing
/// happened lately, no form is open, and what lies over the picture has not changed since it was
/// drawn. [main]
bool is_still(VideoState* is);
