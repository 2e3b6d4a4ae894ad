// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

#include <cstdint>

/// Carries out a pending seek or the next step of a scan. Returns whether the film now reads from
/// another place. [demux]
bool carry_out_seek(VideoState* is);

/// Seeks to `target` (microseconds, not before the start of the file). A plain forward seek that
/// finds nothing is tried backwards once. With `early` it may end some seconds before, where the
/// file has no index that tells of key pictures. Returns whether it worked. [demux]
bool seek_file(VideoState* is, std::int64_t target, int flags, bool try_backwards,
               bool early = false);
