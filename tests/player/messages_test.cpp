// SPDX-License-Identifier: MIT
// What is said when something cannot be played or shown.

#include "player/clocks.h"
#include "player/infolabel.h"
#include "player/picture_queue.h"
#include "player/video_decoder.h"
#include "support/player_fixture.h"
#include "support/temporary_folder.h"

#include <fstream>

namespace {

using MessagesTest = PlayerTest;

TEST_F(MessagesTest, FileWithoutPicturesAndSound) {
    const TemporaryFolder folder;
    const std::string name = folder.path("text.srt");
    std::ofstream(name) << "1\n00:00:00,000 --> 00:00:02,000\nA line.\n";
    ::testing::internal::CaptureStderr();
    VideoState* is = open(name);
    EXPECT_TRUE(wait_until([&] { return failed(is); }));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), name + ": could not open codecs\n");
}

TEST_F(MessagesTest, CodecThatNobodyKnows) {
    AVFormatContext* context = avformat_alloc_context();
    AVStream* stream = avformat_new_stream(context, nullptr);
    stream->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
    stream->codecpar->codec_id = AV_CODEC_ID_NONE;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(open_video_decoder(stream), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Unsupported codec!\n");
    avformat_free_context(context);
}

TEST_F(MessagesTest, PictureThatCannotBeConverted) {
    VideoState state;
    state.picture_queue_mutex = make_mutex();
    state.picture_queue_cond = make_cond();
    packet_queue_init(&state.video_queue);
    state.pictures[0].allocated = 1;
    state.pictures[0].width = 32;
    state.pictures[0].height = 16;
    FramePtr frame(av_frame_alloc());
    frame->width = 32;
    frame->height = 16;
    frame->format = AV_PIX_FMT_VAAPI;  // lies in the memory of a graphics card
    av_log_set_level(AV_LOG_QUIET);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(queue_picture(&state, frame, 1.0, 0), 1);
    EXPECT_EQ(queue_picture(&state, frame, 1.04, 0), 1);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Cannot initialize the conversion context!\n")
        << "once, not for every picture";
    EXPECT_EQ(state.picture_queue_size, 0);
    EXPECT_EQ(state.picture_queue_windex, 0);
    EXPECT_FALSE(state.pictures[0].ready);
    packet_queue_end(&state.video_queue);
}

TEST(InfoLabel, AppearsOpaqueAndNow) {
    set_wall_clock([]() -> std::int64_t { return 123456789; });
    infolabel_alpha = 0.25F;
    set_infolabel("Something");
    set_wall_clock(nullptr);
    EXPECT_EQ(infolabel_text, "Something");
    EXPECT_EQ(infolabel_alpha, 1.0F);
    EXPECT_EQ(infolabel_popup_time, 123456789);
    infolabel_text.clear();
}

}  // namespace
