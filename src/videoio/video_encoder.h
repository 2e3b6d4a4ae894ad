// SPDX-License-Identifier: MIT
#pragma once

#include "videoio/base_class.h"
#include "vyx/video.h"

/// Writes frames into a file, which is complete when the encoder has been destroyed. One thread at
/// a time.
class VYX_VideoEncoder : public VYX_BaseClass {
  public:
    VYX_VideoEncoder() : VYX_BaseClass(encoder_kind) {}
    ~VYX_VideoEncoder() override = default;

    /// Writes one frame; the record's message tells what failed.
    virtual void WriteFrame(VYX_WriteFrameArgs* args) = 0;
};
