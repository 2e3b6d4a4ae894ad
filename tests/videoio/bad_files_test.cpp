// SPDX-License-Identifier: MIT
// Films that are not as they should be: a clear message or what there is of them.

#include "videoio/video_fixture.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <algorithm>
#include <cstring>
#include <fstream>

namespace {

std::string failure(const std::string& path) {
    VYX_OpenVideoArgs args = open_args(path);
    args.handle = &args;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(open_video(&args), -1) << path;
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "nothing is printed";
    EXPECT_EQ(args.handle, nullptr);
    return args.errorMsg;
}

TEST(BadFiles, CannotBeOpened) {
    const std::string invalid = ") failed: Invalid data found when processing input\n";
    for (const char* name : {"text.mp4", "empty.mp4", "truncated.mp4", "/dev/null"}) {
        EXPECT_EQ(failure(clip(name)), "avformat_open_input (" + clip(name) + invalid);
    }
    EXPECT_EQ(failure("/nowhere/film.mp4"),
              "avformat_open_input (/nowhere/film.mp4) failed: No such file or directory\n");
    EXPECT_EQ(failure("/tmp"), "avformat_open_input (/tmp) failed: Is a directory\n");
    EXPECT_EQ(failure(""), "avformat_open_input () failed: No such file or directory\n");
}

TEST(BadFiles, WithoutAFilm) {
    EXPECT_EQ(failure(clip("tone.wav")), "Couldn't find a video stream\n");
    EXPECT_EQ(failure(clip("cover.mp3")), "Couldn't find a video stream\n") << "covers are none";
}

TEST(BadFiles, Cameras) {
    VYX_OpenVideoArgs args = open_args("cam:/dev/nothing,video_size=640x480");
    EXPECT_EQ(open_video(&args), -1);
    EXPECT_EQ(args.cam_input, 1);
    EXPECT_STREQ(args.videoFileName, "/dev/nothing");
    EXPECT_STREQ(args.errorMsg,
                 "avformat_open_input (/dev/nothing) failed: No such file or directory\n");
    EXPECT_EQ(failure("cam:\"/dev/no,thing\",framerate=5"),
              "avformat_open_input (/dev/no,thing) failed: No such file or directory\n");
    EXPECT_EQ(failure("cam:\""), "invalid input device specification!");
    EXPECT_EQ(failure("cam:1394"), "avformat_open_input (1394) failed: Demuxer not found\n");
}

TEST(BadFiles, LongNames) {
    const std::string longest(511, 'n');
    EXPECT_EQ(failure(longest), ("avformat_open_input (" + longest).substr(0, 511))
        << "the message is cut to its field";
    VYX_OpenVideoArgs args = open_args(std::string(512, 'n'));
    EXPECT_EQ(open_video(&args), -1);
    EXPECT_STREQ(args.errorMsg, "Name too long: it has no NUL!\n");
}

TEST(BadFiles, LongNamesThatExist) {
    const TemporaryFolder folder;
    std::string path = folder.folder().string();
    while (path.size() + 102 < 500)
        path += "/" + std::string(100, 'd');
    std::filesystem::create_directories(path);
    path += "/" + std::string(511 - 1 - path.size() - 4, 'f') + ".mp4";
    ASSERT_EQ(path.size(), 511U);
    std::filesystem::copy_file(clip("h264_nob.mp4"), path);
    ReadFilm film(path);
    EXPECT_TRUE(film.next());
}

// A film whose codec nobody knows, and one whose decoder has no way to start.
std::string with_codec(const TemporaryFolder& folder, const std::string& from,
                       const std::string& to) {
    const Bytes bytes = file_bytes(clip("mjpeg.avi"));
    std::string text(bytes.begin(), bytes.end());
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos;)
        text.replace(at, from.size(), to);
    std::string path = folder.path("film.avi");
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

TEST(BadFiles, UnknownCodec) {
    const TemporaryFolder folder;
    EXPECT_EQ(failure(with_codec(folder, "MJPG", "NOBO")),
              "Couldn't find a decoder for codec_id: 0\n");
}

TEST(BadFiles, DecoderThatRefuses) {
    // Ut Video wants to be told more than Motion JPEG has to tell.
    const TemporaryFolder folder;
    const std::string said = failure(with_codec(folder, "MJPG", "ULRG"));
    EXPECT_EQ(said, "Couldn't open codec utvideo id " + std::to_string(AV_CODEC_ID_UTVIDEO) +
                        ": Invalid data found when processing input\n");
}

struct Playable {
    const char* name;
    std::size_t frames;
    int width;
    int height;
};

class StrangeFilms : public ::testing::TestWithParam<Playable> {};

TEST_P(StrangeFilms, AreReadAsFarAsTheyGo) {
    ReadFilm film(clip(GetParam().name));
    EXPECT_EQ(film.film.frame_width, GetParam().width);
    EXPECT_EQ(film.film.frame_height, GetParam().height);
    EXPECT_EQ(film.all().size(), GetParam().frames);
    EXPECT_EQ(read_frame(&film.read), 1) << "the end stays";
    EXPECT_STREQ(film.read.errorMsg, "read_and_decode failed: End of file\n");
}

INSTANTIATE_TEST_SUITE_P(Clips, StrangeFilms,
                         ::testing::Values(Playable{"truncated.mkv", 50, 320, 180},
                                           Playable{"no_keys.mkv", 0, 320, 180},
                                           Playable{"size_1x1.mkv", 25, 1, 1},
                                           Playable{"undecodable_sound.mkv", 100, 320, 180},
                                           Playable{"broken_sound.mkv", 100, 320, 180}),
                         film_test_name_of<Playable>);

// Four bytes of every tenth packet's length, or so, become too large.
TEST(BadFiles, DamagedPartsAreToldAndReadPast) {
    const TemporaryFolder folder;
    Bytes bytes = file_bytes(clip("h264_nob.mp4"));
    for (std::size_t i = 20000; i < bytes.size() - 20000; i += 9000)
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(i), 200, std::uint8_t{0xFF});
    const std::string path = folder.path("damaged.mp4");
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    ReadFilm film(path);
    int good = 0;
    int damaged = 0;
    while (std::strcmp(film.read.errorMsg, "read_and_decode failed: End of file\n") != 0) {
        if (film.next()) {
            ++good;
        } else if (std::strstr(film.read.errorMsg, "Invalid data found")) {
            ++damaged;
        }
        ASSERT_LT(good + damaged, 200);
    }
    EXPECT_GT(good, 50);
    EXPECT_GT(damaged, 0);
    EXPECT_LE(good + damaged, 100);
}

// 1008 pictures that all refer to one that is not there, and then a key frame with 10 after it.
TEST(BadFiles, AThousandPacketsWithoutAPictureAreTold) {
    const TemporaryFolder folder;
    const std::string whole = folder.path("whole.mkv");
    const std::string path = folder.path("film.mkv");
    output_of(
        "ffmpeg -nostdin -v error -f lavfi -i testsrc=size=32x32:rate=25 -frames:v 1020 "
        "-c:v libx264 -preset ultrafast -g 1009 -keyint_min 1009 -sc_threshold 0 " +
        whole);
    output_of("ffmpeg -nostdin -v error -i " + whole +
              " -c copy -copyinkf -bsf:v noise=drop='eq(n\\,0)' " + path);
    ReadFilm film(path);
    EXPECT_FALSE(film.next());
    EXPECT_STREQ(film.read.errorMsg, "read_and_decode failed: Operation not permitted\n");
    EXPECT_EQ(film.all().size(), 11U) << "reading goes on";
}

}  // namespace
