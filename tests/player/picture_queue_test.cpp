// SPDX-License-Identifier: MIT
#include "player/picture_queue.h"

#include "core/settings.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"

#include <cmath>
#include <random>
#include <vector>

namespace {

FramePtr make_frame(int width, int height, AVPixelFormat format) {
    FramePtr frame(av_frame_alloc());
    frame->width = width;
    frame->height = height;
    frame->format = format;
    av_frame_get_buffer(frame.get(), 0);
    return frame;
}

TEST(FillPicture, PacksPlanesForTheGpu) {
    const FramePtr frame = make_frame(6, 4, AV_PIX_FMT_YUV420P);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            frame->data[0][y * frame->linesize[0] + x] = static_cast<std::uint8_t>(10 * y + x);
        }
    }
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            frame->data[1][y * frame->linesize[1] + x] =
                static_cast<std::uint8_t>(100 + 10 * y + x);
            frame->data[2][y * frame->linesize[2] + x] =
                static_cast<std::uint8_t>(200 + 10 * y + x);
        }
    }
    VideoState state;
    std::vector<std::uint8_t> packed(6 * 3 * 4, 0xEE);
    fill_picture(&state, *frame, packed.data(), 6 * 3, true);
    const std::uint8_t expected[] = {0,   1,   2,   3,   4,   5,    //
                                     10,  11,  12,  13,  14,  15,   //
                                     20,  21,  22,  23,  24,  25,   //
                                     30,  31,  32,  33,  34,  35,   //
                                     100, 101, 102, 200, 201, 202,  //
                                     110, 111, 112, 210, 211, 212};
    EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), packed.begin()));
    for (std::size_t i = std::size(expected); i < packed.size(); ++i)
        EXPECT_EQ(packed[i], 0xEE);
}

TEST(FillPicture, InterleavesChroma) {
    VideoState state;
    VideoPicture slot;
    auto kept = std::make_unique<LibraryFrame>();
    kept->frame = make_frame(4, 2, AV_PIX_FMT_YUV420P);
    AVFrame& frame = *kept->frame;
    for (int i = 0; i < 4; ++i) {
        frame.data[0][i] = static_cast<std::uint8_t>(i);
        frame.data[0][frame.linesize[0] + i] = static_cast<std::uint8_t>(10 + i);
    }
    frame.data[1][0] = 100;
    frame.data[1][1] = 101;
    frame.data[2][0] = 200;
    frame.data[2][1] = 201;
    slot.frame = std::move(kept);
    slot.width = 4;
    slot.height = 2;
    std::uint8_t bytes[13];
    bytes[12] = 0xEE;
    fill_picture(&state, slot, bytes, BufferForm::interleaved);
    const std::uint8_t expected[] = {0, 1, 2, 3, 10, 11, 12, 13, 100, 200, 101, 201, 0xEE};
    EXPECT_TRUE(std::equal(std::begin(bytes), std::end(bytes), std::begin(expected)));
}

// Rows longer than vector instructions take at once, against the plain sum.
TEST(FillPicture, HalvesWithMeansOfFour) {
    constexpr int width = 2 * 133;
    constexpr int height = 6;
    VideoState state;
    VideoPicture slot;
    auto kept = std::make_unique<LibraryFrame>();
    kept->frame = make_frame(width, height, AV_PIX_FMT_YUV420P);
    const AVFrame& frame = *kept->frame;
    std::mt19937 generator(3);
    for (int plane = 0; plane < 3; ++plane) {
        for (int i = 0; i < frame.linesize[plane] * (plane ? height / 2 : height); ++i)
            frame.data[plane][i] = static_cast<std::uint8_t>(generator() >> 24);
    }
    // The brightest four stay that.
    for (const int i : {0, 1, frame.linesize[0], frame.linesize[0] + 1})
        frame.data[0][i] = 255;
    const auto at = [&](int plane, int x, int y) {
        return frame.data[plane][y * frame.linesize[plane] + x];
    };
    slot.width = width;
    slot.height = height;
    std::vector<std::uint8_t> texels(width * height + 1, 0xEE);
    std::vector<std::uint8_t> expected;
    for (int y = 0; y < height / 2; ++y) {
        for (int x = 0; x < width / 2; ++x) {
            const double sum = at(0, 2 * x, 2 * y) + at(0, 2 * x + 1, 2 * y) +
                               at(0, 2 * x, 2 * y + 1) + at(0, 2 * x + 1, 2 * y + 1);
            expected.push_back(static_cast<std::uint8_t>(std::floor(sum / 4 + 0.5)));
            expected.push_back(at(1, x, y));
            expected.push_back(at(2, x, y));
            expected.push_back(0);
        }
    }
    expected.push_back(0xEE);
    slot.frame = std::move(kept);
    fill_picture(&state, slot, texels.data(), BufferForm::halved);
    EXPECT_EQ(texels, expected);
    EXPECT_EQ(texels[0], 255);
}

TEST(FillPicture, ConvertsToRgbRows) {
    const FramePtr frame = make_frame(5, 3, AV_PIX_FMT_GBRP);
    for (int plane = 0; plane < 3; ++plane) {
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 5; ++x) {
                frame->data[plane][y * frame->linesize[plane] + x] =
                    static_cast<std::uint8_t>(80 * plane + 10 * y + x);
            }
        }
    }
    VideoState state;
    constexpr int row_bytes = 20;  // longer than the picture's 15
    std::vector<std::uint8_t> rgb(row_bytes * 3);
    fill_picture(&state, *frame, rgb.data(), row_bytes, false);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            const std::uint8_t* pixel = &rgb[static_cast<std::size_t>(y * row_bytes + x * 3)];
            EXPECT_EQ(pixel[0], 160 + 10 * y + x) << "red is the third plane";
            EXPECT_EQ(pixel[1], 10 * y + x);
            EXPECT_EQ(pixel[2], 80 + 10 * y + x);
        }
    }
}

using PictureQueueTest = PlayerTest;

TEST_F(PictureQueueTest, ThreeOfFourSlotsFill) {
    VideoState* is = open("h264.mp4");
    ASSERT_TRUE(wait_until([&] {
        const MutexLock lock(is->picture_queue_mutex);
        return is->picture_queue_size == 3;
    }));
    const Uint32 until = SDL_GetTicks() + 100;
    while (SDL_GetTicks() < until)
        pump();
    EXPECT_EQ(is->picture_queue_size, 3) << "one slot stays with the picture on screen";
    for (const int slot : {0, 1, 2}) {
        const VideoPicture& picture = is->pictures[static_cast<std::size_t>(slot)];
        EXPECT_TRUE(picture.ready);
        EXPECT_NE(picture.pbo, 0U);
        EXPECT_EQ(picture.width, 320);
        EXPECT_FALSE(picture.uploaded || picture.is_enhanced || picture.buffer_filled ||
                     picture.converted || picture.seen);
    }
}

TEST_F(PictureQueueTest, ReleasingGoesRound) {
    VideoState* is = open("h264.mp4");
    for (int i = 0; i < 9; ++i) {
        ASSERT_TRUE(wait_until([&] { return head(is) != nullptr; }));
        EXPECT_EQ(is->picture_queue_rindex, i % 4);
        is->clocks.subframe_counter = 1;
        release_picture(is);
        EXPECT_EQ(is->clocks.subframe_counter, 0);
    }
}

TEST_F(PictureQueueTest, WhichFormatsAreConvertedOnTheGpu) {
    struct Case {
        const char* name;
        bool direct;
    };
    for (const Case& c : {Case{"h264.mp4", true},
                          {"odd_853x481.mkv", false},
                          {"mjpeg.avi", false},
                          {"ten_bit.mkv", false},
                          {"chroma_422.mkv", false},
                          {"grey.mkv", false}}) {
        VideoState* is = open(c.name);
        ASSERT_TRUE(wait_until([&] { return head(is) != nullptr; })) << c.name;
        EXPECT_EQ(is->yuv_direct, c.direct) << c.name;
        EXPECT_EQ(head(is)->yuv_direct, c.direct) << c.name;
        stream_close(is);
    }
}

TEST_F(PictureQueueTest, WithoutPixelBuffersPicturesAreConvertedAtOnce) {
    __GLEW_EXT_pixel_buffer_object = GL_FALSE;
    __GLEW_ARB_pixel_buffer_object = GL_FALSE;
    VideoState* is = open("rgb.mkv");
    ASSERT_TRUE(wait_until([&] { return head(is) != nullptr; }));
    const VideoPicture* picture = head(is);
    EXPECT_FALSE(is->pbo_supported);
    EXPECT_FALSE(is->yuv_direct);
    EXPECT_EQ(picture->pbo, 0U);
    ASSERT_NE(picture->surface, nullptr);
    EXPECT_EQ(picture->surface->format->BitsPerPixel, 24);
    EXPECT_EQ(picture->surface->format->Rmask, 0xFFU);
    const auto* pixels = static_cast<const std::uint8_t*>(picture->surface->pixels);
    EXPECT_EQ(
        read_number(320, 180,
                    [&](int x, int y) {
                        return static_cast<float>(pixels[y * picture->surface->pitch + x * 3]) /
                               255.0F;
                    }),
        0);
    EXPECT_GT(pixels[100 * picture->surface->pitch + 10 * 3], 200) << "testsrc2 is red on the left";
    __GLEW_EXT_pixel_buffer_object = GL_TRUE;
    __GLEW_ARB_pixel_buffer_object = GL_TRUE;
}

TEST_F(PictureQueueTest, ShapeOfPixelsTravelsWithThePicture) {
    VideoState* is = open("aspect_anamorphic.mkv");
    ASSERT_TRUE(wait_until([&] { return head(is) != nullptr; }));
    EXPECT_NEAR(head(is)->sample_aspect, 16.0 / 15.0, 1e-6);
}

TEST_F(PictureQueueTest, StrayRequestForStorageDoesNothing) {
    VideoState* is = open("h264.mp4");
    ASSERT_TRUE(wait_until([&] { return head(is) != nullptr; }));
    const GLuint before = is->pictures[0].pbo;
    alloc_picture(is);
    EXPECT_EQ(is->pictures[0].pbo, before);
    EXPECT_TRUE(is->pictures[0].ready);
}

TEST(OutdatedPicture, IsNotQueuedAndWaitsForNoSlot) {
    VideoState state;
    state.picture_queue_mutex = make_mutex();
    state.picture_queue_cond = make_cond();
    packet_queue_init(&state.video_queue);
    state.seeks_done = 1;
    FramePtr frame(av_frame_alloc());
    for (const int queued : {0, 3}) {  // three are as many as there may be
        state.picture_queue_size = queued;
        EXPECT_EQ(queue_picture(&state, frame, 1.0, 0), 1);
        EXPECT_EQ(state.picture_queue_size, queued);
        EXPECT_EQ(state.picture_queue_windex, 0);
    }
    packet_queue_end(&state.video_queue);
}

}  // namespace
