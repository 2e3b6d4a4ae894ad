// SPDX-License-Identifier: MIT
#pragma once

#include "vyx/video.h"

/// The message of a record.
using ErrorMessage = char[VYX_TEXT_SIZE];

/// Writes a printf-style text, cut to what fits. Takes no memory. Returns false, so that a step
/// that fails can end with it.
[[gnu::format(printf, 2, 3)]] bool set_error(ErrorMessage& message, const char* format, ...);

/// Whether a text field ends within its array; otherwise the message says that it does not.
bool check_text(const char* text, unsigned size, ErrorMessage& message);
