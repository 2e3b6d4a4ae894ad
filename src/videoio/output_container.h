// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"
#include "vyx/video.h"

/// What a file is written with.
struct OutputChoice {
    const AVOutputFormat* container = nullptr;
    const AVCodec* encoder = nullptr;
};

/// Chooses container and encoder by the codec's name, or by the file's when that is empty. Returns
/// false, with a message, when there are none.
bool choose_output(VYX_SaveVideoArgs& args, OutputChoice& choice);

/// The format to encode in: 4:2:0 for MPEG-4, else RGB with as many bits as `source`; the encoder's
/// own first one when it does not take that.
AVPixelFormat encoded_format(const AVCodec& encoder, AVPixelFormat source);
