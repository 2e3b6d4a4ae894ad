// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/waveform_display.h"
#include "player/video_state.h"

#include <vector>

/// Redraw the window, each ending with the buffer swap. [main]

/// The current picture of the film. Before there is one: the sound, if there is any.
void video_display(VideoState* is);
/// The waveforms of the sound and the film's name, while there is no picture.
void audio_display(VideoState* is);
/// What is shown while nothing is open.
void video_nosignal_display();

/// The newest sound of the film, at most two channels of it. [main]
std::vector<Waveform> read_waveforms(const VideoState* is);

/// What lies over the picture, and the bookkeeping of shown pictures. `is` may be null.
void hud_display(VideoState* is);
/// Whether that would look as it did when it was last drawn.
bool hud_is_current(VideoState* is);
/// The interface, then the buffer swap.
void gui_display();

/// Called with the wall time in microseconds after each buffer swap; null for nobody. For
/// measurements. [main]
using SwapObserver = void (*)(VideoState* is, std::int64_t now);
void set_swap_observer(SwapObserver observer);
