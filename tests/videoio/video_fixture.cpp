// SPDX-License-Identifier: MIT
#include "videoio/video_fixture.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

std::string clip(const std::string& name) {
    return name.starts_with('/') ? name : std::string(VYX_TEST_MEDIA) + "/" + name;
}

std::string film_test_name(std::string path) {
    path.erase(0, path.rfind('/') + 1);
    std::replace_if(
        path.begin(), path.end(), [](char c) { return !std::isalnum(c); }, '_');
    return path;
}

std::string output_of(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    std::array<char, 65536> piece{};
    while (const std::size_t read = std::fread(piece.data(), 1, piece.size(), pipe))
        output.append(piece.data(), read);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

namespace {

std::string decoding(const std::string& path, const std::string& format) {
    return "ffmpeg -nostdin -v quiet -i '" + path +
           "' -map 0:v:0 -vsync passthrough -sws_flags neighbor -pix_fmt " + format +
           " -f rawvideo -";
}

}  // namespace

Bytes decoded_by_ffmpeg(const std::string& path, const std::string& format) {
    const std::string frames = output_of(decoding(path, format));
    return {frames.begin(), frames.end()};
}

FfmpegFrames::FfmpegFrames(const std::string& path, const std::string& format)
    : pipe_(popen(decoding(path, format).c_str(), "r")) {}

FfmpegFrames::~FfmpegFrames() {
    pclose(pipe_);
}

bool FfmpegFrames::next(Bytes& frame) {
    return std::fread(frame.data(), 1, frame.size(), pipe_) == frame.size();
}

std::string probed(const std::string& path, const std::string& entries, bool count) {
    std::string text = output_of("ffprobe -v error -select_streams v:0 " +
                                 std::string(count ? "-count_frames " : "") +
                                 "-show_entries stream=" + entries + " -of csv=p=0 '" + path + "'");
    while (!text.empty() && (text.back() == '\n' || text.back() == ','))
        text.pop_back();
    return text;
}

VYX_OpenVideoArgs open_args(const std::string& path) {
    VYX_OpenVideoArgs args{};
    args.size = sizeof args;
    path.copy(args.videoFileName, sizeof args.videoFileName);
    return args;
}

VYX_SaveVideoArgs save_args(const std::string& path, const std::string& codec, int width,
                            int height) {
    VYX_SaveVideoArgs args{};
    args.size = sizeof args;
    path.copy(args.videoFileName, sizeof args.videoFileName);
    codec.copy(args.codec_name, sizeof args.codec_name);
    args.width = width;
    args.height = height;
    args.bit_rate = 8000000;
    args.group_of_pictures = 12;
    args.frame_rate = 25;
    args.bits_per_color = 8;
    return args;
}

ReadFilm::ReadFilm(const std::string& path) : film(open_args(path)) {
    EXPECT_EQ(open_video(&film), 0) << film.errorMsg;
    EXPECT_STREQ(film.errorMsg, "");
    frame.resize(static_cast<std::size_t>(film.frame_bytes));
    read.size = sizeof read;
    read.handle = film.handle;
    read.frame_height = film.frame_height;
    read.frame_width = film.frame_width;
    read.bytes_per_pixel = 3;
    read.data = frame.data();
}

ReadFilm::~ReadFilm() {
    EXPECT_EQ(close_video(film.handle), 0);
}

bool ReadFilm::next() {
    return read_frame(&read) == 0;
}

std::vector<TimedBytes> ReadFilm::all(std::size_t most) {
    std::vector<TimedBytes> frames;
    while (frames.size() < most && next())
        frames.push_back({read.frame_time, frame});
    if (frames.size() < most) {
        EXPECT_STREQ(read.errorMsg, "read_and_decode failed: End of file\n");
    }
    return frames;
}

int ReadFilm::seek(double seconds) {
    VYX_SeekFrameArgs args{};
    args.size = sizeof args;
    args.handle = film.handle;
    args.seek_time = seconds;
    const int result = seek_frame(&args);
    seek_error = args.errorMsg;
    return result;
}

WrittenFilm::WrittenFilm(VYX_SaveVideoArgs args) : film(args) {
    EXPECT_EQ(save_video(&film), 0) << film.errorMsg;
    EXPECT_STREQ(film.errorMsg, "");
    write.size = sizeof write;
    write.handle = film.handle;
    write.frame_height = film.height;
    write.frame_width = film.width;
    write.bytes_per_pixel = 3;
}

WrittenFilm::~WrittenFilm() {
    close();
}

int WrittenFilm::frame(const Bytes& bytes, double seconds) {
    write.data = bytes.data();
    write.frame_time = seconds;
    return write_frame(&write);
}

void WrittenFilm::close() {
    EXPECT_EQ(close_video(film.handle), 0);
    film.handle = nullptr;
}

Bytes noise(std::size_t bytes, unsigned seed) {
    std::mt19937 generator(seed);
    Bytes result(bytes);
    for (std::uint8_t& byte : result)
        byte = static_cast<std::uint8_t>(generator() >> 24);
    return result;
}

double psnr(const Bytes& first, const Bytes& second) {
    if (first.size() != second.size() || first.empty()) return 0.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double difference = double(first[i]) - double(second[i]);
        sum += difference * difference;
    }
    if (sum == 0.0) return std::numeric_limits<double>::infinity();
    return 10.0 * std::log10(255.0 * 255.0 * static_cast<double>(first.size()) / sum);
}

bool exists(const std::string& path) {
    return std::filesystem::exists(path);
}

Bytes file_bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
