// SPDX-License-Identifier: MIT
#include "enhance/headless_context.h"

#include "enhance/enhance_error.h"
#include "gpu/gl_bindings.h"
#include "gpu/gl_context.h"

#include <GL/glew.h>

namespace {

// The entry points are there after this; that there is no GLX display is no failure without a
// window.
bool load_entry_points() {
    const GLenum error = glewInit();
    return error == GLEW_OK || error == GLEW_ERROR_NO_GLX_DISPLAY;
}

bool has_needed_extensions() {
    return GLEW_ARB_fragment_shader && GLEW_ARB_texture_rectangle && GLEW_ARB_texture_float &&
           GLEW_EXT_framebuffer_object && has_pixel_buffers();
}

constexpr int any_size = 16;  // of the viewport; each pass sets its own

}  // namespace

void make_headless_context() {
    static GlContext* context = nullptr;  // never destroyed: programs of the passes live in it
    if (context) return;
    std::unique_ptr<GlContext> made = make_surfaceless_context();
    if (!made) made = make_hidden_window_context();
    if (!made) {
        throw EnhanceError(
            "no OpenGL: neither EGL without a surface nor a window on an X display works");
    }
    if (!load_entry_points()) throw EnhanceError("the functions of OpenGL cannot be loaded");
    if (!has_needed_extensions()) {
        throw EnhanceError("OpenGL lacks fragment programs, float textures or framebuffer objects");
    }
    init_gl_state();
    reshape_gl(any_size, any_size);
    context = made.release();
}
