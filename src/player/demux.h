// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// Thread body: opens the file, reads packets into the queues and carries out requests until the
/// state is closed. `param` is the `VideoState`.
int decode_thread(void* param);

/// Opens the decoder of a stream and what plays it. Returns 0, or -1 when the index is out of range
/// or the stream cannot be played. [demux]
int stream_component_open(VideoState* is, int stream_index);

/// Stops and frees what `stream_component_open` made. [demux]
void stream_component_close(VideoState* is, int stream_index);

/// Reading stops above this many bytes in the queues together.
inline constexpr int most_queued_bytes = 31 * 1024 * 1024;
/// With this much sound and this many video packets waiting, reading pauses.
inline constexpr int enough_audio_bytes = 320 * 1024;
inline constexpr int enough_video_packets = 8;

/// Whether enough is queued for now. Counts as said above; a stream that is not there always has
/// enough.
bool reading_is_ahead(const VideoState* is);

/// The stream whose time base positions are told in: the video's, else the sound's, else -1.
int reference_stream(const VideoState* is);
