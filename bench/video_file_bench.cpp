// SPDX-License-Identifier: MIT
// bench_video_file FILM [ROUNDS]: frames for other programs, each figure beside its peer of the
// same round, in turns:
//   - reading the whole film frame by frame, and `ffmpeg` converting it to rgb24 with as many
//     threads; its start is part of its time, ours is as well;
//   - writing uncompressed AVI of 1920 x 1080, and fwrite of the same bytes;
//   - memory of this process after one handle has read the film.
// The best round counts, since other processes only ever take time away.

#include "vyx/video.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int avi_width = 1920;
constexpr int avi_height = 1080;
constexpr int avi_frames = 60;

class Stopwatch {
  public:
    double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

[[noreturn]] void give_up(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::exit(1);
}

// Processor time of this process or of the programs it has waited for, seconds.
double processor_time(int whose) {
    rusage used{};
    getrusage(whose, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

// A line of /proc/self/status, MB.
double memory(const std::string& what) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(what)) return std::atof(line.c_str() + what.size() + 1) / 1024.0;
    }
    return 0.0;
}

// Frames per second.
double read_film(const char* path, int& frames) {
    const Stopwatch watch;
    VYX_OpenVideoArgs film{};
    film.size = sizeof film;
    std::snprintf(film.videoFileName, sizeof film.videoFileName, "%s", path);
    if (open_video(&film) != 0) give_up(film.errorMsg);
    std::vector<unsigned char> frame(static_cast<std::size_t>(film.frame_bytes));
    VYX_ReadFrameArgs read{};
    read.size = sizeof read;
    read.handle = film.handle;
    read.frame_width = film.frame_width;
    read.frame_height = film.frame_height;
    read.bytes_per_pixel = 3;
    read.data = frame.data();
    for (frames = 0; read_frame(&read) == 0;)
        ++frames;
    close_video(film.handle);
    return frames / watch.seconds();
}

double read_with_ffmpeg(const std::string& path, int threads, int frames) {
    const std::string command = "ffmpeg -nostdin -v quiet -threads " + std::to_string(threads) +
                                " -i '" + path + "' -map 0:v:0 -pix_fmt rgb24 -f null -";
    const Stopwatch watch;
    if (std::system(command.c_str()) != 0) give_up(command);
    return frames / watch.seconds();
}

// Bytes per second.
double write_avi(const std::vector<unsigned char>& frame, const char* path) {
    const Stopwatch watch;
    VYX_SaveVideoArgs film{};
    film.size = sizeof film;
    std::snprintf(film.videoFileName, sizeof film.videoFileName, "%s", path);
    std::strcpy(film.codec_name, "avi");
    film.width = avi_width;
    film.height = avi_height;
    film.frame_rate = 25;
    film.bits_per_color = 8;
    if (save_video(&film) != 0) give_up(film.errorMsg);
    VYX_WriteFrameArgs write{};
    write.size = sizeof write;
    write.handle = film.handle;
    write.frame_width = avi_width;
    write.frame_height = avi_height;
    write.bytes_per_pixel = 3;
    write.data = frame.data();
    for (int i = 0; i < avi_frames; ++i) {
        if (write_frame(&write) != 0) give_up(write.errorMsg);
    }
    close_video(film.handle);
    return static_cast<double>(frame.size()) * avi_frames / watch.seconds();
}

double write_plainly(const std::vector<unsigned char>& frame, const char* path) {
    const Stopwatch watch;
    FILE* file = std::fopen(path, "wb");
    if (!file) give_up(std::string("cannot write ") + path);
    for (int i = 0; i < avi_frames; ++i)
        std::fwrite(frame.data(), 1, frame.size(), file);
    std::fclose(file);
    return static_cast<double>(frame.size()) * avi_frames / watch.seconds();
}

void print_pair(const char* what, double ours, double peer, const char* unit) {
    std::printf("%-28s %8.2f   peer %8.2f %s   ratio %.2f\n", what, ours, peer, unit, ours / peer);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) give_up("usage: bench_video_file FILM [ROUNDS]");
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
    const auto processors = static_cast<int>(std::thread::hardware_concurrency());
    const int threads = std::clamp(processors, 1, 4);  // as many as the library decodes with
    double ours = 0.0;
    double peer = 0.0;
    for (int i = 0; i < rounds; ++i) {
        int frames = 0;
        const double read = read_film(argv[1], frames);
        if (i == 0) std::printf("memory after a film          %8.1f MB\n", memory("VmHWM:"));
        const double ffmpeg = read_with_ffmpeg(argv[1], threads, frames);
        print_pair("read_frame", read, ffmpeg, "frames/s");
        ours = std::max(ours, read);
        peer = std::max(peer, ffmpeg);
    }
    print_pair("read_frame, best", ours, peer, "frames/s");
    print_pair("processor time of reading", processor_time(RUSAGE_SELF),
               processor_time(RUSAGE_CHILDREN), "s");

    std::vector<unsigned char> frame(std::size_t{avi_width} * avi_height * 3);
    for (std::size_t i = 0; i < frame.size(); ++i)
        frame[i] = static_cast<unsigned char>(i * 2654435761U >> 13);
    const char* const path = "bench_video_file.avi";
    ours = peer = 0.0;
    for (int i = 0; i < rounds; ++i) {
        ours = std::max(ours, write_avi(frame, path) / 1e6);
        peer = std::max(peer, write_plainly(frame, path) / 1e6);
    }
    std::remove(path);
    print_pair("write_frame, avi, best", ours, peer, "MB/s");
    return 0;
}
