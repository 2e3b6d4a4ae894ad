// SPDX-License-Identifier: MIT
// What the media browser costs with a folder of 5,000 films: listing it, and scrolling through it
// in a window of 800 x 600.
//
//     bench_browser [FILES]
//
// Every file has a small picture already. It leaves out the making of those and the film behind.

#include "gpu/gl_bindings.h"
#include "gpu/gl_context.h"
#include "gpu/video_display.h"
#include "gui/forms.h"
#include "gui/gl_font.h"
#include "gui/player_control.h"
#include "gui/screen.h"
#include "platform/swap_interval.h"
#include "platform/window.h"

#include <SDL.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int width = 800;
constexpr int height = 600;
constexpr int different_pictures = 64;

double ms_of(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double processor_ms() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

struct Spread {
    double median;
    double worst;
};

Spread spread_of(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return {values[values.size() / 2], values.back()};
}

Spread repeated(int times, const std::function<void()>& work) {
    std::vector<double> values;
    for (int i = 0; i < times; ++i)
        values.push_back(ms_of(work));
    return spread_of(values);
}

// A folder of empty files, gone at the end.
class Films {
  public:
    explicit Films(int files) {
        char name[] = "/tmp/browser_bench_XXXXXX";
        folder_ = mkdtemp(name);
        for (int i = 0; i < files; ++i)
            std::ofstream(folder_ /
                          ("A film with a name of usual length " + std::to_string(i) + ".mp4"));
    }
    ~Films() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Films(const Films&) = delete;
    Films& operator=(const Films&) = delete;

    std::string path() const { return folder_.string(); }

  private:
    std::filesystem::path folder_;
};

// A player that does nothing and has a picture of every film.
class Pictures : public PlayerControl {
  public:
    Pictures() {
        std::vector<unsigned char> grey(192 * 108 * 3);
        for (int i = 0; i < different_pictures; ++i) {
            std::fill(grey.begin(), grey.end(), static_cast<unsigned char>(i * 4));
            pictures_.emplace_back(new gl_texture_resource(108, 192, GL_RGB8, grey.data()));
        }
    }
    gl_texture_resource* thumbnail(const std::string& path) override {
        ++asked;
        return pictures_[std::hash<std::string>()(path) % different_pictures];
    }

    bool is_open() const override { return false; }
    bool is_paused() const override { return false; }
    bool is_rewinding() const override { return false; }
    bool is_fast_forwarding() const override { return false; }
    double position() const override { return 0.0; }
    double duration() const override { return 0.0; }
    bool picture_size(int* /*width*/, int* /*height*/) const override { return false; }
    int largest_texture() const override { return max_texture_size; }
    void set_inloop_filter(bool /*on*/) override {}
    void toggle_pause() override {}
    void rewind() override {}
    void fast_forward() override {}
    void seek(std::int64_t /*microseconds*/) override {}
    void open(const std::string& /*path*/) override {}
    void show_label(const std::string& /*text*/) override {}
    bool is_fullscreen() const override { return false; }
    void set_fullscreen(bool /*on*/) override {}
    void set_vsync(bool /*on*/) override {}

    long asked = 0;

  private:
    std::vector<object_ref<gl_texture_resource>> pictures_;
};

bool open_window() {
    static char scaling_off[] = "SDL12COMPAT_OPENGL_SCALING=0";
    putenv(scaling_off);
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) != 0) return false;
    if (!set_video_mode(width, height) || !load_gl()) return false;
    init_gl_state();
    reshape_gl(width, height);
    set_vsync(0);
    create_default_font();
    gui.bounds = {-width / 2.0F, -height / 2.0F, width, height};
    gui.offset = {width / 2.0F, height / 2.0F};
    screenRectangle = gui.bounds;
    return true;
}

void redraw() {
    clear_window(width, height);
    gui.draw();
    finish_drawing();
    present_window();
}

// From the top to the end in `steps` redraws.
void scroll_through(FormMediaBrowser& browser, int steps, const char* what) {
    std::vector<double> times;
    redraw();
    const double processor_start = processor_ms();
    for (int i = 0; i < steps; ++i) {
        const float part = static_cast<float>(i) / static_cast<float>(steps - 1);
        browser.list->scroll({0.0F, browser.list->scroll_max.y * part}, true);
        times.push_back(ms_of(redraw));
    }
    const double processor = (processor_ms() - processor_start) / steps;
    const Spread spread = spread_of(times);
    std::printf("%-44s %8.2f ms median, %.2f ms worst, %.2f core ms: %.0f per second\n", what,
                spread.median, spread.worst, processor, 1000.0 / spread.median);
}

void measure(const Films& films, int files) {
    Pictures pictures;
    player_control = &pictures;
    const object_ref<FormMediaBrowser> browser(new FormMediaBrowser((films.path() + "/x").c_str()));
    gui.add(browser);
    browser->visible = true;

    std::printf("%d files\n", files);
    const Spread names = repeated(21, [&] { list_directory(films.path()); });
    std::printf("%-44s %8.2f ms median, %.2f ms worst\n", "listing the folder", names.median,
                names.worst);
    const Spread listing = repeated(21, [&] { browser->update(); });
    std::printf("%-44s %8.2f ms median, %.2f ms worst\n", "filling the list from it",
                listing.median, listing.worst);

    pictures.asked = 0;
    scroll_through(*browser, 600, "a redraw while scrolling, with pictures");
    std::printf("%-44s %8.1f\n", "pictures asked for per redraw",
                static_cast<double>(pictures.asked) / 601.0);
    browser->lister = [](const std::string& path) {
        DirectoryListing few = list_directory(path);
        few.entries.resize(std::min<std::size_t>(few.entries.size(), 20));
        return few;
    };
    browser->update();
    scroll_through(*browser, 600, "the same of a folder of 20 files");
    player_control = nullptr;
    browser->lister = list_directory;
    browser->update();
    scroll_through(*browser, 600, "without pictures");
    gui.children.clear();
}

}  // namespace

int main(int argc, char** argv) {
    const int files = argc > 1 ? std::atoi(argv[1]) : 5000;
    if (!open_window()) {
        std::fputs("bench_browser needs a display; tools/with-display gives one\n", stderr);
        return 1;
    }
    measure(Films(files), files);
    SDL_Quit();
    return 0;
}
