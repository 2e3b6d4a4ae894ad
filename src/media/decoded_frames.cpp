// SPDX-License-Identifier: MIT
#include "media/decoded_frames.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cstring>

int get_stamped_buffer(AVCodecContext* codec, AVFrame* frame, int flags, std::int64_t timestamp) {
    const int result = avcodec_default_get_buffer2(codec, frame, flags);
    if (result < 0) return result;
    av_buffer_unref(&frame->opaque_ref);
    frame->opaque_ref = av_buffer_alloc(sizeof timestamp);
    if (!frame->opaque_ref) return AVERROR(ENOMEM);
    std::memcpy(frame->opaque_ref->data, &timestamp, sizeof timestamp);
    return 0;
}

std::int64_t buffer_stamp(const AVFrame& frame) {
    std::int64_t timestamp = AV_NOPTS_VALUE;
    if (frame.opaque_ref) std::memcpy(&timestamp, frame.opaque_ref->data, sizeof timestamp);
    return timestamp;
}

bool is_key_picture(const AVFrame& frame) {
#ifdef AV_FRAME_FLAG_KEY
    const bool key = (frame.flags & AV_FRAME_FLAG_KEY) != 0;
#else
    const bool key = frame.key_frame == 1;
#endif
    return key || frame.pict_type == AV_PICTURE_TYPE_I;
}
