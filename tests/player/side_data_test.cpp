// SPDX-License-Identifier: MIT
#include "player/side_data.h"

extern "C" {
#include <libavutil/motion_vector.h>
#include <libavutil/video_enc_params.h>
}

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

FramePtr make_frame(int width, int height, AVPictureType type = AV_PICTURE_TYPE_P) {
    FramePtr frame(av_frame_alloc());
    frame->width = width;
    frame->height = height;
    frame->pict_type = type;
    return frame;
}

AVMotionVector vector(int dst_x, int dst_y, int w, int h, int x, int y, int scale = 4,
                      int source = -1) {
    AVMotionVector mv{};
    mv.source = source;
    mv.w = static_cast<std::uint8_t>(w);
    mv.h = static_cast<std::uint8_t>(h);
    mv.dst_x = static_cast<std::int16_t>(dst_x);
    mv.dst_y = static_cast<std::int16_t>(dst_y);
    mv.motion_x = x;
    mv.motion_y = y;
    mv.motion_scale = static_cast<std::uint16_t>(scale);
    return mv;
}

void attach(AVFrame* frame, const std::vector<AVMotionVector>& vectors) {
    const std::size_t bytes = vectors.size() * sizeof(AVMotionVector);
    AVFrameSideData* data =
        av_frame_new_side_data(frame, AV_FRAME_DATA_MOTION_VECTORS, bytes ? bytes : 1);
    if (bytes) std::memcpy(data->data, vectors.data(), bytes);
}

VideoPicture& read(VideoPicture& slot, const FramePtr& frame, AVCodecID codec = AV_CODEC_ID_H264) {
    read_motion_vectors(&slot, frame.get(), codec);
    return slot;
}

void expect_vector(const VideoPicture& slot, int column, int row, int x, int y) {
    EXPECT_EQ(slot.motion_vectors[row][column].x, x) << column << ", " << row;
    EXPECT_EQ(slot.motion_vectors[row][column].y, y) << column << ", " << row;
}

TEST(MotionVectors, GridSizes) {
    VideoPicture slot;
    read(slot, make_frame(1920, 1080));
    EXPECT_EQ(slot.grid_width, 240);
    EXPECT_EQ(slot.grid_height, 136);
    EXPECT_EQ(slot.block_width, 8);
    EXPECT_EQ(slot.block_height, 8);
    EXPECT_EQ(slot.motion_vectors.rows(), 137);
    EXPECT_EQ(slot.motion_vectors.columns(), 241);
    read(slot, make_frame(1, 1));
    EXPECT_EQ(slot.grid_width, 2);
    EXPECT_EQ(slot.grid_height, 2);
    read(slot, make_frame(853, 481));
    EXPECT_EQ(slot.grid_width, 108);
    EXPECT_EQ(slot.grid_height, 62);
}

TEST(MotionVectors, PartitionsCoverTheirCells) {
    VideoPicture slot;
    const FramePtr frame = make_frame(64, 64);
    attach(frame.get(), {vector(8, 8, 16, 16, 4, -8), vector(24, 4, 16, 8, 8, 0),
                         vector(36, 8, 8, 16, 0, 12), vector(4, 20, 8, 8, -4, -4)});
    read(slot, frame);
    for (int r = 0; r < 2; ++r) {
        for (int c = 0; c < 2; ++c)
            expect_vector(slot, c, r, 1, -2);
    }
    expect_vector(slot, 2, 0, 2, 0);
    expect_vector(slot, 3, 0, 2, 0);
    expect_vector(slot, 2, 1, 0, 0);
    expect_vector(slot, 4, 0, 0, 3);
    expect_vector(slot, 4, 1, 0, 3);
    expect_vector(slot, 5, 0, 0, 0);
    expect_vector(slot, 0, 2, -1, -1);
    expect_vector(slot, 1, 2, 0, 0);
}

TEST(MotionVectors, FractionsAreShiftedArithmetically) {
    struct Case {
        int motion, scale, expected;
    };
    for (const Case& c : {Case{7, 4, 1},
                          {-7, 4, -2},
                          {-1, 4, -1},
                          {3, 2, 1},
                          {-3, 2, -2},
                          {5, 1, 5},
                          {-5, 0, -5}}) {
        VideoPicture slot;
        const FramePtr frame = make_frame(16, 16);
        attach(frame.get(), {vector(8, 8, 16, 16, c.motion, c.motion, c.scale)});
        read(slot, frame);
        expect_vector(slot, 0, 0, c.expected, c.expected);
    }
}

TEST(MotionVectors, PositionsOutsideAreClipped) {
    VideoPicture slot;
    const FramePtr frame = make_frame(32, 32);
    attach(frame.get(), {vector(-100, -100, 16, 16, 40, 40), vector(32000, 32000, 255, 255, 40, 40),
                         vector(-4, 4, 16, 8, 8, 8), vector(32, 32, 16, 16, 12, 12),
                         vector(16, 16, 0, 0, 80, 80), vector(-32768, 32767, 255, 255, 4, 4)});
    read(slot, frame);
    expect_vector(slot, 0, 0, 2, 2);
    expect_vector(slot, 1, 0, 0, 0);
    expect_vector(slot, 3, 3, 3, 3);
    expect_vector(slot, 2, 2, 0, 0);
    for (int c = 0; c <= 4; ++c)
        expect_vector(slot, c, 4, 0, 0);
    for (int r = 0; r <= 4; ++r)
        expect_vector(slot, 4, r, 0, 0);
}

TEST(MotionVectors, OnlyPredictionFromThePastCounts) {
    VideoPicture slot;
    FramePtr frame = make_frame(16, 16);
    attach(frame.get(), {vector(8, 8, 16, 16, 40, 40, 4, 1)});
    read(slot, frame);
    expect_vector(slot, 0, 0, 0, 0);
    for (const AVPictureType type : {AV_PICTURE_TYPE_B, AV_PICTURE_TYPE_I, AV_PICTURE_TYPE_S}) {
        frame = make_frame(16, 16, type);
        attach(frame.get(), {vector(8, 8, 16, 16, 40, 40)});
        read(slot, frame);
        expect_vector(slot, 0, 0, 0, 0);
    }
}

TEST(MotionVectors, IntraPicturesHaveZeroVectorsNotNone) {
    VideoPicture slot;
    const FramePtr moving = make_frame(16, 16);
    attach(moving.get(), {vector(8, 8, 16, 16, 40, 40)});
    read(slot, moving);
    read(slot, make_frame(16, 16, AV_PICTURE_TYPE_I));
    ASSERT_FALSE(slot.motion_vectors.empty());
    expect_vector(slot, 0, 0, 0, 0);
}

TEST(MotionVectors, CodecsThatTellNone) {
    for (const AVCodecID codec : {AV_CODEC_ID_HEVC, AV_CODEC_ID_VP8, AV_CODEC_ID_VP9,
                                  AV_CODEC_ID_AV1, AV_CODEC_ID_PNG, AV_CODEC_ID_MJPEG}) {
        VideoPicture slot;
        EXPECT_TRUE(read(slot, make_frame(64, 64), codec).motion_vectors.empty());
        EXPECT_FALSE(exports_motion_vectors(codec));
        EXPECT_TRUE(vectors_allow_frame_threads(codec));
        EXPECT_EQ(slot.grid_width, 8) << "the sizes are set all the same";
    }
    for (const AVCodecID codec :
         {AV_CODEC_ID_H264, AV_CODEC_ID_MPEG1VIDEO, AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_MPEG4}) {
        EXPECT_TRUE(exports_motion_vectors(codec));
    }
}

struct Block {
    int x, y, w, h, delta;
};

FramePtr frame_with_quantisers(int width, int height, int qp, const std::vector<Block>& blocks,
                               AVVideoEncParamsType type = AV_VIDEO_ENC_PARAMS_H264) {
    FramePtr frame = make_frame(width, height);
    AVVideoEncParams* parameters = av_video_enc_params_create_side_data(
        frame.get(), type, static_cast<unsigned>(blocks.size()));
    parameters->qp = qp;
    for (unsigned i = 0; i < blocks.size(); ++i) {
        AVVideoBlockParams* block = av_video_enc_params_block(parameters, i);
        block->src_x = blocks[i].x;
        block->src_y = blocks[i].y;
        block->w = blocks[i].w;
        block->h = blocks[i].h;
        block->delta_qp = blocks[i].delta;
    }
    return frame;
}

VideoPicture& read_q(VideoPicture& slot, const FramePtr& frame,
                     AVCodecID codec = AV_CODEC_ID_H264) {
    read_motion_vectors(&slot, frame.get(), codec);
    read_quantization_table(&slot, frame.get(), codec);
    return slot;
}

TEST(Quantisers, WithoutATableEveryCellIsOne) {
    VideoPicture slot;
    read_q(slot, make_frame(40, 24));
    ASSERT_EQ(slot.quantization_table.rows(), 4);
    ASSERT_EQ(slot.quantization_table.columns(), 6);
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 6; ++c)
            EXPECT_EQ(slot.quantization_table[r][c], 1);
    }
}

TEST(Quantisers, BlocksFillTheirCells) {
    VideoPicture slot;
    read_q(slot, frame_with_quantisers(32, 32, 20, {{0, 0, 16, 16, 5}, {16, 0, 16, 16, -3}}));
    EXPECT_EQ(slot.quantization_table[0][0], 25);
    EXPECT_EQ(slot.quantization_table[1][1], 25);
    EXPECT_EQ(slot.quantization_table[0][2], 17);
    EXPECT_EQ(slot.quantization_table[2][0], 20) << "no block: the picture's own";
}

TEST(Quantisers, AreHalvedWhereTheDecoderDoublesThem) {
    for (const AVCodecID codec : {AV_CODEC_ID_MPEG4, AV_CODEC_ID_H263, AV_CODEC_ID_FLV1}) {
        VideoPicture slot;
        read_q(slot, frame_with_quantisers(16, 16, 14, {}, AV_VIDEO_ENC_PARAMS_MPEG2), codec);
        EXPECT_EQ(slot.quantization_table[0][0], 7);
    }
    VideoPicture slot;
    read_q(slot, frame_with_quantisers(16, 16, 14, {}, AV_VIDEO_ENC_PARAMS_MPEG2),
           AV_CODEC_ID_MPEG2VIDEO);
    EXPECT_EQ(slot.quantization_table[0][0], 14);
}

TEST(Quantisers, AreClampedAndClipped) {
    VideoPicture slot;
    read_q(slot, frame_with_quantisers(32, 32, 100,
                                       {{-8, -8, 16, 16, 100},
                                        {16, 16, 1000, 1000, -200},
                                        {INT32_MAX, INT32_MAX, INT32_MAX, 1, 9},
                                        {0, 16, -16, 16, 9}}));
    EXPECT_EQ(slot.quantization_table[0][0], 127);
    EXPECT_EQ(slot.quantization_table[3][3], 0);
    EXPECT_EQ(slot.quantization_table[0][1], 100);
    EXPECT_EQ(slot.quantization_table[2][0], 100);
}

TEST(Quantisers, OfThePictureBeforeStandInWhereNoneAreTold) {
    QuantiserReader reader;
    VideoPicture slots[3];
    const auto next = [&](VideoPicture& slot, const FramePtr& frame) {
        read_motion_vectors(&slot, frame.get(), AV_CODEC_ID_MPEG2VIDEO);
        reader.read(&slot, frame.get(), AV_CODEC_ID_MPEG2VIDEO);
        return slot.quantization_table[0][0];
    };
    EXPECT_EQ(next(slots[0], make_frame(32, 32)), 1) << "there is no picture before";
    EXPECT_EQ(next(slots[1], frame_with_quantisers(32, 32, 9, {{0, 0, 8, 8, 3}})), 12);
    EXPECT_EQ(next(slots[2], make_frame(32, 32)), 12);
    EXPECT_EQ(slots[2].quantization_table[3][3], 9);
    EXPECT_EQ(next(slots[0], make_frame(64, 32)), 1) << "another size";
}

// The library's record with one of its numbers changed.
AVVideoEncParams* parameters_of(const FramePtr& frame) {
    AVFrameSideData* data = av_frame_get_side_data(frame.get(), AV_FRAME_DATA_VIDEO_ENC_PARAMS);
    return reinterpret_cast<AVVideoEncParams*>(data->data);
}

TEST(Quantisers, BlocksBeyondTheirMemoryCountAsNoTable) {
    const auto first_quantiser = [](const FramePtr& frame) -> int {
        VideoPicture slot;
        return read_q(slot, frame).quantization_table[0][0];
    };
    const std::vector<Block> blocks = {{0, 0, 16, 16, 5}};
    const FramePtr whole = frame_with_quantisers(16, 16, 20, blocks);
    EXPECT_EQ(first_quantiser(whole), 25);
    const FramePtr many = frame_with_quantisers(16, 16, 20, blocks);
    parameters_of(many)->nb_blocks = 2;
    EXPECT_EQ(first_quantiser(many), 1);
    const FramePtr far = frame_with_quantisers(16, 16, 20, blocks);
    parameters_of(far)->blocks_offset += 4;
    EXPECT_EQ(first_quantiser(far), 1);
    const FramePtr large = frame_with_quantisers(16, 16, 20, blocks);
    parameters_of(large)->block_size = SIZE_MAX / 2;
    EXPECT_EQ(first_quantiser(large), 1);
    const FramePtr small = frame_with_quantisers(16, 16, 20, blocks);
    parameters_of(small)->block_size = 4;
    EXPECT_EQ(first_quantiser(small), 1);
    const FramePtr cut = make_frame(16, 16);
    av_frame_new_side_data(cut.get(), AV_FRAME_DATA_VIDEO_ENC_PARAMS, 8);
    EXPECT_EQ(first_quantiser(cut), 1);
}

TEST(Quantisers, SumsBeyondIntegersAreClamped) {
    VideoPicture slot;
    read_q(slot, frame_with_quantisers(32, 16, INT32_MAX, {{0, 0, 16, 16, INT32_MAX}}));
    EXPECT_EQ(slot.quantization_table[0][0], 127);
    read_q(slot, frame_with_quantisers(32, 16, INT32_MIN, {{0, 0, 16, 16, INT32_MIN}}));
    EXPECT_EQ(slot.quantization_table[0][0], 0);
}

TEST(Quantisers, OtherScalesCountAsNoTable) {
    VideoPicture slot;
    read_q(slot, frame_with_quantisers(16, 16, 200, {}, AV_VIDEO_ENC_PARAMS_VP9), AV_CODEC_ID_VP9);
    EXPECT_EQ(slot.quantization_table[0][0], 1);
}

}  // namespace
