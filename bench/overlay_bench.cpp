// SPDX-License-Identifier: MIT
// What it costs to draw over the picture or instead of it, and how long subtitles load.
//
//     bench_overlays
//
// Medians and bests of many rounds in a window of 800 x 600. "Called" is until the drawing call
// returns; the frame is then drawn by the driver, and compared with one of a cleared window. What
// it leaves out: the picture, and the buffer swap.

#include "core/settings.h"
#include "gpu/gl_context.h"
#include "gpu/no_signal.h"
#include "gpu/video_display.h"
#include "gpu/waveform_display.h"
#include "measure.h"
#include "media/subtitles.h"
#include "platform/window.h"
#include "player/display.h"
#include "player/infolabel.h"
#include "player/play_video.h"

#include <SDL.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

double best(const std::vector<double>& values) {
    return *std::min_element(values.begin(), values.end());
}

// The frame is a cleared window, drawn with and without the overlay in turns.
void measure_drawing(const char* what, const std::function<void()>& draw) {
    constexpr int rounds = 300;
    std::vector<double> called;
    std::vector<double> frame;
    std::vector<double> cleared;
    for (int i = 0; i < 2 * rounds; ++i) {
        finish_drawing();
        const auto start = Clock::now();
        clear_window(screen->w, screen->h);
        const auto begun = Clock::now();
        if (i % 2 == 0) {
            draw();
            called.push_back(ms_since(begun));
        }
        finish_drawing();
        (i % 2 == 0 ? frame : cleared).push_back(ms_since(start));
    }
    std::printf("%-34s called %7.3f ms (best %7.3f), frame longer by %7.3f ms (best %7.3f)\n", what,
                median(called), best(called), median(frame) - median(cleared),
                best(frame) - best(cleared));
}

void measure_loading(const char* what, const std::string& folder, const std::string& content) {
    std::ofstream(folder + "/film.srt") << content;
    std::vector<double> times;
    for (int i = 0; i < 50; ++i) {
        Subtitles list;
        const auto start = Clock::now();
        list.load(folder + "/film.mp4");
        times.push_back(ms_since(start));
    }
    std::printf("%-34s %7.3f ms (best %7.3f)\n", what, median(times), best(times));
}

std::string cues(std::size_t bytes) {
    std::string text;
    for (int i = 0; text.size() < bytes; ++i) {
        char times[64];
        std::snprintf(times, sizeof times, "%02d:%02d:%02d,000 --> %02d:%02d:%02d,900",
                      i / 3600 % 100, i / 60 % 60, i % 60, i / 3600 % 100, i / 60 % 60, i % 60);
        text +=
            std::to_string(i + 1) + "\n" + times + "\n<i>Some words of a film,</i>\nand more\n\n";
    }
    return text;
}

bool open_window() {
    static char scaling_off[] = "SDL12COMPAT_OPENGL_SCALING=0";
    putenv(scaling_off);
    if (SDL_Init(SDL_INIT_VIDEO) != 0 || !set_video_mode(800, 600) || !load_gl()) return false;
    init();
    reshape(screen->w, screen->h);
    return true;
}

void measure_hud(const std::string& folder) {
    std::ofstream(folder + "/film.srt")
        << "1\n0:0:0,0 --> 9:0:0,0\nA line of some forty characters, say this,\n"
           "and another one of about the same length\n\n";
    subtitles.load(folder + "/film.mp4");
    VideoState film;
    film.video_stream_index = 0;
    measure_drawing("HUD, nothing to show", [] { hud_display(nullptr); });
    measure_drawing("HUD, two lines of a subtitle", [&film] { hud_display(&film); });
    master_settings.status.setValue(1);
    measure_drawing("the same, label and status line", [&film] {
        set_infolabel("Volume: +1.00 dB");
        hud_display(&film);
    });
}

void measure_screens() {
    Waveform wave;
    for (std::size_t x = 0; x < wave.size(); ++x)
        wave[x] = 0.5F * std::sin(static_cast<float>(x) * 0.2F);
    const std::vector<Waveform> waves{wave, wave};
    object_ref<gl_texture_resource> picture;
    alloc_waveforms(picture);
    measure_drawing("waveforms of two channels", [&] {
        fade_waveforms(picture);
        draw_waveforms(picture, waves);
        clear_window(screen->w, screen->h);
        show_waveforms(picture, false, 525, 600, 0.0F);
    });
    measure_drawing("animation without a film", [] {
        draw_no_signal(no_signal_rectangle(screen->w, screen->h), screen->h, 3.0F);
    });
}

}  // namespace

int main() {
    char name[] = "/tmp/vyx_bench_XXXXXX";
    if (!mkdtemp(name) || !open_window()) {
        std::fputs("bench_overlays: needs a display and a folder for files\n", stderr);
        return 2;
    }
    const std::string folder = name;
    measure_hud(folder);
    measure_screens();
    measure_loading("1 MB of subtitles", folder, cues(1000000));
    measure_loading("10 MB on one line", folder, std::string(10000000, 'x'));
    std::remove((folder + "/film.srt").c_str());
    rmdir(name);
    SDL_Quit();
    return 0;
}
