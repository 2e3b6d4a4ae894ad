// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"
#include "platform/sync.h"

#include <cstdint>

/// Converts pictures to 24-bit RGB at their own size. Any thread; one conversion at a time.
class PictureScaler {
  public:
    PictureScaler() : mutex_(make_mutex()) {}

    /// Whether pictures like `frame` can be converted.
    bool supports(const AVFrame& frame);

    /// Writes `frame` as rows of R, G, B bytes. Returns false when it cannot be converted.
    bool convert(const AVFrame& frame, std::uint8_t* destination, int row_bytes);

    /// Frees what conversions keep.
    void reset();

  private:
    // The converter for pictures like `frame`; null when there is none. The mutex is held.
    SwsContext* prepare(const AVFrame& frame);

    MutexPtr mutex_;
    ScalerPtr scaler_;
    int width_ = 0;
    int height_ = 0;
    int format_ = -1;
};
