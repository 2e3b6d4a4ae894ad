// SPDX-License-Identifier: MIT
// Plays a film in the real player for some seconds and tells how punctual it was and what it cost.
//
//     bench_play SECONDS FILM [seeks] [SETTING=VALUE...]
//
// With "seeks" it jumps to the other half of the film every second, once two seconds have passed,
// and tells how long it took until a picture from there was on screen. One line per figure: name,
// value, unit. Times are wall-clock; CPU time is the whole process's, all threads. What it leaves
// out: the X server's work, which the window system does for every player.

#include "core/settings.h"
#include "player/clocks.h"
#include "player/command_line.h"
#include "player/display.h"
#include "player/play_video.h"
#include "player/stream.h"
#include "player/video_refresh.h"

#include <SDL.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

struct Measurements {
    std::int64_t start = 0;
    std::int64_t first_picture = 0;
    std::vector<double> begun_late;  // milliseconds: refresh begun minus due
    std::vector<double> shown_late;  // milliseconds: swap done minus due
    std::vector<double> seek_times;  // milliseconds: request to swap
    std::vector<double> requests;    // seconds of the monotonic clock
    double last_due = 0.0;
    int shown = 0;
    int swaps = 0;
    double last_pts = -1.0;
    std::int64_t seek_start = 0;  // 0: none under way
    double seek_target = 0.0;     // seconds
    std::int64_t next_seek = 0;
    bool seeks = false;
    int unseen = 0;
};
Measurements measured;

// Jumps between the two halves of the film, so that a picture tells from which it is.
void watch_seeks(VideoState* is, std::int64_t now, double pts) {
    if (measured.seek_start && std::abs(pts - measured.seek_target) < 3.0) {
        measured.seek_times.push_back(static_cast<double>(now - measured.seek_start) / 1e3);
        measured.seek_start = 0;
    }
    if (measured.seek_start || now < measured.next_seek) return;
    static std::mt19937 random(1);
    const double half = is->duration / 2;
    const double within = static_cast<double>(random() % 1000) / 1000.0 * (half - 8.0);
    measured.seek_target = pts < half ? half + 4.0 + within : within;
    measured.seek_start = now;
    measured.next_seek = now + 1000000;
    measured.requests.push_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count());
    stream_seek(is, static_cast<std::int64_t>(measured.seek_target * 1e6), 0);
}

void after_swap(VideoState* is, std::int64_t now) {
    if (is->shown_picture < 0) return;
    ++measured.swaps;
    if (!measured.first_picture) {
        measured.first_picture = now;
        measured.next_seek = now + 2000000;
    }
    const double pts = is->pictures[static_cast<std::size_t>(is->shown_picture)].pts;
    if (measured.seeks) watch_seeks(is, now, pts);
    measured.unseen = is->pictures_unseen;
    if (pts != measured.last_pts) ++measured.shown;
    measured.last_pts = pts;
    const double due = is->clocks.displayed_due;
    // Without a timer, as with interpolation at its top setting, nothing is due at a certain time.
    if (due == measured.last_due || due <= 0.0 || is->paused) return;
    measured.last_due = due;
    measured.shown_late.push_back((static_cast<double>(now) / 1e6 - due) * 1e3);
    measured.begun_late.push_back((static_cast<double>(is->video_current_pts_time) / 1e6 - due) *
                                  1e3);
}

Uint32 quit(Uint32 /*interval*/, void* /*param*/) {
    SDL_Event event{};
    event.type = SDL_QUIT;
    SDL_PushEvent(&event);
    return 10;
}

bool apply_setting(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) return false;
    const std::string name = text.substr(0, equals);
    Settings& s = master_settings;
    for (Value* value :
         {&s.brightness, &s.contrast, &s.spatial_upscaling_factor, &s.upscaling_algorithm,
          &s.temporal_upscaling_factor, &s.sharpening_level, &s.denoising_level, &s.spatial_zoom,
          &s.vsync, &s.demo_mode, &s.motion_interpolation_method, &s.offload_decoding}) {
        if (value->name() != name) continue;
        value->setValue(static_cast<float>(std::atof(text.c_str() + equals + 1)));
        return true;
    }
    return false;
}

double percentile(std::vector<double> values, double part) {
    if (values.empty()) return -1.0;
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1) + 0.5)];
}

double seconds(const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
}

double resident_peak_mb() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word != "VmHWM:") continue;
        double kilobytes = 0;
        status >> kilobytes;
        return kilobytes / 1024.0;
    }
    return -1.0;
}

void report() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const double cpu = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    const double wall = static_cast<double>(wall_clock() - measured.start) / 1e6;
    std::printf("wall %.3f s\n", wall);
    std::printf("cpu %.3f s\n", cpu);
    std::printf("cpu_share %.3f of a core\n", cpu / wall);
    std::printf("resident_peak %.1f MB\n", resident_peak_mb());
    std::printf("first_picture %.3f s\n",
                static_cast<double>(measured.first_picture - measured.start) / 1e6);
    std::printf("pictures_shown %d\n", measured.shown);
    std::printf("swaps %d\n", measured.swaps);
    std::printf("pictures_unseen %d\n", measured.unseen);
    if (measured.seeks) {
        std::printf("seeks %zu\n", measured.seek_times.size());
        std::printf("seek_to_picture_p50 %.1f ms\n", percentile(measured.seek_times, 0.5));
        std::printf("seek_to_picture_p100 %.1f ms\n", percentile(measured.seek_times, 1.0));
        for (const double request : measured.requests)
            std::printf("seek_requested %.6f s\n", request);
    }
    if (measured.shown_late.empty()) return;
    for (const double part : {0.5, 0.9, 0.99, 1.0}) {
        std::printf("begun_minus_due_p%g %.3f ms\n", part * 100,
                    percentile(measured.begun_late, part));
        std::printf("shown_minus_due_p%g %.3f ms\n", part * 100,
                    percentile(measured.shown_late, part));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: bench_play SECONDS FILM [seeks] [SETTING=VALUE...]\n", stderr);
        return 2;
    }
    measured.start = wall_clock();
    PlayVideoArgs args = default_args();
    std::strncpy(args.filename, argv[2], sizeof args.filename - 1);
    for (int i = 3; i < argc; ++i) {
        if (std::strcmp(argv[i], "seeks") == 0) {
            measured.seeks = true;
            continue;
        }
        if (apply_setting(argv[i])) continue;
        std::fprintf(stderr, "bench_play: no such setting: %s\n", argv[i]);
        return 2;
    }
    set_swap_observer(after_swap);
    SDL_Init(SDL_INIT_TIMER);
    SDL_AddTimer(static_cast<Uint32>(std::atof(argv[1]) * 1000.0), quit, nullptr);
    const int status = play_video(&args);
    report();
    return status;
}
