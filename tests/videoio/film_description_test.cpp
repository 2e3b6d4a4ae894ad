// SPDX-License-Identifier: MIT
#include "videoio/film_description.h"

#include <gtest/gtest.h>

namespace {

// A film that only consists of what is told of it.
class FilmDescription : public ::testing::Test {
  protected:
    FilmDescription()
        : container_(avformat_alloc_context()),
          stream_(avformat_new_stream(container_.get(), nullptr)),
          decoder_(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_MPEG4))) {
        stream_->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
        stream_->r_frame_rate = {25, 1};
        container_->duration = 10 * AV_TIME_BASE;
        decoder_->codec_id = AV_CODEC_ID_MPEG4;
        decoder_->width = 320;
        decoder_->height = 180;
        decoder_->pix_fmt = AV_PIX_FMT_YUV420P;
        args_.size = sizeof args_;
    }
    VYX_OpenVideoArgs& described() {
        EXPECT_TRUE(describe_film(*container_, *stream_, *decoder_, args_)) << args_.errorMsg;
        return args_;
    }

    FormatInputPtr container_;
    AVStream* stream_;
    CodecContextPtr decoder_;
    VYX_OpenVideoArgs args_{};
};

TEST_F(FilmDescription, WhatIsTold) {
    decoder_->bit_rate = 1234567;
    args_.video_bit_rate = 42;
    described();
    EXPECT_EQ(args_.frame_width, 320);
    EXPECT_EQ(args_.frame_height, 180);
    EXPECT_EQ(args_.frame_bytes, 320 * 180 * 3);
    EXPECT_EQ(args_.bits_per_color, 8);
    EXPECT_EQ(args_.bit_rate, 1234567);
    EXPECT_EQ(args_.duration_sec, 10.0);
    EXPECT_EQ(args_.frame_rate, 25.0);
    EXPECT_STREQ(args_.codec_name, "MPEG-4 part 2");
    EXPECT_EQ(args_.video_bit_rate, 42) << "stays as it is";
}

TEST_F(FilmDescription, FramesAreCountedOrEstimated) {
    EXPECT_EQ(described().frame_count, 250);
    stream_->nb_frames = 7;
    EXPECT_EQ(described().frame_count, 7);
    stream_->nb_frames = std::int64_t{1} << 40;
    EXPECT_EQ(described().frame_count, INT32_MAX);
    stream_->nb_frames = 0;
    container_->duration = AV_NOPTS_VALUE;
    EXPECT_EQ(described().frame_count, 0);
    EXPECT_EQ(described().duration_sec, 0.0);
    container_->duration = INT64_MAX;
    EXPECT_EQ(described().frame_count, INT32_MAX);
}

TEST_F(FilmDescription, Rates) {
    stream_->r_frame_rate = {0, 0};
    stream_->avg_frame_rate = {30, 1};
    decoder_->framerate = {24000, 1001};
    EXPECT_DOUBLE_EQ(described().frame_rate, 24000.0 / 1001.0) << "the codec's";
    decoder_->framerate = {120, 1};
    EXPECT_EQ(described().frame_rate, 120.0);
    decoder_->framerate = {121, 1};
    EXPECT_EQ(described().frame_rate, 30.0) << "not credible: the average";
    decoder_->framerate = {0, 1};
    EXPECT_EQ(described().frame_rate, 30.0);
    stream_->avg_frame_rate = {0, 0};
    EXPECT_EQ(described().frame_rate, 0.0);
    EXPECT_EQ(args_.frame_count, 0);
    stream_->r_frame_rate = {240, 1};
    EXPECT_EQ(described().frame_rate, 240.0) << "the stream's own counts as it is";
}

TEST_F(FilmDescription, Shapes) {
    EXPECT_DOUBLE_EQ(described().pixel_aspect_ratio, 320.0 / 180.0);
    stream_->sample_aspect_ratio = {16, 15};
    EXPECT_DOUBLE_EQ(described().pixel_aspect_ratio, 16.0 / 15.0 * 320.0 / 180.0);
    stream_->sample_aspect_ratio = {-16, 15};
    EXPECT_DOUBLE_EQ(described().pixel_aspect_ratio, 320.0 / 180.0);
    stream_->sample_aspect_ratio = {0, 1};
    EXPECT_DOUBLE_EQ(described().pixel_aspect_ratio, 320.0 / 180.0);
}

TEST_F(FilmDescription, BitRatesTakeTheLowHalf) {
    decoder_->bit_rate = std::int64_t{1} << 40;
    EXPECT_EQ(described().bit_rate, INT32_MAX);
    decoder_->bit_rate = -5;
    EXPECT_EQ(described().bit_rate, 0);
}

TEST_F(FilmDescription, DeepColours) {
    decoder_->pix_fmt = AV_PIX_FMT_YUV420P10LE;
    EXPECT_EQ(described().bits_per_color, 16);
    EXPECT_EQ(args_.frame_bytes, 320 * 180 * 6);
    for (const AVPixelFormat format :
         {AV_PIX_FMT_RGB48LE, AV_PIX_FMT_RGB48BE, AV_PIX_FMT_BGR48LE, AV_PIX_FMT_YUV420P9LE,
          AV_PIX_FMT_YUV422P10BE, AV_PIX_FMT_YUV444P12LE, AV_PIX_FMT_YUV420P14LE,
          AV_PIX_FMT_YUV444P16BE}) {
        EXPECT_EQ(output_format(format), AV_PIX_FMT_RGB48LE) << format;
    }
    for (const AVPixelFormat format :
         {AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUVJ444P, AV_PIX_FMT_RGB24, AV_PIX_FMT_GRAY8,
          AV_PIX_FMT_PAL8, AV_PIX_FMT_RGB565LE, AV_PIX_FMT_NONE}) {
        EXPECT_EQ(output_format(format), AV_PIX_FMT_RGB24) << format;
    }
}

TEST_F(FilmDescription, SizesThatNoBufferHas) {
    for (const auto& [width, height] : {std::pair{0, 180}, {320, 0}, {-1, 5}, {65536, 65536}}) {
        decoder_->width = width;
        decoder_->height = height;
        EXPECT_FALSE(describe_film(*container_, *stream_, *decoder_, args_));
        EXPECT_EQ(args_.errorMsg, "Invalid frame size: " + std::to_string(width) + "x" +
                                      std::to_string(height) + "!\n");
    }
}

TEST_F(FilmDescription, FirstStreamOfMovingPictures) {
    EXPECT_EQ(find_film(*container_), 0);
    stream_->disposition = AV_DISPOSITION_ATTACHED_PIC;
    EXPECT_EQ(find_film(*container_), -1);
    avformat_new_stream(container_.get(), nullptr)->codecpar->codec_type = AVMEDIA_TYPE_AUDIO;
    EXPECT_EQ(find_film(*container_), -1);
    for (int i = 0; i < 2; ++i)
        avformat_new_stream(container_.get(), nullptr)->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
    EXPECT_EQ(find_film(*container_), 2);
}

}  // namespace
