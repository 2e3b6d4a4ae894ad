// SPDX-License-Identifier: MIT
#include "media/packet_time.h"

extern "C" {
#include <libavutil/avutil.h>
}

std::atomic<std::int64_t> global_video_pkt_pts{AV_NOPTS_VALUE};
