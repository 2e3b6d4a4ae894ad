// SPDX-License-Identifier: MIT
// Every frame is, byte for byte, what ffmpeg makes of it.

#include "videoio/video_fixture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

const char* const samples = "/usr/share/forensics-samples/original-files/";

class EqualToFfmpeg : public ::testing::TestWithParam<std::string> {};

TEST_P(EqualToFfmpeg, FrameByFrame) {
    const std::string path = clip(GetParam());
    ReadFilm film(path);
    const bool deep = film.film.bits_per_color == 16;
    FfmpegFrames expected(path, deep ? "rgb48le" : "rgb24");
    Bytes frame(film.frame.size());
    int frames = 0;
    double last = -1.0;
    for (; film.next(); ++frames) {
        ASSERT_TRUE(expected.next(frame)) << "more frames than ffmpeg has: " << frames;
        ASSERT_TRUE(film.frame == frame) << "frame " << frames;
        // Two films one behind the other start twice.
        if (GetParam() != "size_change.ts") {
            EXPECT_GT(film.read.frame_time, last) << "frame " << frames;
        }
        last = film.read.frame_time;
    }
    EXPECT_STREQ(film.read.errorMsg, "read_and_decode failed: End of file\n");
    EXPECT_GT(frames, 0);
    EXPECT_FALSE(expected.next(frame)) << "ffmpeg has more than " << frames;
}

INSTANTIATE_TEST_SUITE_P(
    Clips, EqualToFfmpeg,
    ::testing::Values("mpeg1.mpg", "mpeg2.mpg", "mpeg4.avi", "mpeg4_nob.avi", "mpeg4_qpel.mp4",
                      "h264.mp4", "h264.mkv", "h264_nob.mp4", "one_key.mp4", "late_start.ts",
                      "hevc.mkv", "hevc_open_gop.mkv", "vp9.webm", "mjpeg.avi", "q5_mpeg2.mpg",
                      "q7_mpeg4.avi", "q7_msmpeg4v2.avi", "q7_msmpeg4.avi", "q7_wmv1.avi",
                      "q7_wmv2.avi", "q7_h263.avi", "q7_flv.avi", "qp30_h264.mp4",
                      "moving_mpeg2.mpg", "moving_mpeg4.avi", "moving_qpel.avi", "moving_h264.mp4",
                      "odd_853x481.mkv", "size_1x1.mkv", "size_16x8.mkv", "wide_4000.mp4",
                      "ten_bit.mkv", "chroma_422.mkv", "rgb.mkv", "grey.mkv", "raw.h264", "raw.m4v",
                      "size_change.ts", "aspect_anamorphic.mkv", "broken_sound.mkv",
                      "undecodable_sound.mkv", "sound_gap.mkv", "chirps.mkv"),
    film_test_name_of<std::string>);

INSTANTIATE_TEST_SUITE_P(CameraFilms, EqualToFfmpeg,
                         ::testing::Values(std::string(samples) + "movie1/VID_20191220_170832.mp4",
                                           std::string(samples) + "movie2/movie-hello.avi",
                                           std::string(samples) + "movie2/movie-hello.mp4",
                                           std::string(samples) + "movie2/movie-hello.mpeg",
                                           std::string(samples) + "movie2/movie-hello.ogg"),
                         film_test_name_of<std::string>);

TEST(Reading, WhatIsToldOfAFilm) {
    const ReadFilm film(clip("h264.mp4"));
    EXPECT_EQ(film.film.cam_input, 0);
    EXPECT_EQ(film.film.frame_width, 320);
    EXPECT_EQ(film.film.frame_height, 180);
    EXPECT_EQ(film.film.frame_bytes, 320 * 180 * 3);
    EXPECT_EQ(film.film.duration_sec, 4.0);
    EXPECT_EQ(film.film.frame_rate, 25.0);
    EXPECT_EQ(film.film.frame_count, 100);
    EXPECT_EQ(film.film.bits_per_color, 8);
    EXPECT_EQ(std::to_string(film.film.bit_rate), probed(clip("h264.mp4"), "bit_rate"));
    EXPECT_STREQ(film.film.codec_name, "H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10");
    EXPECT_EQ(film.film.videoFileName, clip("h264.mp4")) << "files keep their names";
    const ReadFilm wide(clip("aspect_anamorphic.mkv"));
    EXPECT_DOUBLE_EQ(wide.film.pixel_aspect_ratio, 16.0 / 15.0 * 360.0 / 288.0);
    const ReadFilm deep(clip("ten_bit.mkv"));
    EXPECT_EQ(deep.film.bits_per_color, 16);
    EXPECT_EQ(deep.film.frame_bytes, 320 * 180 * 6);
}

TEST(Reading, TimesAreTheFramesOwn) {
    // With B pictures the packets come in another order, and the stream starts at 0.54 s.
    ReadFilm film(clip("mpeg2.mpg"));
    const std::vector<TimedBytes> frames = film.all();
    ASSERT_EQ(frames.size(), 100U);
    for (std::size_t i = 0; i < frames.size(); ++i)
        EXPECT_NEAR(frames[i].seconds, 0.54 + 0.04 * static_cast<double>(i), 1e-6) << i;
}

TEST(Reading, FilmsWithoutTimeStampsCountFrames) {
    ReadFilm film(clip("raw.h264"));
    const std::vector<TimedBytes> frames = film.all();
    ASSERT_EQ(frames.size(), 50U);
    for (std::size_t i = 0; i < frames.size(); ++i)
        EXPECT_NEAR(frames[i].seconds, 0.04 * static_cast<double>(i), 1e-6) << i;
}

TEST(Reading, KeyFramesOnly) {
    for (const char* name : {"h264.mp4", "hevc_open_gop.mkv"}) {
        ReadFilm film(clip(name));
        const std::vector<TimedBytes> all = ReadFilm(clip(name)).all();
        film.read.key_frame_only = 1;
        const std::vector<TimedBytes> keys = film.all();
        ASSERT_EQ(keys.size(), 4U) << name;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            EXPECT_EQ(keys[i].seconds, all[i * 25].seconds);
            EXPECT_EQ(keys[i].bytes, all[i * 25].bytes);
        }
        // Intra pictures count as well.
        ReadFilm every(clip("mjpeg.avi"));
        every.read.key_frame_only = -1;
        EXPECT_EQ(every.all().size(), 100U);
    }
}

// Memory that ends where nothing may be touched.
class GuardedMemory {
  public:
    explicit GuardedMemory(std::size_t bytes) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t room = (bytes + page - 1) / page * page;
        length_ = room + page;
        void* memory =
            mmap(nullptr, length_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        start_ = static_cast<std::uint8_t*>(memory);
        mprotect(start_ + room, page, PROT_NONE);
        data = start_ + room - bytes;
    }
    ~GuardedMemory() { munmap(start_, length_); }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    std::uint8_t* data;

  private:
    std::uint8_t* start_;
    std::size_t length_;
};

TEST(Reading, NothingIsWrittenBehindTheFrame) {
    for (const char* name :
         {"h264_nob.mp4", "ten_bit.mkv", "odd_853x481.mkv", "size_1x1.mkv", "size_16x8.mkv",
          "wide_4000.mp4", "rgb.mkv", "grey.mkv", "aspect_anamorphic.mkv", "q7_flv.avi"}) {
        ReadFilm plain(clip(name));
        ReadFilm guarded(clip(name));
        const GuardedMemory memory(plain.frame.size());
        guarded.read.data = memory.data;
        for (int i = 0; i < 3; ++i) {
            ASSERT_TRUE(plain.next());
            ASSERT_TRUE(guarded.next());
            EXPECT_EQ(std::memcmp(memory.data, plain.frame.data(), plain.frame.size()), 0) << name;
        }
    }
}

TEST(Reading, BuffersMayLieAnywhere) {
    ReadFilm plain(clip("h264_nob.mp4"));
    ReadFilm shifted(clip("h264_nob.mp4"));
    Bytes memory(plain.frame.size() + 1);
    shifted.read.data = memory.data() + 1;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(plain.next() && shifted.next());
        EXPECT_EQ(std::memcmp(memory.data() + 1, plain.frame.data(), plain.frame.size()), 0);
    }
}

}  // namespace
