// SPDX-License-Identifier: MIT
#pragma once

/// Asks the window system to swap buffers on every `interval`-th refresh of the display, 0 at once.
///
/// Needs the current OpenGL context and loaded GLX entry points. Where the window system offers no
/// way, nothing happens. Returns the extension used, null for none. [main]
const char* set_swap_interval(int interval);
