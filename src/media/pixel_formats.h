// SPDX-License-Identifier: MIT
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libswscale/swscale.h>
}

/// The formats an encoder takes, ending with AV_PIX_FMT_NONE; null: all.
const AVPixelFormat* encoder_pixel_formats(const AVCodec& codec);

/// Sets the matrix and the range of a conversion between RGB and YUV to those of the frame, which
/// has the YUV side. Unknown colours count as those of standard definition.
void follow_colours(SwsContext* scaler, const AVFrame& coded);
