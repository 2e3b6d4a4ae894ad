// SPDX-License-Identifier: MIT
#include "platform/swap_interval.h"

#include <GL/glew.h>
#include <GL/glxew.h>

#include <string_view>

namespace {

bool screen_has(Display* display, std::string_view name) {
    // GLEW reports what the client library knows. Calling what the screen does not have ends the
    // process with an X error, so the screen itself is asked.
    const char* text = glXQueryExtensionsString(display, DefaultScreen(display));
    std::string_view extensions = text ? text : "";
    while (!extensions.empty()) {
        const std::size_t end = extensions.find(' ');
        if (extensions.substr(0, end) == name) return true;
        extensions.remove_prefix(end == std::string_view::npos ? extensions.size() : end + 1);
    }
    return false;
}

}  // namespace

const char* set_swap_interval(int interval) {
    Display* display = glXGetCurrentDisplay();
    const GLXDrawable drawable = glXGetCurrentDrawable();
    if (!display || !drawable) return nullptr;
    if (glXSwapIntervalEXT && screen_has(display, "GLX_EXT_swap_control")) {
        glXSwapIntervalEXT(display, drawable, interval);
        return "GLX_EXT_swap_control";
    }
    if (glXSwapIntervalMESA && screen_has(display, "GLX_MESA_swap_control")) {
        glXSwapIntervalMESA(static_cast<unsigned>(interval));
        return "GLX_MESA_swap_control";
    }
    // This one accepts no 0.
    if (interval > 0 && glXSwapIntervalSGI && screen_has(display, "GLX_SGI_swap_control")) {
        glXSwapIntervalSGI(interval);
        return "GLX_SGI_swap_control";
    }
    return nullptr;
}
