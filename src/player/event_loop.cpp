// SPDX-License-Identifier: MIT
#include "player/event_loop.h"

#include "gpu/drawing_pieces.h"
#include "gui/forms.h"
#include "gui/gui_environment.h"
#include "platform/threads.h"
#include "platform/window.h"
#include "player/infolabel.h"
#include "player/key_commands.h"
#include "player/picture_queue.h"
#include "player/play_video.h"
#include "player/refresh_timer.h"
#include "player/still_picture.h"
#include "player/stream.h"
#include "player/video_refresh.h"

#include <cstdio>

namespace {

constexpr Uint32 double_click_ms = 250;

// The button that is being held over the interface, 0 for none.
int held_button = 0;

// A second button must not take what the first one drags. Releases can get lost, though, or lie in
// the queue still: what is not held now ends before another button begins.
bool is_held() {
    return (gui_environment.mouse_buttons() & SDL_BUTTON(held_button)) != 0;
}

bool near_edge(pointf p) {
    constexpr float margin = 100.0F;
    return p.x < margin || p.y < margin || p.x > static_cast<float>(screen->w) - margin ||
           p.y > static_cast<float>(screen->h) - margin;
}

void show_form(FormWidget* form) {
    if (form) form->show();
}

void mouse_down(const SDL_MouseButtonEvent& button) {
    const pointf p(button.x, button.y);
    if (button.button == SDL_BUTTON_LEFT && DoubleClickDetected(SDL_GetTicks()) &&
        !gui.hittest(p)) {
        cover_screen(!get_fullscreen());
        return;
    }
    if (held_button && held_button != button.button) {
        if (is_held()) return;
        gui.mouseup(p, held_button);
    }
    held_button = button.button;
    const bool pressed = gui.mousedown(p, held_button);
    // A click without the least movement works, too.
    const bool moved = gui.mousemove(p, held_button);
    if (pressed || moved) return;
    if (near_edge(p)) {
        show_form(formMenu);
        show_form(formTransportBar);
    }
    SDL_ShowCursor(SDL_ENABLE);
}

void mouse_up(const SDL_MouseButtonEvent& button) {
    if (button.button != held_button) return;
    gui.mouseup({static_cast<float>(button.x), static_cast<float>(button.y)}, held_button);
    held_button = 0;
}

void resize(int width, int height) {
    if (is_size_of_left_screen(width, height)) return;
    if (set_video_mode(width, height, get_fullscreen() ? SDL_FULLSCREEN : 0)) {
        reshape(screen->w, screen->h);
    }
}

// The file could not be opened or played.
void stream_failed(VideoState* is) {
    if (!stream_is_open(is)) return;
    const std::string message = "Cannot display file " + is->filename +
                                "!\nThe file format is either not supported or\n"
                                "the content can not be read.";
    std::fprintf(stderr, "%s\n", message.c_str());
    set_infolabel(message);
    stream_close(is);
}

void end_of_stream(VideoState* is) {
    if (is != global_video_state) return;
    if (is->loop) {
        stream_seek(is, 0, 0);
    } else if (!is->paused) {
        stream_pause(is);
        if (!formMediaBrowser.IsNull()) formMediaBrowser->play_next();
    }
}

}  // namespace

bool DoubleClickDetected(Uint32 ticks) {
    static Uint32 LastClickTicks = 0;
    const bool follows = LastClickTicks != 0 && ticks - LastClickTicks <= double_click_ms;
    LastClickTicks = ticks;
    return follows;
}

bool handle_event(const SDL_Event& event) {
    assert_thread(ThreadRole::main);
    VideoState* is = global_video_state;
    if (event.type < SDL_USEREVENT && event.type != SDL_MOUSEMOTION) note_activity();
    switch (event.type) {
        case SDL_ACTIVEEVENT:
            if (event.active.state & SDL_APPINPUTFOCUS) set_focus(event.active.gain != 0);
            break;
        case SDL_KEYDOWN:
            if (event.key.keysym.sym == SDLK_ESCAPE) return false;
            key_down(is, event.key.keysym);
            break;
        case SDL_KEYUP:
            key_up(is, event.key.keysym);
            break;
        case SDL_MOUSEBUTTONDOWN:
            mouse_down(event.button);
            break;
        case SDL_MOUSEBUTTONUP:
            mouse_up(event.button);
            break;
        case SDL_MOUSEMOTION:
            gui.mousemove({static_cast<float>(event.motion.x), static_cast<float>(event.motion.y)},
                          held_button);
            break;
        case SDL_QUIT:
        case event_quit:
            return false;
        case SDL_VIDEORESIZE:
            resize(event.resize.w, event.resize.h);
            break;
        case event_alloc_picture:
            if (is && event.user.data1 == is) alloc_picture(is);
            break;
        case event_refresh:
            refresh_scheduled = false;
            // Whatever state the event was posted for: a film opened since is the one to show.
            video_refresh_timer(is);
            break;
        case event_failed:
            stream_failed(static_cast<VideoState*>(event.user.data1));
            break;
        case event_end_of_stream:
            end_of_stream(static_cast<VideoState*>(event.user.data1));
            break;
        default:
            break;
    }
    return true;
}

int run_event_loop() {
    set_drawing_watch(quit_came_in);
    SDL_Event event;
    do {
        wait_event(&event);
    } while (handle_event(event) && !quit_came_in());
    set_drawing_watch(nullptr);
    do_exit();
    return 0;
}
