// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>

/// Time stamp of the newest video packet (without video: audio packet) in its stream's time base;
/// AV_NOPTS_VALUE before the first. Codec threads read it.
extern std::atomic<std::int64_t> global_video_pkt_pts;
