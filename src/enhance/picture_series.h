// SPDX-License-Identifier: MIT
#pragma once

#include "enhance/picture_sink.h"

/// Writes numbered PNG files, each complete or not there.
class PictureSeries : public PictureSink {
  public:
    /// `pattern` must be one by `is_picture_pattern`.
    explicit PictureSeries(std::string pattern);

    void write(const RgbPicture& picture, double seconds) override;
    void finish() override {}

  private:
    std::string pattern_;
    CodecContextPtr encoder_;
    FramePtr frame_;
    PacketPtr packet_;
    long number_ = 0;
};
