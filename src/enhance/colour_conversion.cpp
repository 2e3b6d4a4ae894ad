// SPDX-License-Identifier: MIT
#include "enhance/colour_conversion.h"

#include "enhance/enhance_error.h"
#include "media/pixel_formats.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace {

// Full precision: what is converted there and back stays what it was, within rounding.
constexpr int flags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;

}  // namespace

void ColourConversion::prepare(int width, int height, int from, int to, const AVFrame& coded) {
    if (!scaler_ || width != width_ || height != height_ || from != from_ || to != to_) {
        scaler_.reset(sws_getContext(width, height, static_cast<AVPixelFormat>(from), width, height,
                                     static_cast<AVPixelFormat>(to), flags, nullptr, nullptr,
                                     nullptr));
        width_ = width;
        height_ = height;
        from_ = from;
        to_ = to;
    }
    if (!scaler_) {
        const char* name = av_get_pix_fmt_name(static_cast<AVPixelFormat>(coded.format));
        throw EnhanceError(std::string("pixels of the format ") + (name ? name : "unknown") +
                           " cannot be converted");
    }
    follow_colours(scaler_.get(), coded);
}

void ColourConversion::to_rgb(const AVFrame& frame, std::uint8_t* destination, int row_bytes) {
    prepare(frame.width, frame.height, frame.format, AV_PIX_FMT_RGB24, frame);
    std::uint8_t* planes[4] = {destination, nullptr, nullptr, nullptr};
    const int strides[4] = {row_bytes, 0, 0, 0};
    sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, planes, strides);
}

void ColourConversion::from_rgb(const RgbPicture& picture, AVFrame& frame) {
    prepare(picture.width, picture.height, AV_PIX_FMT_RGB24, frame.format, frame);
    const std::uint8_t* planes[4] = {picture.bytes.data(), nullptr, nullptr, nullptr};
    const int strides[4] = {static_cast<int>(picture.row_bytes()), 0, 0, 0};
    sws_scale(scaler_.get(), planes, strides, 0, picture.height, frame.data, frame.linesize);
}
