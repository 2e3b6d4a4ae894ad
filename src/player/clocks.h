// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

#include <array>
#include <cstdint>

/// Wall-clock time in microseconds. Any thread.
std::int64_t wall_clock();

/// Replaces the wall clock for tests; null brings it back.
void set_wall_clock(std::int64_t (*clock)());

/// Speeds that `VideoState::playback_speed_index` chooses from.
inline constexpr std::array<double, 10> playback_speeds = {0.5, 0.6, 0.7, 0.8, 1.0,
                                                           1.1, 1.2, 1.3, 1.4, 1.5};
inline constexpr int normal_speed_index = 4;

/// The clocks of an open file, in seconds. Any thread.
double get_audio_clock(const VideoState* is);
double get_video_clock(const VideoState* is);
double get_external_clock(const VideoState* is);
/// The clock that the sync source names, or the nearest there is.
double get_master_clock(const VideoState* is);

/// The time of a decoded picture: `pts`, or, where that is 0, the predicted one. Predicts the next
/// picture's from `frame_delay` (seconds) and the picture's repeat count. [video]
double synchronize_video(VideoState* is, int repeat_pict, double frame_delay, double pts);

/// A time stamp in seconds; an unset one is 0.
double timestamp_seconds(std::int64_t timestamp, AVRational time_base);
/// The same in microseconds.
std::int64_t timestamp_microseconds(std::int64_t timestamp, AVRational time_base);

/// A time of the file's time stamps (microseconds) counted from the start of the film: recordings
/// may begin at any time. 0 for what lies before it. Any thread.
std::int64_t time_in_film(const VideoState* is, std::int64_t time);
