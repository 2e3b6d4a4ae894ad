// SPDX-License-Identifier: MIT
#include "videoio/frame_converter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

// A grey frame of eight bits per pixel; `grey` has to outlive it.
FramePtr frame_of(AVPixelFormat format, int width, int height, std::vector<std::uint8_t>& grey) {
    FramePtr frame(av_frame_alloc());
    frame->format = format;
    frame->width = width;
    frame->height = height;
    frame->data[0] = grey.data();
    frame->linesize[0] = width;
    return frame;
}

TEST(FrameConverter, FormatsWithoutPixelsAreRefused) {
    std::vector<std::uint8_t> grey(64 * 2, 77);
    std::vector<std::uint8_t> rgb(64 * 2 * 3, 1);
    FrameConverter converter;
    converter.set_output(AV_PIX_FMT_RGB24, 64, 2);
    for (const AVPixelFormat format : {AV_PIX_FMT_VAAPI, AV_PIX_FMT_VDPAU, AV_PIX_FMT_CUDA}) {
        EXPECT_FALSE(converter.convert(*frame_of(format, 64, 2, grey), rgb.data())) << format;
        EXPECT_EQ(rgb, std::vector<std::uint8_t>(64 * 2 * 3, 1)) << "nothing is written";
    }
    EXPECT_TRUE(converter.convert(*frame_of(AV_PIX_FMT_GRAY8, 64, 2, grey), rgb.data()));
    EXPECT_NE(rgb, std::vector<std::uint8_t>(64 * 2 * 3, 1)) << "the next one is converted";
}

}  // namespace
