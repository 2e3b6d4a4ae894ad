// SPDX-License-Identifier: MIT
#include "player/stream.h"

#include "core/settings.h"
#include "gpu/display_geometry.h"
#include "player/clocks.h"
#include "player/demux.h"
#include "player/event_loop.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"
#include "support/temporary_folder.h"

#include <SDL.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

namespace {

#ifdef __SANITIZE_THREAD__
constexpr Uint32 soon = 4000;  // milliseconds: everything takes several times as long
#else
constexpr Uint32 soon = 1000;
#endif

using StreamTest = PlayerTest;

std::string caption() {
    char* title = nullptr;
    SDL_WM_GetCaption(&title, nullptr);
    return title ? title : "";
}

TEST_F(StreamTest, OpensAsNew) {
    VideoState* is = open("h264.mp4");
    EXPECT_EQ(global_video_state, is);
    EXPECT_EQ(is->sync_source, sync_video) << "pictures lead, sound follows";
    EXPECT_EQ(is->playback_speed_index, 4);
    EXPECT_FALSE(is->paused || is->rewind || is->fast_forward || is->loop || is->is_camera);
    EXPECT_FALSE(is->show_motion_vectors || is->show_quantization);
    EXPECT_TRUE(is->pbo_supported);
    EXPECT_EQ(is->third_stream_index, -1);
    EXPECT_EQ(caption(), "test - [h264.mp4]");
    EXPECT_TRUE(stream_is_open(is));
    ASSERT_TRUE(wait_until([&] { return is->video_stream_index >= 0; }));
    EXPECT_EQ(is->video_info.codec_name, "h264");
    EXPECT_EQ(is->video_info.width, 320);
    EXPECT_EQ(is->video_info.height, 180);
    EXPECT_NEAR(is->video_info.frame_rate, 25.0, 1e-6);
}

TEST_F(StreamTest, OptionsOfTheOpenerAreThereFromTheStart) {
    const PostprocessingCallback hook = [](PostprocessingInfo*) {};
    VideoState* is =
        open("h264.mp4", {.loop = true, .preload = false, .postprocessing_callback = hook});
    EXPECT_TRUE(is->loop);
    EXPECT_EQ(is->postprocessing_callback, hook);
}

TEST_F(StreamTest, LongNamesAreCut) {
    VideoState* is = open("/" + std::string(2000, 'x'));
    EXPECT_EQ(is->filename.size(), 1023U);
}

TEST_F(StreamTest, CameraNamesCarryOptions) {
    VideoState* is = open("cam:/dev/nothing,video_size=640x480,ignored,framerate=25");
    EXPECT_TRUE(is->is_camera);
    EXPECT_EQ(is->filename, "/dev/nothing");
    EXPECT_TRUE(wait_until([&] { return failed(is); }));
    // Nobody took the options.
    EXPECT_STREQ(is->open_options.get("video_size"), "640x480");
    EXPECT_STREQ(is->open_options.get("framerate"), "25");
    EXPECT_EQ(is->open_options.get("ignored"), nullptr);
    EXPECT_EQ(is->open_options.get("/dev/nothing"), nullptr);
    EXPECT_FALSE(open("h264.mp4")->is_camera);
}

TEST_F(StreamTest, CloseEndsThreadsAndFreesTextures) {
    const int threads = thread_count();
    const int textures_before = live_textures();
    for (int i = 0; i < 5; ++i) {
        VideoState* is = open("h264.mp4");
        take(is, 5);
        stream_close(is);
        EXPECT_EQ(thread_count(), threads);
        EXPECT_EQ(global_video_state, nullptr);
        EXPECT_FALSE(stream_is_open(is));
        EXPECT_EQ(is->video_stream_index, -1) << "the record stays readable";
        stream_close(is);
    }
    EXPECT_EQ(live_textures(), textures_before);
    stream_close(nullptr);
}

TEST_F(StreamTest, CloseAtAnyMoment) {
    for (int delay = 0; delay < 60; delay += 2) {
        VideoState* is = open(delay % 4 ? "h264.mp4" : "mpeg2.mpg");
        const Uint32 until = SDL_GetTicks() + static_cast<Uint32>(delay);
        while (SDL_GetTicks() < until)
            pump();
        const Uint32 start = SDL_GetTicks();
        stream_close(is);
        EXPECT_LT(SDL_GetTicks() - start, soon) << delay;
    }
}

TEST_F(StreamTest, EndIsToldAgainAndAgainWithoutALoop) {
    VideoState* is = open("q7_mpeg4.avi");
    EXPECT_EQ(take(is).size(), 25U);
    EXPECT_EQ(ends(), 1);
    const Uint32 start = SDL_GetTicks();
    EXPECT_TRUE(wait_until([&] { return ends() >= 3; }));
    const Uint32 each = (SDL_GetTicks() - start) / 2;
    EXPECT_GE(each, 90U);
    EXPECT_LE(each, 300U) << "about every 110 ms";
    EXPECT_LE(is->video_queue.packet_count, 1);
}

TEST_F(StreamTest, EveryPictureComesOutBeforeTheEnd) {
    // Delayed by reordering and by frame threads.
    for (const char* name : {"h264.mp4", "hevc.mkv", "vp9.webm", "mpeg2.mpg"}) {
        VideoState* is = open(name);
        EXPECT_EQ(take(is).size(), 100U) << name;
        stream_close(is);
    }
}

TEST_F(StreamTest, LoopPlaysEverythingAgain) {
    VideoState* is = open("h264.mp4", {.loop = true});
    SDL_Event end{};
    end.type = event_end_of_stream;
    end.user.data1 = is;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(take(is).size(), 100U) << round;
        EXPECT_TRUE(handle_event(end));
        EXPECT_FALSE(is->paused);
    }
}

TEST_F(StreamTest, PausedAtTheEndNothingPilesUp) {
    VideoState* is = open("q7_mpeg4.avi");
    take(is, 3);
    stream_pause(is);
    const Uint32 until = SDL_GetTicks() + 300;
    while (SDL_GetTicks() < until)
        pump();
    EXPECT_LE(is->video_queue.packet_count, 26);
    EXPECT_EQ(ends(), 0);
}

TEST_F(StreamTest, PreloadIsClearedOnEveryWayOut) {
    for (const char* name : {"text.mp4", "empty.mp4", "/nowhere/nothing.mp4"}) {
        VideoState* is = open(name, {.preload = true});
        EXPECT_TRUE(wait_until([&] { return !is->preload; })) << name;
        stream_close(is);
    }
    VideoState* camera = open("cam:/dev/nothing", {.preload = true});
    EXPECT_FALSE(camera->preload) << "a live source has nothing to read ahead";
}

TEST_F(StreamTest, CloseEndsABlockedOpen) {
    // A reader that never gets data: opening a fifo whose writer stays silent.
    const TemporaryFolder folder;
    const std::string path = folder.path("silent");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int writer = ::open(path.c_str(), O_RDWR);
    VideoState* is = open(path);
    SDL_Delay(50);
    const Uint32 start = SDL_GetTicks();
    stream_close(is);
    EXPECT_LT(SDL_GetTicks() - start, 1000U);
    ::close(writer);
}

TEST_F(StreamTest, CloseEndsABlockedRead) {
    const TemporaryFolder folder;
    const std::string path = folder.path("film.mkv");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int writer = ::open(path.c_str(), O_RDWR | O_NONBLOCK);
    std::ifstream film(clip("h264.mkv"), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(film), {}};
    bytes.resize(bytes.size() / 2);
    VideoState* is = open(path);
    std::size_t written = 0;
    int pictures = 0;
    // All of it is written and read, and the next read waits for what never comes.
    EXPECT_TRUE(wait_until([&] {
        const ssize_t n = write(writer, bytes.data() + written, bytes.size() - written);
        if (n > 0) written += static_cast<std::size_t>(n);
        for (; head(is); ++pictures)
            release_picture(is);
        int left = -1;
        ioctl(writer, FIONREAD, &left);
        return written == bytes.size() && left == 0 && pictures >= 30 &&
               is->video_queue.packet_count == 0;
    })) << pictures
        << " pictures";
    const Uint32 start = SDL_GetTicks();
    stream_close(is);
    EXPECT_LT(SDL_GetTicks() - start, 1000U);
    ::close(writer);
}

TEST_F(StreamTest, NewFilmDoesNotGrowOutOfTheLast) {
    SDL_Rect old{10, 10, 100, 50};
    video_scaling_animation(old);
    open("h264.mp4");
    SDL_Rect r{20, 20, 200, 100};
    video_scaling_animation(r);
    EXPECT_EQ(r.w, 200) << "shown at once";
    EXPECT_EQ(r.h, 100);
    EXPECT_EQ(r.x, 20);
}

TEST_F(StreamTest, SpatialFactorIsFittedToTheTextures) {
    Value& factor = master_settings.spatial_upscaling_factor;
    const int kept = max_texture_size;
    max_texture_size = 8192;
    factor.setValue(2);
    VideoState* is = open("wide_4000.mp4");
    EXPECT_TRUE(wait_until([&] { return is->video_stream_index >= 0; }));
    EXPECT_EQ(factor.toInt(), 1) << "8000 texels fit, 12000 do not";
    stream_close(is);
    max_texture_size = 4096;
    is = open("wide_4000.mp4");
    EXPECT_TRUE(wait_until([&] { return is->video_stream_index >= 0; }));
    EXPECT_EQ(factor.toInt(), 0);
    max_texture_size = kept;
    factor.setValue(0);
}

TEST_F(StreamTest, LoopFilterFollowsItsSetting) {
    VideoState* is = open("h264.mp4");
    ASSERT_TRUE(wait_until([&] { return is->video_stream_index >= 0; }));
    EXPECT_EQ(is->video_codec->skip_loop_filter, AVDISCARD_NONE);
    stream_close(is);
    master_settings.inloop_deblocking.setValue(0);
    is = open("h264.mp4");
    ASSERT_TRUE(wait_until([&] { return is->video_stream_index >= 0; }));
    EXPECT_EQ(is->video_codec->skip_loop_filter, AVDISCARD_ALL);
    master_settings.inloop_deblocking.setValue(1);
}

TEST_F(StreamTest, PositionsOfTheLastFileAreForgotten) {
    VideoState* is = open("h264.mp4");
    take(is, 50);
    EXPECT_GT(global_video_pkt_pts.load(), 0);
    stream_close(is);
    is = open("text.mp4");
    EXPECT_EQ(global_video_pkt_pts, AV_NOPTS_VALUE);
}

std::int64_t fake_now = 0;

class PauseTest : public ::testing::Test {
  protected:
    void SetUp() override {
        fake_now = 5000000;
        set_wall_clock([] { return fake_now; });
        is_.video_stream_index = 0;
        is_.video_current_pts = 2.0;
        is_.video_current_pts_time = fake_now;
        is_.clocks.frame_timer = 5.04;
    }
    void TearDown() override { set_wall_clock(nullptr); }
    VideoState is_;
};

TEST_F(PauseTest, ClockGoesOnWhereItStopped) {
    fake_now += 10000;
    stream_pause(&is_);
    EXPECT_TRUE(is_.paused);
    EXPECT_TRUE(is_.pause_refresh);
    EXPECT_DOUBLE_EQ(get_video_clock(&is_), 2.01);
    fake_now += 3000000;
    EXPECT_DOUBLE_EQ(get_video_clock(&is_), 2.01);
    stream_pause(&is_);
    EXPECT_FALSE(is_.paused);
    EXPECT_DOUBLE_EQ(get_video_clock(&is_), 2.01);
    EXPECT_DOUBLE_EQ(is_.clocks.frame_timer, 8.04);
    fake_now += 20000;
    EXPECT_DOUBLE_EQ(get_video_clock(&is_), 2.03);
}

TEST_F(PauseTest, ScanningMovesNoClock) {
    stream_ffw(&is_);
    EXPECT_TRUE(is_.paused && is_.fast_forward);
    fake_now += 3000000;
    stream_pause(&is_);
    EXPECT_FALSE(is_.paused || is_.fast_forward);
    EXPECT_DOUBLE_EQ(is_.clocks.frame_timer, 5.04);
    stream_rewind(&is_);
    EXPECT_TRUE(is_.rewind && !is_.fast_forward);
    stream_pause(&is_);
    EXPECT_FALSE(is_.rewind);
}

TEST(Interrupt, AsksTheStateThatIsAborted) {
    VideoState state;
    global_video_state = nullptr;
    EXPECT_EQ(decode_interrupt_cb(nullptr), 0);
    EXPECT_EQ(decode_interrupt_cb(&state), 0);
    state.abort_request = true;
    EXPECT_EQ(decode_interrupt_cb(&state), 1);
    global_video_state = &state;
    EXPECT_EQ(decode_interrupt_cb(nullptr), 1);
    global_video_state = nullptr;
}

}  // namespace
