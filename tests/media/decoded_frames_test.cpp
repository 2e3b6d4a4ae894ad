// SPDX-License-Identifier: MIT
#include "media/decoded_frames.h"

#include "media/ffmpeg_handles.h"

#include <gtest/gtest.h>

namespace {

// For pictures of 16 x 16.
CodecContextPtr decoder() {
    CodecContextPtr codec(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_RAWVIDEO)));
    codec->width = codec->height = 16;
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    EXPECT_EQ(avcodec_open2(codec.get(), nullptr, nullptr), 0);
    return codec;
}

FramePtr frame_for(const AVCodecContext& codec) {
    FramePtr frame(av_frame_alloc());
    frame->width = codec.width;
    frame->height = codec.height;
    frame->format = codec.pix_fmt;
    return frame;
}

TEST(DecodedFrames, BuffersRememberTheTimeStampTheyWereGiven) {
    const CodecContextPtr codec = decoder();
    for (const std::int64_t stamp : {std::int64_t{0}, std::int64_t{90000}, AV_NOPTS_VALUE}) {
        const FramePtr frame = frame_for(*codec);
        ASSERT_EQ(get_stamped_buffer(codec.get(), frame.get(), 0, stamp), 0);
        EXPECT_NE(frame->data[0], nullptr);
        EXPECT_EQ(buffer_stamp(*frame), stamp);
    }
}

TEST(DecodedFrames, TheNewestStampCounts) {
    const CodecContextPtr codec = decoder();
    const FramePtr frame = frame_for(*codec);
    ASSERT_EQ(get_stamped_buffer(codec.get(), frame.get(), 0, 1), 0);
    av_frame_unref(frame.get());
    frame->width = frame->height = 16;
    frame->format = codec->pix_fmt;
    ASSERT_EQ(get_stamped_buffer(codec.get(), frame.get(), 0, 2), 0);
    EXPECT_EQ(buffer_stamp(*frame), 2);
}

TEST(DecodedFrames, OtherBuffersHaveNone) {
    const FramePtr frame(av_frame_alloc());
    EXPECT_EQ(buffer_stamp(*frame), AV_NOPTS_VALUE);
}

TEST(DecodedFrames, WhatTheLibraryCannotAllocateIsAnError) {
    const CodecContextPtr codec = decoder();
    const FramePtr frame = frame_for(*codec);
    frame->format = AV_PIX_FMT_NONE;
    EXPECT_LT(get_stamped_buffer(codec.get(), frame.get(), 0, 1), 0);
    EXPECT_EQ(frame->opaque_ref, nullptr);
}

TEST(DecodedFrames, KeyPicturesAreThoseMarkedAndThoseCodedByThemselves) {
    const FramePtr frame(av_frame_alloc());
    frame->pict_type = AV_PICTURE_TYPE_P;
#ifdef AV_FRAME_FLAG_KEY
    frame->flags = 0;
    EXPECT_FALSE(is_key_picture(*frame));
    frame->flags = AV_FRAME_FLAG_KEY;
#else
    frame->key_frame = 0;
    EXPECT_FALSE(is_key_picture(*frame));
    frame->key_frame = 1;
#endif
    EXPECT_TRUE(is_key_picture(*frame));
    const FramePtr coded_by_itself(av_frame_alloc());
#ifndef AV_FRAME_FLAG_KEY
    coded_by_itself->key_frame = 0;
#else
    coded_by_itself->flags = 0;
#endif
    coded_by_itself->pict_type = AV_PICTURE_TYPE_I;
    EXPECT_TRUE(is_key_picture(*coded_by_itself));
}

}  // namespace
