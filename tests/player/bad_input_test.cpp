// SPDX-License-Identifier: MIT
// Files that are not as they should be: a clear failure or a film, never a hang, a crash or a
// thread left behind; and the next film plays.

#include "player/play_video.h"
#include "player/video_decoder.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"
#include "support/temporary_folder.h"

#include <fstream>
#include <iterator>

namespace {

class BadInput : public PlayerTest {
  protected:
    void TearDown() override {
        close_all_streams();
        EXPECT_EQ(thread_count(), threads_);
        VideoState* next = open("h264_nob.mp4");
        EXPECT_EQ(take(next, 5).size(), 5U) << "the player is usable afterwards";
        PlayerTest::TearDown();
    }
    void SetUp() override {
        PlayerTest::SetUp();
        threads_ = thread_count();
    }

  private:
    int threads_ = 0;
};

TEST_F(BadInput, Fails) {
    for (const char* name : {"text.mp4", "empty.mp4", "truncated.mp4", "/nowhere/film.mp4", "/tmp",
                             "/dev/null", "cam:/dev/nothing"}) {
        ::testing::internal::CaptureStderr();
        VideoState* is = open(name);
        EXPECT_TRUE(wait_until([&] { return failed(is); })) << name;
        ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(is->video_stream_index, -1);
        stream_close(is);
    }
}

struct Playable {
    const char* name;
    std::size_t least;  ///< pictures
    std::size_t most;
    int width;
    int height;
};

class StrangeFilms : public BadInput, public ::testing::WithParamInterface<Playable> {};

TEST_P(StrangeFilms, Play) {
    const Playable& film = GetParam();
    ::testing::internal::CaptureStderr();
    VideoState* is = open(film.name);
    const std::vector<TakenPicture> pictures = take(is);
    ::testing::internal::GetCapturedStderr();
    EXPECT_GE(pictures.size(), film.least);
    EXPECT_LE(pictures.size(), film.most);
    for (const TakenPicture& picture : pictures) {
        EXPECT_EQ(picture.width, film.width);
        EXPECT_EQ(picture.height, film.height);
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, StrangeFilms,
                         ::testing::Values(Playable{"truncated.mkv", 40, 60, 320, 180},
                                           Playable{"no_keys.mkv", 0, 96, 320, 180},
                                           Playable{"odd_853x481.mkv", 25, 25, 853, 481},
                                           Playable{"size_1x1.mkv", 25, 25, 1, 1},
                                           Playable{"size_16x8.mkv", 25, 25, 16, 8},
                                           Playable{"ten_bit.mkv", 25, 25, 320, 180},
                                           Playable{"chroma_422.mkv", 25, 25, 320, 180},
                                           Playable{"rgb.mkv", 25, 25, 320, 180},
                                           Playable{"grey.mkv", 25, 25, 320, 180},
                                           Playable{"wide_4000.mp4", 25, 25, 4000, 400},
                                           Playable{"broken_sound.mkv", 100, 100, 320, 180},
                                           Playable{"sound_gap.mkv", 150, 150, 320, 180}),
                         clip_test_name<Playable>);

TEST_F(BadInput, PicturesLargerThanATextureAreNotShown) {
    const int kept = texture_size_limit;
    texture_size_limit = 300;
    ::testing::internal::CaptureStderr();
    VideoState* wide = open("mjpeg.avi");  // 320 x 180
    EXPECT_TRUE(wait_until([&] { return failed(wide) || wide->audio_stream_index >= 0; }));
    EXPECT_EQ(wide->video_stream_index, -1);
    stream_close(wide);
    texture_size_limit = kept;
    const std::string said = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("Pictures of 320 x 180 are larger than OpenGL takes here (300 x 300)!\n"),
              std::string::npos)
        << said;
}

// The last packets of a film with one stream.
std::vector<std::string> last_packets(const std::string& name, std::size_t count) {
    std::vector<std::string> packets;
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, clip(name).c_str(), nullptr, nullptr) < 0) return packets;
    const PacketPtr packet(av_packet_alloc());
    while (av_read_frame(context, packet.get()) >= 0) {
        packets.emplace_back(packet->data, packet->data + packet->size);
        av_packet_unref(packet.get());
    }
    avformat_close_input(&context);
    if (packets.size() > count)
        packets.erase(packets.begin(), packets.end() - std::ptrdiff_t(count));
    return packets;
}

// The container can be read; what its last tenth holds for the decoder begins with a wrong length.
std::string damaged_at_its_end(const std::string& name, const TemporaryFolder& folder) {
    std::ifstream whole(clip(name), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(whole), {}};
    for (const std::string& packet : last_packets(name, 10)) {
        const std::size_t position = bytes.find(packet);
        if (position != std::string::npos) bytes.replace(position, 4, 4, '\xFF');
    }
    std::string path = folder.path(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

TEST_F(BadInput, DamagedLastPicturesEndTheFilmToo) {
    const TemporaryFolder folder;
    const std::string film = damaged_at_its_end("hevc.mkv", folder);
    for (const int threads : {4, 1}) {
        decoder_threads = threads;
        ::testing::internal::CaptureStderr();
        av_log_set_level(AV_LOG_QUIET);
        VideoState* is = open(film);
        const int before = ends();
        const std::size_t pictures = take(is).size();
        av_log_set_level(AV_LOG_ERROR);
        ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(ends(), before + 1) << threads << " threads";
        EXPECT_TRUE(is->decoder_finished) << threads << " threads";
        EXPECT_EQ(pictures, 90U) << "the good ones of 100";
        stream_close(is);
    }
    decoder_threads = 0;
}

TEST_F(BadInput, CoverArtIsNoFilm) {
    VideoState* is = open("cover.mp3");
    wait_until([&] { return failed(is) || is->audio_stream_index >= 0; });
    EXPECT_EQ(is->video_stream_index, -1);
}

}  // namespace
