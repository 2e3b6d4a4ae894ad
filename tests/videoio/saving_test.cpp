// SPDX-License-Identifier: MIT
// Films that are written, as FFmpeg's own programs read them.

#include "videoio/avi_bytes.h"
#include "videoio/video_fixture.h"

extern "C" {
#include <libavutil/log.h>
}

#include <cmath>
#include <limits>

namespace {

// A soft picture that moves, of quiet colours, as cameras see them.
Bytes soft_picture(int width, int height, int time) {
    Bytes bytes;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = x + 2.0 * time;
            const double light = 128 + 60 * std::sin(u * 0.1) + 40 * std::sin(y * 0.15 + u * 0.05);
            const double tint = 10 * std::sin((x + y) * 0.02);
            for (const double colour : {light + tint, light, light - tint})
                bytes.push_back(static_cast<std::uint8_t>(colour));
        }
    }
    return bytes;
}

// The same with 16 bits per colour.
Bytes deep(const Bytes& bytes) {
    Bytes result;
    for (const std::uint8_t byte : bytes)
        result.insert(result.end(), {byte, byte});
    return result;
}

class Saving : public ::testing::Test {
  protected:
    const TemporaryFolder folder_;
};

struct Container {
    const char* extension;
    const char* codec;  ///< as ffprobe calls it
    int bits;
};

class Containers : public Saving, public ::testing::WithParamInterface<Container> {};

TEST_P(Containers, HoldWhatWasWritten) {
    constexpr int width = 160;
    constexpr int height = 96;
    constexpr int count = 30;
    const std::string path = folder_.path(std::string("film.") + GetParam().extension);
    VYX_SaveVideoArgs args = save_args(path, "", width, height);
    args.bits_per_color = GetParam().bits;
    Bytes expected;
    {
        WrittenFilm film(args);
        for (int i = 0; i < count; ++i) {
            const Bytes picture = soft_picture(width, height, i);
            expected.insert(expected.end(), picture.begin(), picture.end());
            EXPECT_EQ(film.frame(args.bits_per_color == 16 ? deep(picture) : picture, i * 0.04), 0)
                << film.write.errorMsg;
        }
    }
    EXPECT_EQ(probed(path, "codec_name,width,height,r_frame_rate,nb_read_frames", true),
              std::string(GetParam().codec) + ",160,96,25/1,30");
    const std::string seconds =
        output_of("ffprobe -v error -show_entries format=duration -of csv=p=0 " + path);
    // A programme stream tells the time of its last packet, and several frames share one.
    const bool programme = path.ends_with("mpg");
    EXPECT_NEAR(std::stod(seconds), count * 0.04, programme ? 0.161 : 0.041);
    // Measured: 41.1 (mpg) to 47.9 dB.
    EXPECT_GT(psnr(decoded_by_ffmpeg(path, "rgb24"), expected), 35.0);
    const std::vector<TimedBytes> frames = ReadFilm(path).all();
    ASSERT_EQ(frames.size(), 30U) << "and we read it";
    for (std::size_t i = 0; i < frames.size(); ++i)
        EXPECT_NEAR(frames[i].seconds - frames[0].seconds, 0.04 * static_cast<double>(i), 0.0011);
}

std::string container_test_name(const ::testing::TestParamInfo<Container>& info) {
    return std::string(info.param.extension) + std::to_string(info.param.bits);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, Containers,
    ::testing::Values(Container{"avi", "mpeg4", 8}, Container{"avi", "mpeg4", 16},
                      Container{"mp4", "h264", 8}, Container{"mp4", "h264", 16},
                      Container{"mkv", "h264", 8}, Container{"mkv", "h264", 16},
                      Container{"mpg", "mpeg1video", 8}, Container{"mpg", "mpeg1video", 16},
                      Container{"webm", "vp9", 8}, Container{"webm", "vp9", 16},
                      Container{"mov", "h264", 8}, Container{"mov", "h264", 16}),
    container_test_name);

// Random frames, written and read back by ffmpeg.
void expect_lossless(const std::string& path, const std::string& codec, int bits,
                     const std::string& format, const char* input = "") {
    constexpr int width = 19;
    constexpr int height = 7;
    VYX_SaveVideoArgs args = save_args(path, codec, width, height);
    args.bits_per_color = bits;
    Bytes expected;
    {
        WrittenFilm film(args);
        for (unsigned i = 0; i < 4; ++i) {
            const Bytes frame = noise(static_cast<std::size_t>(width * height * 3 * bits / 8), i);
            expected.insert(expected.end(), frame.begin(), frame.end());
            EXPECT_EQ(film.frame(frame, i * 0.04), 0) << film.write.errorMsg;
        }
    }
    EXPECT_EQ(decoded_by_ffmpeg(input[0] ? input : path, format), expected) << path;
}

TEST_F(Saving, LosslessCodecsLoseNothing) {
    expect_lossless(folder_.path("film.apng"), "apng", 8, "rgb24");
    expect_lossless(folder_.path("%03d.png"), "", 8, "rgb24");
    expect_lossless(folder_.path("%03d.tiff"), "", 8, "rgb24");
    expect_lossless(folder_.path("d%03d.tiff"), "", 16, "rgb48le");
}

TEST_F(Saving, FormatsThatTheEncoderDoesNotTakeBecomeItsFirst) {
    const auto pixels = [&](const char* name, const char* codec, int bits) {
        VYX_SaveVideoArgs args = save_args(folder_.path(name), codec, 32, 16);
        args.bits_per_color = bits;
        WrittenFilm film(args);
        const Bytes frame(32 * 16 * 3 * static_cast<std::size_t>(bits) / 8, 99);
        EXPECT_EQ(film.frame(frame, 0.0), 0);
        film.close();
        return probed(folder_.path(name), "pix_fmt");
    };
    EXPECT_EQ(pixels("film.mkv", "", 8), "yuv420p");
    EXPECT_EQ(pixels("film.apng", "apng", 8), "rgb24");
    EXPECT_EQ(pixels("film.apng", "apng", 16), "rgb24") << "it takes 48 bits of the other order";
    EXPECT_EQ(pixels("film.avi", "mpeg4", 16), "yuv420p");
}

TEST_F(Saving, UncompressedFramesComeBackBitForBit) {
    for (int width = 1; width <= 17; ++width) {
        const std::string path = folder_.path("film.avi");
        std::vector<Bytes> frames;
        Bytes expected;
        {
            WrittenFilm film(save_args(path, "avi", width, 5));
            for (unsigned i = 0; i < 3; ++i) {
                frames.push_back(noise(static_cast<std::size_t>(width) * 5 * 3, i));
                EXPECT_EQ(film.frame(frames.back(), 1000.0 - i), 0) << "times do not matter";
                expected.insert(expected.end(), frames.back().begin(), frames.back().end());
            }
        }
        EXPECT_EQ(file_bytes(path), avi_bytes(frames, width, 5, 25.0F)) << width;
        EXPECT_EQ(decoded_by_ffmpeg(path, "rgb24"), expected) << width;
        EXPECT_EQ(probed(path, "codec_name,width,height,r_frame_rate,nb_read_frames", true),
                  "rawvideo," + std::to_string(width) + ",5,25/1,3");
        // Positions come from the index: a jump to each frame finds it.
        ReadFilm film(path);
        for (const unsigned i : {2U, 0U, 1U}) {
            ASSERT_EQ(film.seek(i * 0.04), 0) << width;
            ASSERT_TRUE(film.next());
            EXPECT_EQ(film.frame, frames[i]) << width << ": frame " << i;
        }
    }
}

TEST_F(Saving, CodecsByNameChooseTheContainer) {
    const auto container = [&](const char* codec) {
        const std::string path = folder_.path("film.xyz");
        WrittenFilm film(save_args(path, codec, 64, 32));
        EXPECT_EQ(film.frame(Bytes(64 * 32 * 3, 77), 0.0), 0);
        film.close();
        std::string name =
            output_of("ffprobe -v error -show_entries format=format_name -of csv=p=0 " + path);
        std::erase(name, '"');
        return name.substr(0, name.find_first_of(",\n"));
    };
    EXPECT_EQ(container("mpeg4"), "avi");
    EXPECT_EQ(container("mpeg1video"), "mpeg");
    EXPECT_EQ(container("libx264"), "mov") << "the first one of a single file";
    EXPECT_EQ(container("flv"), "swf") << "the first of three, as ffprobe sees it";
}

// Time stamps of a film's packets in the order of the file, seconds.
std::vector<double> packet_times(const std::string& path) {
    const std::string text =
        output_of("ffprobe -v error -show_entries packet=pts_time -of csv=p=0 " + path);
    std::vector<double> times;
    for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
        times.push_back(std::stod(text.substr(at)));
    return times;
}

TEST_F(Saving, TimesOnlyGrow) {
    const std::string path = folder_.path("film.mkv");
    {
        WrittenFilm film(save_args(path, "", 32, 32));
        const Bytes frame(32 * 32 * 3, 50);
        for (const double seconds : {-1.0, 0.04, 0.04, 0.0, 1.0, 0.5,
                                     std::numeric_limits<double>::quiet_NaN(), 2.019, 2.061})
            EXPECT_EQ(film.frame(frame, seconds), 0);
    }
    const std::vector<double> expected = {0.0, 0.04, 0.08, 0.12, 1.0, 1.04, 1.08, 2.0, 2.08};
    const std::vector<double> times = packet_times(path);
    ASSERT_EQ(times.size(), expected.size());
    for (std::size_t i = 0; i < times.size(); ++i)
        EXPECT_NEAR(times[i], expected[i], 0.0011) << i;
}

TEST_F(Saving, FirstFrameMayHaveAnotherSize) {
    const std::string path = folder_.path("film.apng");
    {
        WrittenFilm film(save_args(path, "apng", 32, 16));
        film.write.frame_width = 64;
        film.write.frame_height = 48;
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(film.frame(Bytes(64 * 48 * 3, 123), i * 0.04), 0);
        film.write.frame_width = 32;
        film.write.frame_height = 16;
        EXPECT_EQ(film.frame(Bytes(32 * 16 * 3, 123), 0.08), 1);
        EXPECT_STREQ(film.write.errorMsg, "incorrect dimensions, expected 48x64x3!\n");
    }
    EXPECT_EQ(decoded_by_ffmpeg(path, "rgb24"), Bytes(2 * 32 * 16 * 3, 123)) << "scaled";
}

TEST_F(Saving, WithoutFrames) {
    for (const char* name : {"film.avi", "film.mkv", "film.mp4"}) {
        { const WrittenFilm film(save_args(folder_.path(name), "", 32, 32)); }
        EXPECT_TRUE(exists(folder_.path(name)));
    }
    { const WrittenFilm film(save_args(folder_.path("raw.avi"), "avi", 32, 32)); }
    EXPECT_EQ(file_bytes(folder_.path("raw.avi")), avi_bytes({}, 32, 32, 25.0F));
}

TEST_F(Saving, BitRates) {
    // Bits per second of noise, which takes as many as it may.
    const auto written = [&](const char* codec, int bit_rate) {
        const std::string path = folder_.path("film.avi");
        VYX_SaveVideoArgs args = save_args(path, codec, 160, 96);
        args.bit_rate = bit_rate;
        {
            WrittenFilm film(args);
            for (unsigned i = 0; i < 50; ++i)
                EXPECT_EQ(film.frame(noise(160 * 96 * 3, i), i * 0.04), 0);
        }
        return static_cast<double>(std::filesystem::file_size(path)) * 8.0 / 2.0;
    };
    for (const char* codec : {"mpeg4", "mpeg1video"}) {
        const double low = written(codec, 800000);
        const double high = written(codec, 3200000);
        // Measured: 1.40 and 3.82 Mbit/s (mpeg4), 1.34 and 3.74 (mpeg1video).
        EXPECT_GT(high, 2.2 * low) << codec;
        EXPECT_LT(high, 1.4 * 3200000) << codec;
    }
}

TEST_F(Saving, WithoutABitRate) {
    const std::string path = folder_.path("film.avi");
    for (const char* codec : {"", "mpeg1video", "avi"}) {
        VYX_SaveVideoArgs args = save_args(path, codec, 64, 48);
        args.bit_rate = 0;
        {
            WrittenFilm film(args);
            for (int i = 0; i < 5; ++i)
                EXPECT_EQ(film.frame(soft_picture(64, 48, i), i * 0.04), 0);
        }
        EXPECT_EQ(probed(path, "nb_read_frames", true), "5") << codec;
    }
}

TEST_F(Saving, AThousandFramesPerSecond) {
    for (const char* codec : {"mpeg4", "avi"}) {
        const std::string path = folder_.path("film.avi");
        VYX_SaveVideoArgs args = save_args(path, codec, 64, 48);
        args.frame_rate = 1000;
        {
            WrittenFilm film(args);
            for (int i = 0; i < 5; ++i)
                EXPECT_EQ(film.frame(soft_picture(64, 48, i), i * 0.001), 0);
        }
        EXPECT_EQ(probed(path, "r_frame_rate,nb_read_frames", true), "1000/1,5") << codec;
    }
}

TEST_F(Saving, GroupsOfPictures) {
    const std::string path = folder_.path("film.mpg");
    VYX_SaveVideoArgs args = save_args(path, "mpeg1video", 64, 48);
    args.group_of_pictures = 5;
    {
        WrittenFilm film(args);
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(film.frame(soft_picture(64, 48, i), i * 0.04), 0);
    }
    const std::string types =
        output_of("ffprobe -v error -show_entries frame=pict_type -of csv=p=0 " + path +
                  " | cut -c1 | tr -d '\\n'");
    EXPECT_EQ(types, "IPPPPIPPPPIP") << "and no B pictures";
}

TEST_F(Saving, NamesOf511Characters) {
    std::string path = folder_.folder().string();
    while (path.size() + 102 < 500)
        path += "/" + std::string(100, 'd');
    std::filesystem::create_directories(path);
    path += "/" + std::string(511 - 1 - path.size() - 4, 'f') + ".avi";
    ASSERT_EQ(path.size(), 511U);
    for (const char* codec : {"avi", "", "mpeg4"}) {
        {
            WrittenFilm film(save_args(path, codec, 16, 16));
            EXPECT_EQ(film.frame(Bytes(16 * 16 * 3, 9), 0.0), 0);
        }
        EXPECT_EQ(ReadFilm(path).all().size(), 1U) << codec;
    }
}

int messages_heard = 0;

void count_message(void* /*context*/, int /*level*/, const char* /*format*/,
                   va_list /*arguments*/) {
    ++messages_heard;
}

TEST_F(Saving, UncompressedFilmsLeaveFfmpegAlone) {
    av_log_set_level(AV_LOG_INFO);
    av_log_set_callback(count_message);
    const auto write_film = [this](const char* codec) {
        WrittenFilm film(save_args(folder_.path("film.avi"), codec, 64, 32));
        EXPECT_EQ(film.frame(Bytes(64 * 32 * 3, 7), 0.0), 0) << film.write.errorMsg;
    };
    write_film("avi");
    EXPECT_EQ(messages_heard, 0);
    EXPECT_EQ(av_log_get_level(), AV_LOG_INFO) << "it is set for films that FFmpeg writes";
    write_film("mpeg4");
    EXPECT_GT(messages_heard, 0) << "it says something of each";
    av_log_set_callback(av_log_default_callback);
}

}  // namespace
