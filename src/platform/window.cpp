// SPDX-License-Identifier: MIT
#include "platform/window.h"

#include "platform/swap_interval.h"

#include <cstdio>

SDL_Surface* screen = nullptr;

namespace {

bool bFullScreen = false;
int iVSync = 0;
ReshapeHandler reshape_handler = nullptr;

constexpr Uint16 window_width = 800;
constexpr Uint16 window_height = 600;

// The full screen that was left last.
SDL_Rect left_screen{};
Uint32 left_at = 0;
constexpr Uint32 late_ms = 1000;

void note_screen_left() {
    left_screen = {0, 0, static_cast<Uint16>(screen->w), static_cast<Uint16>(screen->h)};
    left_at = SDL_GetTicks();
}

SDL_Rect fullscreen_size() {
    SDL_Rect** modes = SDL_ListModes(nullptr, SDL_FULLSCREEN | SDL_HWSURFACE);
    // All ones means that any size will do.
    const bool any = modes == reinterpret_cast<SDL_Rect**>(-1);
    if (!modes || any) {
        if (!modes) std::fputs("No fullscreen display modes available!\n", stderr);
        return {0, 0, window_width, window_height};
    }
    return largest_mode(modes);
}

}  // namespace

void set_reshape_handler(ReshapeHandler handler) {
    reshape_handler = handler;
}

bool set_video_mode(int width, int height, Uint32 flags) {
    SDL_Surface* surface = SDL_SetVideoMode(width, height, 0, SDL_OPENGL | SDL_RESIZABLE | flags);
    if (surface) screen = surface;
    return surface != nullptr;
}

bool window_is_shown() {
    return (SDL_GetAppState() & SDL_APPACTIVE) != 0;
}

bool get_fullscreen() {
    return bFullScreen;
}

SDL_Rect largest_mode(SDL_Rect* const* modes) {
    SDL_Rect best{0, 0, window_width, window_height};
    for (; *modes; ++modes) {
        const SDL_Rect& mode = **modes;
        if (int(mode.w) * mode.h > int(best.w) * best.h) best = {0, 0, mode.w, mode.h};
    }
    return best;
}

bool set_fullscreen(int on) {
    if (bFullScreen && !on && screen) note_screen_left();
    bFullScreen = on != 0;
    const SDL_Rect size = on ? fullscreen_size() : SDL_Rect{0, 0, window_width, window_height};
    if (!set_video_mode(size.w, size.h, on ? SDL_FULLSCREEN : 0)) {
        std::fputs("SDL: could not set video mode\n", stderr);
        return false;
    }
    if (reshape_handler) reshape_handler(size.w, size.h);
    return true;
}

bool is_size_of_left_screen(int width, int height) {
    return !bFullScreen && width == left_screen.w && height == left_screen.h &&
           SDL_GetTicks() - left_at < late_ms;
}

void set_vsync(int interval) {
    iVSync = interval;
    set_swap_interval(interval);
}

int get_vsync() {
    return iVSync;
}

int get_display_refresh_rate() {
    return 60;
}

void show_taskbar(bool /*visible*/) {}
void set_visible(bool /*visible*/) {}
void set_focus(bool /*focused*/) {}
void load_icon() {}
