// SPDX-License-Identifier: MIT
#pragma once

#include "videoio/video_fixture.h"

/// An AVI file of packed RGB frames, put together byte by byte from the layout of such files, with
/// sizes that are counted instead of patched.
Bytes avi_bytes(const std::vector<Bytes>& frames, int width, int height, float fps);
