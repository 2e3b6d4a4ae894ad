// SPDX-License-Identifier: MIT
// What cannot be written: a clear message, and no file that looks like a film.

#include "videoio/file_size_limit.h"
#include "videoio/output_container.h"
#include "videoio/video_fixture.h"

extern "C" {
#include <libavutil/log.h>
}

#include <sys/mman.h>

#include <cstring>
#include <fstream>

namespace {

class SavingErrors : public ::testing::Test {
  protected:
    std::string failure(VYX_SaveVideoArgs args) const {
        args.handle = &args;
        EXPECT_EQ(save_video(&args), -1);
        EXPECT_EQ(args.handle, nullptr);
        return args.errorMsg;
    }
    std::string failure(const std::string& name, const char* codec) const {
        return failure(save_args(folder_.path(name), codec, 64, 32));
    }
    VYX_SaveVideoArgs args(const char* codec) const {
        return save_args(folder_.path("film.avi"), codec, 64, 32);
    }
    void TearDown() override { EXPECT_EQ(folder_.files(), 0) << "nothing is left behind"; }

    const TemporaryFolder folder_;
};

TEST_F(SavingErrors, Containers) {
    EXPECT_EQ(failure("film.unknown", ""), "Could not deduce output format from file extension!");
    EXPECT_EQ(failure("film", ""), "Could not deduce output format from file extension!");
    EXPECT_EQ(failure("film.mkv", "huffyuv"), "Could not deduce output format for the codec!");
    EXPECT_EQ(failure("film.mkv", "ffv1"), "Could not deduce output format for the codec!");
    EXPECT_EQ(failure("film.m4a", "aac"), "Could not deduce output format for the codec!")
        << "an encoder, but not of pictures";
}

TEST_F(SavingErrors, Codecs) {
    EXPECT_EQ(failure("film.avi", "nosuchcodec"), "codec 'nosuchcodec' not found\n");
    EXPECT_EQ(failure("film.avi", "AVI"), "codec 'AVI' not found\n");
    EXPECT_EQ(failure("film.srt", ""), "codec '' not found\n") << "a container without pictures";
    EXPECT_EQ(failure("film.wav", ""), "codec '' not found\n");
    EXPECT_EQ(failure("film.aiff", "png"), "could not write header: Invalid argument!\n")
        << "its first container holds it as the cover of sound only";
}

TEST_F(SavingErrors, Sizes) {
    for (const int size : {0, -1}) {
        for (const char* codec : {"avi", "mpeg4", ""}) {
            VYX_SaveVideoArgs wrong = args(codec);
            wrong.width = size;
            EXPECT_EQ(failure(wrong), "Invalid frame size: " + std::to_string(size) + "x32!\n");
            wrong.width = 64;
            wrong.height = size;
            EXPECT_EQ(failure(wrong), "Invalid frame size: 64x" + std::to_string(size) + "!\n");
        }
    }
    VYX_SaveVideoArgs large = args("avi");
    large.width = large.height = 65536;
    EXPECT_EQ(failure(large), "Invalid frame size: 65536x65536!\n");
    large = args("mpeg4");
    large.width = large.height = 65536;
    EXPECT_EQ(failure(large), "Invalid frame size: 65536x65536!\n");
    large.height = 32;
    EXPECT_EQ(failure(large), "could not open codec: Invalid argument!\n") << "8191 at most";
    EXPECT_EQ(failure(save_args(folder_.path("film.mp4"), "", 63, 31)),
              "could not open codec: Generic error in an external library!\n")
        << "the encoder wants even sizes";
}

TEST_F(SavingErrors, Rates) {
    for (const int rate : {0, -1, -1000}) {
        for (const char* codec : {"avi", "mpeg4", ""}) {
            VYX_SaveVideoArgs wrong = args(codec);
            wrong.frame_rate = rate;
            EXPECT_EQ(failure(wrong), "Invalid frame rate: " + std::to_string(rate) + "!\n");
        }
    }
    VYX_SaveVideoArgs fast = args("mpeg1video");
    fast.frame_rate = 1000;
    EXPECT_EQ(failure(fast), "could not open codec: Invalid argument!\n");
}

// Messages of FFmpeg's encoder for H.264, which tells when it starts.
std::string library_said;

[[gnu::format(printf, 3, 0)]] void listen(void* /*context*/, int /*level*/, const char* format,
                                          va_list arguments) {
    char text[1024];
    std::vsnprintf(text, sizeof text, format, arguments);
    library_said += text;
}

TEST_F(SavingErrors, BitsPerColour) {
    for (const int bits : {12, 0, -8, 24}) {
        VYX_SaveVideoArgs wrong = args("mpeg4");
        wrong.bits_per_color = bits;
        EXPECT_EQ(failure(wrong),
                  "Invalid number of bits per color: " + std::to_string(bits) + "!");
    }
    for (const int bits : {16, 12, 0, -8, 24}) {
        VYX_SaveVideoArgs raw = args("avi");
        raw.bits_per_color = bits;
        EXPECT_EQ(failure(raw), "Invalid number of bits per color: " + std::to_string(bits) + "!");
    }
}

TEST_F(SavingErrors, WrongBitsAndAWrongSize) {
    VYX_SaveVideoArgs wrong = args("mpeg4");
    wrong.bits_per_color = 12;
    wrong.width = 0;
    EXPECT_EQ(failure(wrong), "Invalid number of bits per color: 12!") << "the first message stays";
}

// A record that is wrong costs nobody the film that is there.
TEST_F(SavingErrors, WrongRecordsLeaveExistingFilesAlone) {
    std::ofstream(folder_.path("film.avi")) << "something else";
    const auto expect_untouched = [&](const char* codec, auto spoil) {
        VYX_SaveVideoArgs wrong = args(codec);
        spoil(wrong);
        EXPECT_NE(failure(wrong), "");
        const Bytes bytes = file_bytes(folder_.path("film.avi"));
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "something else") << codec;
    };
    for (const char* codec : {"avi", "mpeg4", ""}) {
        expect_untouched(codec, [](VYX_SaveVideoArgs& wrong) { wrong.bits_per_color = 12; });
        expect_untouched(codec, [](VYX_SaveVideoArgs& wrong) { wrong.bits_per_color = 0; });
        expect_untouched(codec, [](VYX_SaveVideoArgs& wrong) { wrong.width = 0; });
        expect_untouched(codec, [](VYX_SaveVideoArgs& wrong) { wrong.height = 1 << 30; });
        expect_untouched(codec, [](VYX_SaveVideoArgs& wrong) { wrong.frame_rate = 0; });
    }
    expect_untouched("mpeg4", [](VYX_SaveVideoArgs& wrong) { wrong.width = 65536; });
    expect_untouched("nosuchcodec", [](VYX_SaveVideoArgs&) {});
    std::filesystem::remove(folder_.path("film.avi"));
}

TEST_F(SavingErrors, WithWrongBitsTheCodecIsOpenedAllTheSame) {
    VYX_SaveVideoArgs wrong = save_args(folder_.path("film.mp4"), "", 64, 32);
    wrong.bits_per_color = 12;
    av_log_set_callback(listen);
    EXPECT_EQ(failure(wrong), "Invalid number of bits per color: 12!");
    wrong.width = 63;
    EXPECT_EQ(failure(wrong), "Invalid number of bits per color: 12!") << "the first message stays";
    av_log_set_callback(av_log_default_callback);
    EXPECT_NE(library_said.find("using cpu capabilities"), std::string::npos) << library_said;
    EXPECT_NE(library_said.find("width not divisible by 2 (63x32)"), std::string::npos)
        << library_said;
}

TEST_F(SavingErrors, Paths) {
    EXPECT_EQ(failure(save_args("/nowhere/film.avi", "avi", 64, 32)),
              "Could not open file for writing!\n");
    EXPECT_EQ(failure(save_args("/nowhere/film.avi", "", 64, 32)),
              "could not open file for writing: No such file or directory!\n");
    std::filesystem::create_directory(folder_.path("film.avi"));
    EXPECT_EQ(failure(args("avi")), "Could not open file for writing!\n");
    EXPECT_EQ(failure(args("mpeg4")), "could not open file for writing: Is a directory!\n");
    std::filesystem::remove(folder_.path("film.avi"));
    EXPECT_EQ(failure(save_args("", "avi", 64, 32)), "Could not open file for writing!\n");
    EXPECT_EQ(failure(save_args(std::string(512, 'n'), "avi", 64, 32)),
              "Name too long: it has no NUL!\n");
    EXPECT_EQ(failure(args(std::string(32, 'c').c_str())), "Name too long: it has no NUL!\n");
}

// Every way in which a frame is refused without harm to the file.
TEST_F(SavingErrors, Frames) {
    for (const char* codec : {"avi", "mpeg4"}) {
        {
            WrittenFilm film(args(codec));
            const Bytes frame(64 * 32 * 3, 7);
            EXPECT_EQ(film.frame(frame, 0.0), 0);
            const auto refused = [&](int width, int height, int bytes) {
                film.write.frame_width = width;
                film.write.frame_height = height;
                film.write.bytes_per_pixel = bytes;
                EXPECT_EQ(film.frame(frame, 0.04), 1);
                return std::string(film.write.errorMsg);
            };
            const std::string expected = "incorrect dimensions, expected 32x64x3!\n";
            for (const int wrong : {0, -1, 65536, 63}) {
                EXPECT_EQ(refused(wrong, 32, 3), expected);
                EXPECT_EQ(refused(64, wrong, 3), expected);
            }
            for (const int wrong : {1, 4, -1, 6})
                EXPECT_EQ(refused(64, 32, wrong), expected);
            film.write.bytes_per_pixel = 3;
            film.write.data = nullptr;
            EXPECT_EQ(write_frame(&film.write), 1);
            EXPECT_STREQ(film.write.errorMsg, "Frame data not set!\n");
            EXPECT_EQ(film.frame(frame, 0.04), 0);
        }
        EXPECT_EQ(probed(folder_.path("film.avi"), "nb_read_frames", true), "2");
        std::filesystem::remove(folder_.path("film.avi"));
    }
}

TEST_F(SavingErrors, FirstFrames) {
    {
        WrittenFilm film(args("mpeg4"));
        film.write.frame_width = 0;
        EXPECT_EQ(film.frame(Bytes(64 * 32 * 3), 0.0), 1);
        EXPECT_STREQ(film.write.errorMsg, "incorrect dimensions, expected 32x64x3!\n");
        film.write.frame_width = 64;
        film.write.bytes_per_pixel = 4;
        EXPECT_EQ(film.frame(Bytes(64 * 32 * 4), 0.0), 1);
        EXPECT_STREQ(film.write.errorMsg, "incorrect dimensions, expected 32x64x3!\n");
    }
    std::filesystem::remove(folder_.path("film.avi"));
}

TEST_F(SavingErrors, FirstFramesThatNoBufferHolds) {
    for (const int bits : {8, 16}) {
        {
            VYX_SaveVideoArgs record = args("mpeg4");
            record.bits_per_color = bits;
            WrittenFilm film(record);
            const Bytes frame(64 * 32 * 3 * static_cast<std::size_t>(bits) / 8, 7);
            film.write.frame_width = film.write.frame_height = 65536;
            EXPECT_EQ(film.frame(frame, 0.0), 1);
            EXPECT_STREQ(film.write.errorMsg, "incorrect dimensions, expected 32x64x3!\n");
            film.write.frame_width = 64;
            film.write.frame_height = 32;
            EXPECT_EQ(film.frame(frame, 0.0), 0) << film.write.errorMsg;
        }
        EXPECT_EQ(probed(folder_.path("film.avi"), "nb_read_frames", true), "1");
        std::filesystem::remove(folder_.path("film.avi"));
    }
}

// Writes noise until that fails, at most a hundred frames. Returns the message.
std::string message_when_full(const VYX_SaveVideoArgs& args) {
    WrittenFilm film(args);
    for (unsigned i = 0; i < 100; ++i) {
        if (film.frame(noise(64 * 32 * 3, i), i * 0.04) != 0) break;
    }
    return film.write.errorMsg;
}

TEST_F(SavingErrors, FilesThatCannotGrow) {
    const FileSizeLimit limit(100000);
    EXPECT_EQ(message_when_full(args("avi")), "Could not write to file: File too large!\n");
    EXPECT_FALSE(exists(folder_.path("film.avi"))) << "removed, since it is not complete";
    EXPECT_EQ(message_when_full(args("mpeg4")),
              "av_interleaved_write_frame failed: File too large\n");
    EXPECT_FALSE(exists(folder_.path("film.avi")));
}

TEST_F(SavingErrors, FilesWhoseEndDoesNotFit) {
    // The frames go in, the index does not, and there is nobody to tell but the file's absence.
    const FileSizeLimit limit(224 + 5 * (8 + 64 * 32 * 3) + 20);
    {
        WrittenFilm film(args("avi"));
        for (unsigned i = 0; i < 5; ++i)
            EXPECT_EQ(film.frame(noise(64 * 32 * 3, i), 0.0), 0);
    }
    EXPECT_FALSE(exists(folder_.path("film.avi")));
}

TEST_F(SavingErrors, FullDisks) {
    EXPECT_EQ(message_when_full(save_args("/dev/full", "avi", 64, 32)),
              "Could not write to file: No space left on device!\n");
    // The header waits in a buffer.
    EXPECT_EQ(message_when_full(save_args("/dev/full", "mpeg4", 64, 32)),
              "av_interleaved_write_frame failed: No space left on device\n");
    EXPECT_TRUE(exists("/dev/full")) << "devices stay";
}

TEST_F(SavingErrors, UncompressedFilesEndBelow4GiB) {
#if defined(__SANITIZE_THREAD__)
    // Two frames of 2.1 GB are converted: 1.3 s in release and 3.6 s under AddressSanitizer, but
    // more than 90 s under ThreadSanitizer, and a test may take 120.
    GTEST_SKIP() << "over 90 s for 4.2 GB under ThreadSanitizer; a test may take 120";
#endif
    constexpr std::size_t bytes = std::size_t{20000} * 35000 * 3;
    void* zeros =
        mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(zeros, MAP_FAILED);
    {
        WrittenFilm film(save_args("/dev/null", "avi", 20000, 35000));
        film.write.data = zeros;
        EXPECT_EQ(write_frame(&film.write), 0) << film.write.errorMsg;
        EXPECT_EQ(write_frame(&film.write), 0) << film.write.errorMsg;
        EXPECT_EQ(write_frame(&film.write), 1);
        EXPECT_STREQ(film.write.errorMsg, "File is full: AVI files hold less than 4 GiB!\n");
    }
    munmap(zeros, bytes);
}

TEST_F(SavingErrors, ExistingFilesAreReplacedOrGone) {
    std::ofstream(folder_.path("film.avi")) << "something else";
    VYX_SaveVideoArgs wrong = args("mpeg4");
    wrong.frame_rate = 0;
    failure(wrong);
    EXPECT_EQ(file_bytes(folder_.path("film.avi")).size(), 14U) << "not touched yet";
    { const WrittenFilm film(args("avi")); }
    EXPECT_EQ(file_bytes(folder_.path("film.avi")).size(), 232U);
    std::filesystem::remove(folder_.path("film.avi"));
}

}  // namespace
