// SPDX-License-Identifier: MIT
#include "videoio/frame_converter.h"

#include "media/pixel_formats.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <new>
#include <utility>

namespace {

// The library converts whole groups of pixels, and leaves out those at the end of a row, or writes
// past it, when there is no room for the group.
constexpr int group = 32;

}  // namespace

void FrameConverter::set_output(AVPixelFormat format, int width, int height) {
    format_ = format;
    width_ = width;
    height_ = height;
}

bool FrameConverter::prepare(const AVFrame& frame) {
    const bool same = scaler_ && frame.width == source_width_ && frame.height == source_height_ &&
                      frame.format == source_format_ && frame.colorspace == source_colours_ &&
                      frame.color_range == source_range_;
    if (same) return true;
    scaler_.reset(sws_getContext(frame.width, frame.height,
                                 static_cast<AVPixelFormat>(frame.format), width_, height_, format_,
                                 SWS_POINT, nullptr, nullptr, nullptr));
    if (!scaler_) return false;
    follow_colours(scaler_.get(), frame);
    source_width_ = frame.width;
    source_height_ = frame.height;
    source_format_ = frame.format;
    source_colours_ = frame.colorspace;
    source_range_ = frame.color_range;
    return true;
}

bool FrameConverter::convert(const AVFrame& frame, std::uint8_t* destination) {
    if (!prepare(frame)) return false;
    if (width_ % group != 0) return convert_padded(frame, destination);
    std::uint8_t* planes[4] = {destination, nullptr, nullptr, nullptr};
    const int strides[4] = {av_image_get_linesize(format_, width_, 0), 0, 0, 0};
    return sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) >=
           0;
}

bool FrameConverter::convert_padded(const AVFrame& frame, std::uint8_t* destination) {
    if (!padded_) {
        FramePtr made(av_frame_alloc());
        if (!made) throw std::bad_alloc();
        made->format = format_;
        made->width = (width_ + group - 1) / group * group;
        made->height = height_;
        if (av_frame_get_buffer(made.get(), 0) < 0) throw std::bad_alloc();
        padded_ = std::move(made);
    }
    if (sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, padded_->data,
                  padded_->linesize) < 0) {
        return false;
    }
    const int row = av_image_get_linesize(format_, width_, 0);
    av_image_copy_plane(destination, row, padded_->data[0], padded_->linesize[0], row, height_);
    return true;
}
