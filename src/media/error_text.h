// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// FFmpeg's words for an error code.
std::string error_text(int code);
