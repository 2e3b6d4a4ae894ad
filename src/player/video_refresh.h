// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

#include <cstdint>

/// Wall times in microseconds at which the last pictures were shown, a ring, and its write index.
/// [main]
inline constexpr int timestamp_ring_size = 32;
extern std::int64_t lastframe_timestamp[timestamp_ring_size];
extern int lastframe_timestamp_qi;

/// Fills the ring as if pictures had been shown regularly until `now`: the estimate has something
/// to start from.
void start_frame_times(std::int64_t now);

/// Notes that a picture is being shown at `now`.
void note_frame_shown(std::int64_t now);

/// The smoothed number of pictures shown per second. Each call moves it on. [main]
double video_estimate_fps();

/// Whether something hides the picture completely, so that only the interface is drawn. [main]
bool video_suppressed();

/// Handles one refresh event: decides what to show, asks for the next refresh, and draws. `is` may
/// be null. [main]
void video_refresh_timer(VideoState* is);

/// Gives the slot at the read index back to the video thread. [main]
void release_picture(VideoState* is);
