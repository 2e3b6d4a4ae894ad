// SPDX-License-Identifier: MIT
#include "gui/gui_environment.h"

#include "platform/window.h"

#include <SDL.h>

namespace {

double ticks_in_seconds() {
    return SDL_GetTicks() * 0.001;
}

pointf sdl_mouse_position() {
    int x = 0;
    int y = 0;
    SDL_GetMouseState(&x, &y);
    return {static_cast<float>(x), static_cast<float>(y)};
}

unsigned sdl_mouse_buttons() {
    return SDL_GetMouseState(nullptr, nullptr);
}

void sdl_show_cursor(bool visible) {
    SDL_ShowCursor(visible ? SDL_ENABLE : SDL_DISABLE);
}

}  // namespace

constinit GuiEnvironment gui_environment = {ticks_in_seconds, sdl_mouse_position, sdl_mouse_buttons,
                                            sdl_show_cursor, get_fullscreen};
