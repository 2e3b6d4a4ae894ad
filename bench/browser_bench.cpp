// SPDX-License-Identifier: MIT
// What the media browser costs with a folder of 5,000 films: listing it, and scrolling through it
// in a window of 800 x 600.
//
//     bench_browser [FILES]
//
// Every file has a small picture already. It leaves out the making of those and the film behind.
//
//     bench_browser --new FILM
//
// How long redraws wait while small pictures are made: 40 files that are all FILM, none in the
// cache, scrolled through from end to end and back until there are pictures of all.

#include "gpu/gl_bindings.h"
#include "gpu/gl_context.h"
#include "gpu/video_display.h"
#include "gui/forms.h"
#include "gui/gl_font.h"
#include "gui/player_control.h"
#include "gui/screen.h"
#include "measure.h"
#include "media/thumbnail_database.h"
#include "platform/swap_interval.h"
#include "platform/window.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <vector>

namespace {

constexpr int width = 800;
constexpr int height = 600;
constexpr int different_pictures = 64;
constexpr std::size_t new_films = 40;
constexpr double new_patience = 60.0;  // seconds

double ms_of(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return ms_since(start);
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

// A folder of files, gone at the end.
class Films {
  public:
    // Empty ones.
    explicit Films(int files) : Films() {
        for (int i = 0; i < files; ++i)
            std::ofstream(folder_ /
                          ("A film with a name of usual length " + std::to_string(i) + ".mp4"));
    }
    // Each of them the same film.
    explicit Films(const char* film) : Films() {
        const std::filesystem::path target = std::filesystem::absolute(film);
        for (std::size_t i = 0; i < new_films; ++i)
            std::filesystem::create_symlink(target, folder_ / (std::to_string(i) + ".mp4"));
    }
    ~Films() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Films(const Films&) = delete;
    Films& operator=(const Films&) = delete;

    std::string path() const { return folder_.string(); }

  private:
    Films() {
        char name[] = "/tmp/browser_bench_XXXXXX";
        folder_ = mkdtemp(name);
    }

    std::filesystem::path folder_;
};

// A player that does nothing and has no picture of any film.
class NoPictures : public PlayerControl {
  public:
    gl_texture_resource* thumbnail(const std::string& /*path*/) override { return nullptr; }

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
};

// A player that has a picture of every film.
class Pictures : public NoPictures {
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

    long asked = 0;

  private:
    std::vector<object_ref<gl_texture_resource>> pictures_;
};

// The player's own pictures, and the longest time that a redraw spent on asking for one.
class MadePictures : public NoPictures {
  public:
    gl_texture_resource* thumbnail(const std::string& path) override {
        gl_texture_resource* found = nullptr;
        const double ms = ms_of([&] { found = ThumbnailDatabase::Lookup(path, true).texture; });
        longest_wait = std::max(longest_wait, ms);
        if (found) seen.insert(path);
        return found;
    }

    double longest_wait = 0.0;
    std::set<std::string> seen;
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

void measure_new(const Films& films) {
    MadePictures pictures;
    player_control = &pictures;
    const object_ref<FormMediaBrowser> browser(new FormMediaBrowser((films.path() + "/x").c_str()));
    gui.add(browser);
    browser->visible = true;
    ThumbnailDatabase::Start();
    redraw();
    std::vector<double> times;
    const auto begun = Clock::now();
    const auto passed = [&] { return ms_since(begun) / 1e3; };
    for (int i = 0; pictures.seen.size() < new_films && passed() < new_patience; ++i) {
        const double part = std::abs(std::fmod(i / 200.0, 2.0) - 1.0);
        browser->list->scroll({0.0F, browser->list->scroll_max.y * static_cast<float>(part)}, true);
        times.push_back(ms_of(redraw));
    }
    const double all = passed();
    const Spread spread = spread_of(times);
    std::printf("%zu pictures made in %.2f s, %zu redraws\n", pictures.seen.size(), all,
                times.size());
    std::printf("%-44s %8.2f ms median, %.2f ms longest\n", "a redraw while they are made",
                spread.median, spread.worst);
    std::printf("%-44s %8.2f ms longest\n", "of it the wait for one picture",
                pictures.longest_wait);
    ThumbnailDatabase::Abort();
    ThumbnailDatabase::Join();
    player_control = nullptr;
    gui.children.clear();
}

}  // namespace

int main(int argc, char** argv) {
    const bool fresh = argc > 2 && std::strcmp(argv[1], "--new") == 0;
    const int files = argc > 1 && !fresh ? std::atoi(argv[1]) : 5000;
    if (!open_window()) {
        std::fputs("bench_browser needs a display; tools/with-display gives one\n", stderr);
        return 1;
    }
    if (fresh) {
        measure_new(Films(argv[2]));
    } else {
        measure(Films(files), files);
    }
    SDL_Quit();
    return 0;
}
