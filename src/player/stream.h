// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// How a file is opened.
struct StreamOptions {
    bool loop = false;     ///< start again at the end
    bool preload = false;  ///< read the file twice before it plays; it is paused until resumed
    PostprocessingCallback postprocessing_callback = nullptr;
};

/// Opens a file, or with a name that begins with "cam:" a capture device, and starts its demuxing
/// thread; what comes of it is told by events. `title` goes before the file's name in the caption.
/// `format` forces an input format, null probes. Returns null when no thread can be made. [main]
VideoState* stream_open(const char* name, const char* title, const AVInputFormat* format,
                        const StreamOptions& options = {});

/// Stops every thread of the state and frees what it holds. The record itself stays readable.
/// Closing twice does nothing the second time. [main]
void stream_close(VideoState* is);

/// Closes whatever is open, failed files that nobody has closed yet included. [main]
void close_all_streams();

/// Whether `is` is a state that was opened and not yet closed. [main]
bool stream_is_open(const VideoState* is);

/// Asks for a seek to `position` (microseconds), backwards when `direction` is below 0. Dropped
/// while another is pending. [main]
void stream_seek(VideoState* is, std::int64_t position, int direction);

/// Toggles the pause and ends scanning. The video clock goes on where it stopped. [main]
void stream_pause(VideoState* is);

/// Scan backwards or forwards in steps of a second, with the clocks paused, until the pause is
/// toggled. [main]
void stream_rewind(VideoState* is);
void stream_ffw(VideoState* is);

/// Whether the codec library is to give up what it is waiting for. `opaque` is the `VideoState`,
/// null for the current one.
int decode_interrupt_cb(void* opaque);
