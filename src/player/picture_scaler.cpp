// SPDX-License-Identifier: MIT
#include "player/picture_scaler.h"

SwsContext* PictureScaler::prepare(const AVFrame& frame) {
    if (scaler_ && frame.width == width_ && frame.height == height_ && frame.format == format_) {
        return scaler_.get();
    }
    width_ = frame.width;
    height_ = frame.height;
    format_ = frame.format;
    scaler_.reset(sws_getContext(width_, height_, static_cast<AVPixelFormat>(format_), width_,
                                 height_, AV_PIX_FMT_RGB24, SWS_BICUBIC, nullptr, nullptr,
                                 nullptr));
    return scaler_.get();
}

bool PictureScaler::supports(const AVFrame& frame) {
    const MutexLock lock(mutex_);
    return prepare(frame) != nullptr;
}

bool PictureScaler::convert(const AVFrame& frame, std::uint8_t* destination, int row_bytes) {
    const MutexLock lock(mutex_);
    SwsContext* scaler = prepare(frame);
    if (!scaler) return false;
    std::uint8_t* planes[4] = {destination, nullptr, nullptr, nullptr};
    const int strides[4] = {row_bytes, 0, 0, 0};
    return sws_scale(scaler, frame.data, frame.linesize, 0, frame.height, planes, strides) > 0;
}

void PictureScaler::reset() {
    const MutexLock lock(mutex_);
    scaler_.reset();
    format_ = -1;
}
