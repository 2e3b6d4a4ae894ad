// SPDX-License-Identifier: MIT
// Plays a film in the real player and tells how near its sound stays to its pictures, and what the
// sound device's callback costs.
//
//     bench_sound SECONDS FILM [speed=0.5...1.5] [events]
//
// With "events" the film is paused for a moment or sought every few seconds. One line per figure:
// name, value, unit. The difference of the clocks is read every 5 ms, from 5 s after the first
// sound on, and not within 2 s after a seek or a pause. It is given as read, where the clock of the
// sound moves in steps of a device's buffer or a block and that of the pictures in pictures, and
// averaged over a second. What it leaves out: the way from the device's buffer to the ear.

#include "audio/allocation_counter.h"
#include "measure.h"
#include "player/audio_output.h"
#include "player/clocks.h"
#include "player/command_line.h"
#include "player/display.h"
#include "player/play_video.h"
#include "player/stream.h"

#include <SDL.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

namespace {

constexpr double settling = 5.0;     // seconds from the first sound on
constexpr double event_pause = 0.7;  // seconds
constexpr double event_every = 6.0;
constexpr double after_event = 2.0;

struct Call {
    double wall;  // milliseconds
    double cpu;
    long allocations;
};

// Written by the device's thread, read after it has ended.
std::vector<Call> calls;
double buffer_ms = 0.0;

// Written by the clocks' reader.
std::vector<double> differences;  // milliseconds
std::vector<double> averages;     // the same over a second each

std::atomic<bool> finished{false};
std::atomic<std::int64_t> quiet_until{0};  // wall time: nothing is measured before
int speed_index = normal_speed_index;
bool events = false;

void measured_callback(void* userdata, Uint8* stream, int len) {
    const long allocations = heap_allocations();
    const double cpu = thread_ms();
    const auto start = Clock::now();
    audio_callback(userdata, stream, len);
    const double wall = ms_since(start);
    calls.push_back({wall, thread_ms() - cpu, heap_allocations() - allocations});
}

bool open_device(SDL_AudioSpec* spec) {
    spec->callback = measured_callback;
    buffer_ms = 1e3 * spec->samples / spec->freq;
    calls.reserve(100000);
    return sdl_audio_device().open(spec);
}

const AudioDevice device = {open_device, sdl_audio_device().start, sdl_audio_device().close};

void hold_back(double seconds) {
    quiet_until = wall_clock() + static_cast<std::int64_t>(seconds * 1e6);
}

// Pauses, resumes and seeks in turn.
void make_events(VideoState* is) {
    static std::int64_t next = 0;
    static int count = 0;
    const std::int64_t now = wall_clock();
    const auto after = [now](double seconds) {
        return now + static_cast<std::int64_t>(seconds * 1e6);
    };
    if (next == 0) next = after(settling + event_every);
    if (now < next) return;
    if (is->paused || count % 2 == 0) {
        stream_pause(is);
        next = after(is->paused ? event_pause : event_every);
    } else {
        stream_seek(is, count % 4 == 1 ? 1300000 : 9700000, 0);
        next = after(event_every);
    }
    if (!is->paused) ++count;
    hold_back((is->paused ? event_pause : 0.0) + after_event);
}

void after_swap(VideoState* is, std::int64_t /*now*/) {
    is->playback_speed_index = speed_index;
    if (events) make_events(is);
}

bool can_measure(const VideoState* is) {
    return is && is->audio_stream_index >= 0 && is->video_stream_index >= 0 && !is->paused &&
           wall_clock() >= quiet_until;
}

void read_clocks() {
    constexpr std::size_t in_a_second = 200;
    double sum = 0.0;
    std::size_t count = 0;
    while (!finished) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1000 / in_a_second));
        const VideoState* is = global_video_state;
        if (!can_measure(is)) {
            sum = 0.0;
            count = 0;
            continue;
        }
        differences.push_back((get_audio_clock(is) - get_master_clock(is)) * 1e3);
        sum += differences.back();
        if (++count < in_a_second) continue;
        averages.push_back(sum / in_a_second);
        sum = 0.0;
        count = 0;
    }
}

Uint32 quit(Uint32 /*interval*/, void* /*param*/) {
    SDL_Event event{};
    event.type = SDL_QUIT;
    SDL_PushEvent(&event);
    return 10;
}

template <class Value>
Value percentile(std::vector<Value> values, double part) {
    if (values.empty()) return Value(-1);
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1) + 0.5)];
}

template <class Get>
auto column(Get get) {
    std::vector<decltype(get(calls[0]))> values;
    for (const Call& call : calls)
        values.push_back(get(call));
    return values;
}

double largest(const std::vector<double>& values) {
    double most = 0.0;
    for (const double value : values)
        most = std::max(most, std::abs(value));
    return most;
}

void report() {
    const auto wall = column([](const Call& call) { return call.wall; });
    const auto cpu = column([](const Call& call) { return call.cpu; });
    const auto allocations = column([](const Call& call) { return call.allocations; });
    std::printf("callbacks %zu\n", calls.size());
    std::printf("buffer %.3f ms\n", buffer_ms);
    for (const double part : {0.5, 0.99, 0.999, 1.0}) {
        std::printf("callback_p%g %.3f ms\n", part * 100, percentile(wall, part));
        std::printf("callback_cpu_p%g %.3f ms\n", part * 100, percentile(cpu, part));
    }
    std::printf("allocations_p50 %ld\n", percentile(allocations, 0.5));
    std::printf("allocations_p99 %ld\n", percentile(allocations, 0.99));
    std::printf("seconds_measured %zu\n", averages.size());
    for (const double part : {0.01, 0.5, 0.99})
        std::printf("ahead_p%g %.1f ms\n", part * 100, percentile(differences, part));
    std::printf("apart_largest %.1f ms\n", largest(differences));
    std::printf("apart_largest_of_a_second %.1f ms\n", largest(averages));
}

bool read_argument(const char* text) {
    if (std::strcmp(text, "events") == 0) {
        events = true;
        return true;
    }
    if (std::strncmp(text, "speed=", 6) != 0) return false;
    const double speed = std::atof(text + 6);
    const auto* const found = std::find(playback_speeds.begin(), playback_speeds.end(), speed);
    speed_index = static_cast<int>(found - playback_speeds.begin());
    return found != playback_speeds.end();
}

}  // namespace

int main(int argc, char** argv) {
    bool understood = argc >= 3;
    for (int i = 3; i < argc; ++i)
        understood = understood && read_argument(argv[i]);
    if (!understood) {
        std::fputs("usage: bench_sound SECONDS FILM [speed=0.5...1.5] [events]\n", stderr);
        return 2;
    }
    PlayVideoArgs args = default_args();
    std::strncpy(args.filename, argv[2], sizeof args.filename - 1);
    set_audio_device(&device);
    set_swap_observer(after_swap);
    hold_back(settling);
    SDL_Init(SDL_INIT_TIMER);
    SDL_AddTimer(static_cast<Uint32>(std::atof(argv[1]) * 1000.0), quit, nullptr);
    std::thread reader(read_clocks);
    const int status = play_video(&args);
    finished = true;
    reader.join();
    report();
    return status;
}
