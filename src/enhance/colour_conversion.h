// SPDX-License-Identifier: MIT
#pragma once

#include "enhance/rgb_picture.h"
#include "media/ffmpeg_handles.h"

/// Converts pictures of any format to and from 24-bit RGB at their own size, exactly where both are
/// RGB. Colours follow the frame's own colour space and range; unknown ones count as those of
/// standard definition. One thread; failures throw `EnhanceError`.
class ColourConversion {
  public:
    /// Writes `frame` as rows of R, G, B bytes.
    void to_rgb(const AVFrame& frame, std::uint8_t* destination, int row_bytes);

    /// Fills the planes of `frame`, which has its size, format and colours set and its buffers
    /// made.
    void from_rgb(const RgbPicture& picture, AVFrame& frame);

  private:
    void prepare(int width, int height, int from, int to, const AVFrame& coded);

    ScalerPtr scaler_;
    int width_ = 0;
    int height_ = 0;
    int from_ = -1;
    int to_ = -1;
};
