// SPDX-License-Identifier: MIT
// vyx-gallery FOLDER: draws every widget in every state, every icon, every outline and every form
// into pictures. Needs a display, as tools/with-display gives one.

#include "gallery/sheets.h"
#include "gpu/gl_context.h"
#include "gui/gl_font.h"
#include "gui/widget_style.h"
#include "platform/window.h"

#include <SDL.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

bool open_window() {
    static char scaling_off[] = "SDL12COMPAT_OPENGL_SCALING=0";
    putenv(scaling_off);
    return SDL_Init(SDL_INIT_VIDEO) == 0 && set_video_mode(320, 240) && load_gl();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    if (!open_window()) {
        std::fprintf(stderr, "No window: %s\n", SDL_GetError());
        return 1;
    }
    init_gl_state();
    create_default_font();
    defaultStyle = new WidgetStyle;
    const std::string folder = argv[1];
    const bool written = write_png(folder + "/gallery-widgets.png", widget_sheet()) &&
                         write_png(folder + "/gallery-icons.png", icon_sheet()) &&
                         write_png(folder + "/gallery-forms.png", form_sheet());
    if (!written) std::fprintf(stderr, "Cannot write into %s\n", folder.c_str());
    SDL_Quit();
    return written ? 0 : 1;
}
