// SPDX-License-Identifier: MIT
#pragma once

#include "videoio/avi_writer.h"
#include "videoio/partial_file.h"
#include "videoio/video_encoder.h"

#include <memory>

/// Stores frames as they are in an AVI file. Does without FFmpeg.
class VYX_AVIVideoEncoder : public VYX_VideoEncoder {
  public:
    /// Makes the file that the record names. The object is usable when the message of the record is
    /// empty afterwards.
    explicit VYX_AVIVideoEncoder(VYX_SaveVideoArgs* args);
    ~VYX_AVIVideoEncoder() override;

    void WriteFrame(VYX_WriteFrameArgs* args) override;

  private:
    void append(const unsigned char* frame);

    PartialFile partial_;
    FILE* file_ = nullptr;  ///< the writer's
    int error_ = 0;         ///< of the system: why a frame is not complete, and the file never
    std::unique_ptr<AviWriter> writer_;
};
