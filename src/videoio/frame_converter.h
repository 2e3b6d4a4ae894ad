// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"

#include <cstdint>

/// Converts decoded frames of any kind to packed RGB of one size, taking the nearest pixel. Colours
/// follow each frame's own matrix and range. One thread.
class FrameConverter {
  public:
    /// `format` is the RGB format, `width` and `height` what every frame comes out as.
    void set_output(AVPixelFormat format, int width, int height);

    /// Writes the frame to rows without padding. Returns false when the library makes no converter
    /// of its pixels, and throws std::bad_alloc when there is no memory for the rows in between.
    bool convert(const AVFrame& frame, std::uint8_t* destination);

  private:
    bool prepare(const AVFrame& frame);
    bool convert_padded(const AVFrame& frame, std::uint8_t* destination);

    AVPixelFormat format_ = AV_PIX_FMT_NONE;
    int width_ = 0;
    int height_ = 0;
    ScalerPtr scaler_;
    FramePtr padded_;  ///< for widths that the library would write beyond
    // What the scaler was made for.
    int source_width_ = 0;
    int source_height_ = 0;
    int source_format_ = AV_PIX_FMT_NONE;
    AVColorSpace source_colours_ = AVCOL_SPC_UNSPECIFIED;
    AVColorRange source_range_ = AVCOL_RANGE_UNSPECIFIED;
};
