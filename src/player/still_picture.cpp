// SPDX-License-Identifier: MIT
#include "player/still_picture.h"

#include "gui/widget_container.h"
#include "player/clocks.h"
#include "player/display.h"

namespace {

// Longer than the zoom of a picture that was opened, and than the trails of the waveforms glow.
constexpr std::int64_t moving_time = 5000000;  // microseconds

std::int64_t last_activity = 0;

}  // namespace

void note_activity() {
    last_activity = wall_clock();
}

bool is_still(VideoState* is) {
    // A form that closes has to go from the window, too.
    if (gui.anyVisible()) note_activity();
    const bool stands = is && is->paused && !is->rewind && !is->fast_forward && !is->pause_refresh;
    if (!stands) return false;
    const std::int64_t quiet = wall_clock() - last_activity;
    const bool settled = quiet > moving_time || quiet < 0;  // where the clock was set back
    return settled && hud_is_current(is);
}
