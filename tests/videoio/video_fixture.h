// SPDX-License-Identifier: MIT
#pragma once

#include "support/temporary_folder.h"
#include "vyx/video.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

/// Path of a test clip.
std::string clip(const std::string& name);

/// Names of test cases after the film that a parameter has, as a path or in a field `name`.
std::string film_test_name(std::string path);
template <class Param>
std::string film_test_name_of(const ::testing::TestParamInfo<Param>& info) {
    if constexpr (requires { info.param.name; }) {
        return film_test_name(info.param.name);
    } else {
        return film_test_name(info.param);
    }
}

/// What a program writes to its standard output. Fails the test when the program fails.
std::string output_of(const std::string& command);

/// The frames of a film as ffmpeg decodes and converts them, one after the other. `format` is
/// "rgb24" or "rgb48le".
Bytes decoded_by_ffmpeg(const std::string& path, const std::string& format);

/// The same one after the other.
class FfmpegFrames {
  public:
    FfmpegFrames(const std::string& path, const std::string& format);
    ~FfmpegFrames();
    FfmpegFrames(const FfmpegFrames&) = delete;
    FfmpegFrames& operator=(const FfmpegFrames&) = delete;

    /// Fills `frame`; false when there is no whole one any more.
    bool next(Bytes& frame);

  private:
    FILE* pipe_;
};

/// Values that ffprobe tells of the first stream, in the order of ffprobe, with commas between.
std::string probed(const std::string& path, const std::string& entries, bool count = false);

/// Records with their size and the given texts set.
VYX_OpenVideoArgs open_args(const std::string& path);
VYX_SaveVideoArgs save_args(const std::string& path, const std::string& codec, int width,
                            int height);

struct TimedBytes {
    double seconds = 0.0;
    Bytes bytes;
};

/// A film that is read through the interface.
class ReadFilm {
  public:
    /// Opens it; fails the test when that fails.
    explicit ReadFilm(const std::string& path);
    ~ReadFilm();
    ReadFilm(const ReadFilm&) = delete;
    ReadFilm& operator=(const ReadFilm&) = delete;

    VYX_OpenVideoArgs film{};
    VYX_ReadFrameArgs read{};
    Bytes frame;  ///< where `read` puts it

    /// Reads one frame; false when there is none.
    bool next();
    /// Reads on to the end, or `most` frames. Fails the test when something else than the end
    /// stops it.
    std::vector<TimedBytes> all(std::size_t most = SIZE_MAX);
    /// The result of a seek.
    int seek(double seconds);
    /// The message of the last seek.
    std::string seek_error;
};

/// A film that is written through the interface.
class WrittenFilm {
  public:
    explicit WrittenFilm(VYX_SaveVideoArgs args);
    ~WrittenFilm();
    WrittenFilm(const WrittenFilm&) = delete;
    WrittenFilm& operator=(const WrittenFilm&) = delete;

    VYX_SaveVideoArgs film;
    VYX_WriteFrameArgs write{};

    /// The result of writing a frame of the film's size.
    int frame(const Bytes& bytes, double seconds);
    void close();
};

/// Random pictures, one after the other.
Bytes noise(std::size_t bytes, unsigned seed);

/// Peak signal to noise ratio of bytes, dB; infinite when they are equal.
double psnr(const Bytes& first, const Bytes& second);

/// Whether a file is there.
bool exists(const std::string& path);
Bytes file_bytes(const std::string& path);
