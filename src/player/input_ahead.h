// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

// The first file of a run is opened on a thread of its own while the window and OpenGL come up, so
// that the demuxing thread finds its streams known. Only ordinary files are: whatever else has a
// name may block, or be a device.

/// Starts to open `name`, unless one is under way; once in a run, as one film can be interrupted.
/// What goes wrong shows when the file is taken. [main]
void open_input_ahead(const char* name);

/// What came of opening a file ahead.
enum class InputAhead {
    none,    ///< nobody opened it: the caller does
    failed,  ///< it cannot be opened or read
    opened,  ///< it is `is->format_context`, its streams are known
};

/// Hands over the file of `is` when it was opened ahead, after waiting for that. From then on
/// reading stops with `is->abort_request`. [demux]
InputAhead take_input_ahead(VideoState* is);

/// Frees what nobody took, after waiting for its thread. [main]
void forget_input_ahead();
