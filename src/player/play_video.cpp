// SPDX-License-Identifier: MIT
#include "player/play_video.h"

#include "core/settings.h"
#include "gpu/gl_context.h"
#include "gpu/gl_texture.h"
#include "gpu/video_display.h"
#include "gui/forms.h"
#include "gui/gl_font.h"
#include "gui/screen.h"
#include "media/capture_formats.h"
#include "media/thumbnail_database.h"
#include "platform/display_loss.h"
#include "platform/heap.h"
#include "platform/threads.h"
#include "platform/window.h"
#include "player/clocks.h"
#include "player/engine_control.h"
#include "player/event_loop.h"
#include "player/events.h"
#include "player/infolabel.h"
#include "player/input_ahead.h"
#include "player/refresh_timer.h"
#include "player/stream.h"
#include "player/video_refresh.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int display_refresh_rate = 0;

namespace {

constexpr int first_refresh_ms = 40;
constexpr char banner[] = "VYX Player v1.01\nHigh quality media player";

// putenv keeps the strings themselves.
char scaling_off[] = "SDL12COMPAT_OPENGL_SCALING=0";
char window_at_origin[] = "SDL_VIDEO_WINDOW_POS=0,0";
char window_at_centre[] = "SDL_VIDEO_WINDOW_POS=center";
char window_centred[] = "SDL_VIDEO_CENTERED=1";

bool init_sdl() {
    if (SDL_WasInit(SDL_INIT_VIDEO)) {
        set_visible(true);
        return true;
    }
    // Without it the compatibility library lists modes larger than the screen and draws the window
    // through a framebuffer of its own.
    putenv(scaling_off);
    // Nobody types text here: the rules for composing letters need not be read (16 ms measured).
    setenv("XCOMPOSEFILE", "/dev/null", 0);
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_TIMER | SDL_INIT_NOPARACHUTE) != 0) {
        std::fprintf(stderr, "Could not initialize SDL - %s\n", SDL_GetError());
        return false;
    }
    // A machine without sound shows films all the same.
    SDL_InitSubSystem(SDL_INIT_AUDIO);
    return true;
}

void place_window(PlayVideoArgs* args) {
    if (args->fullscreen) {
        putenv(window_at_origin);
        args->width = args->height = 0;
    } else if (args->center_window) {
        putenv(window_at_centre);
        putenv(window_centred);
    }
}

// The forms that show themselves; the window's size places the menu.
void make_first_forms() {
    if (defaultStyle.IsNull()) defaultStyle = new WidgetStyle;
    connect_forms();
    formTransportBar = new FormTransportBar;
    formMenu = new FormMenu;
}

void make_other_forms(const PlayVideoArgs& args) {
    formVideoSettings = new FormVideoSettings;
    formAudioSettings = new FormAudioSettings;
    formVideoAdvancedSettings = new FormVideoAdvancedSettings;
    formMediaBrowser = new FormMediaBrowser(args.filename);
    file_chooser = formMediaBrowser;
    gui.add(formVideoSettings);
    gui.add(formAudioSettings);
    gui.add(formVideoAdvancedSettings);
    gui.add(formTransportBar);
    gui.add(formMenu);
    gui.add(formMediaBrowser);
    if (args.filename[0] != '\0') formMediaBrowser->select(args.filename);
    reshape(screen->w, screen->h);  // some are as wide as the window
}

bool open_window(PlayVideoArgs* args) {
    place_window(args);
    SDL_WM_SetCaption(args->title, "");
    load_icon();
    make_first_forms();
    if (!set_video_mode(args->width, args->height)) {
        std::fputs("SDL: could not set video mode - exiting\n", stderr);
        return false;
    }
    end_with_display();
    set_reshape_handler(reshape);
    if (args->fullscreen) {
        set_fullscreen(1);
        SDL_ShowCursor(SDL_DISABLE);
    }
    return true;
}

bool open_gl() {
    if (!load_gl()) return false;
    clear_window(screen->w, screen->h);
    init();
    reshape(screen->w, screen->h);
    check_glerror("OpenGL_init");
    present_window();
    return true;
}

// The format to open `name` with; false, with a message, when it cannot be opened at all.
bool find_format(const char* name, const AVInputFormat** format) {
    if (is_camera_name(name)) {
        *format = camera_format(name);
        if (*format) return true;
        std::fprintf(stderr, "Failed to open: '%s'!\n", name);
        return false;
    }
    if (access(name, F_OK) != 0) {
        std::fprintf(stderr, "File does not exist: '%s'!\n", name);
        return false;
    }
    *format = av_find_input_format(name);
    return true;
}

bool ends_the_player(const SDL_Event& event) {
    return event.type == SDL_QUIT || event.type == event_quit ||
           (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE);
}

// Takes what comes in while a file is being read ahead, so that the queue always has room for the
// wish to quit. Returns whether that came; the event loop will meet it again.
bool quit_is_wanted() {
    SDL_Event event;
    while (SDL_PollEvent(&event)) {
        if (ends_the_player(event)) {
            SDL_PushEvent(&event);
            return true;
        }
        if (event.type == SDL_VIDEORESIZE || event.type == event_failed) handle_event(event);
    }
    return false;
}

bool open_first_file(const PlayVideoArgs& args) {
    if (args.filename[0] == '\0') return true;
    const AVInputFormat* format = nullptr;
    if (!find_format(args.filename, &format)) return false;
    VideoState* is = stream_open(args.filename, args.title, format,
                                 {args.loop, args.preload, args.postprocessing_callback});
    if (!is || !args.preload) return true;
    while (is->preload && !quit_is_wanted())
        SDL_Delay(1);
    if (is->paused && !is->preload) stream_pause(is);
    return true;
}

int give_up() {
    forget_input_ahead();
    return 1;
}

// Forms follow the window.
void place_forms() {
    constexpr float margin = 10.0F;
    if (!formMenu.IsNull()) {
        formMenu->bounds.x = screenRectangle.x + margin;
        formMenu->bounds.y = screenRectangle.y + margin;
    }
    for (const object_ref<WidgetBase>& child : gui.children) {
        if (!child->hastype(WidgetTypes::form)) continue;
        auto& form = static_cast<FormWidget&>(*child);
        form.invalidate();
        if (form.has_title_bar) form.keep_inside();  // it may have been dragged to an edge
        if (!form.full_width) continue;
        form.bounds.x = screenRectangle.x;
        form.bounds.w = screenRectangle.w;
        form.on_size_changed();
    }
}

}  // namespace

void cover_screen(bool on) {
    set_fullscreen(on ? 1 : 0);
    // A form that went while the screen was covered took the pointer with it.
    if (!get_fullscreen()) SDL_ShowCursor(SDL_ENABLE);
}

void init() {
    init_gl_state();
    create_default_font();
    set_vsync(1);
}

void reshape(int width, int height) {
    if (width <= 0 || height <= 0) return;
    reshape_gl(width, height);
    const auto w = static_cast<float>(width);
    const auto h = static_cast<float>(height);
    const float scale = gui_scale(w, h);
    gui.bounds = {-w / 2, -h / 2, w, h};
    gui.scale = {scale, scale};
    gui.offset = {w * 0.5F * scale, h * 0.5F * scale};
    screenRectangle = {-w / 2 / scale, -h / 2 / scale, w / scale, h / scale};
    place_forms();
    display_refresh_rate = get_display_refresh_rate();
}

void apply_start_values(const PlayVideoArgs& args) {
    const auto apply = [](float value, Value& setting) {
        if (value != 0.0F) setting.setValue(value);
    };
    apply(args.brightness, master_settings.brightness);
    apply(args.contrast, master_settings.contrast);
    apply(args.denoising, master_settings.denoising_level);
    if (args.denoising != 0.0F) master_settings.upscaling_algorithm.setValue(1);
    apply(args.sharpening, master_settings.sharpening_level);
    if (args.demo) master_settings.demo_mode.setValue(1);
    apply(args.temp_thresh, master_settings.recursive_filtering_threshold);
}

int play_video(PlayVideoArgs* args) {
    set_up_heap();
    set_thread_role(ThreadRole::main);
    av_log_set_level(AV_LOG_ERROR);
    if (!init_sdl()) return 1;
    watch_for_quit();
    // Not sooner: SDL starts a program to look for a message bus, and what runs between fork and
    // exec may wait for ever for a lock that another thread held.
    open_input_ahead(args->filename);
    // What comes in before the event loop runs must not fill the queue: the wish to quit has to
    // fit.
    queue_mouse_motion(false);
    if (!open_window(args) || !open_gl() || !open_first_file(*args)) {
        SDL_Quit();  // gives the screen its own mode back
        return give_up();
    }
    start_frame_times(wall_clock());
    schedule_refresh(global_video_state, first_refresh_ms);
    if (args->show_banner) {
        std::puts(banner);
        std::fflush(stdout);
        set_infolabel(banner);
    }
    apply_start_values(*args);
    ThumbnailDatabase::Start();
    make_other_forms(*args);
    if (FormWidget::auto_hide_cursor && get_fullscreen()) SDL_ShowCursor(SDL_DISABLE);
    queue_mouse_motion(true);
    return run_event_loop();
}

void do_exit() {
    close_all_streams();
    forget_input_ahead();
    if (get_fullscreen()) set_fullscreen(0);
    ThumbnailDatabase::Abort();
    hold_refreshes(true);
    SDL_Quit();
    hold_refreshes(false);
}
