// SPDX-License-Identifier: MIT
#include "gpu/gl_context.h"

#include "gpu/drawing_pieces.h"
#include "gpu/gl_bindings.h"

#include <GL/glew.h>
#include <GL/glu.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace {

constexpr int largest_texture_used = 8192;

bool require(bool present, const char* name, const char* why) {
    if (present) return true;
    std::fprintf(stderr, "OpenGL extension '%s' is not present.\n", name);
    std::fputs(why, stderr);
    std::fputs("Check if OpenGL is configured properly.\n", stderr);
    return false;
}

// Mesa's drivers for the processor.
bool is_software(std::string_view renderer) {
    return renderer.starts_with("llvmpipe") || renderer.starts_with("softpipe");
}

const char* gl_text(GLenum what) {
    const auto* text = reinterpret_cast<const char*>(glGetString(what));
    return text ? text : "";
}

}  // namespace

bool load_gl() {
    const GLenum error = glewInit();
    // Where there is no GLX, under Wayland, GLEW says so after it has loaded everything else.
    if (error != GLEW_OK && error != GLEW_ERROR_NO_GLX_DISPLAY) {
        std::fprintf(stderr, "GLEW: %s\n",
                     reinterpret_cast<const char*>(glewGetErrorString(error)));
        return false;
    }
    std::printf("OPENGL VENDOR = %s\n", gl_text(GL_VENDOR));
    std::printf("OPENGL RENDERER = %s\n", gl_text(GL_RENDERER));
    std::printf("OPENGL VERSION = %s\n", gl_text(GL_VERSION));
    return require(GLEW_ARB_fragment_program, "ARB_fragment_program",
                   "Fragment shader support is required to run VYXVideoPlayer!\n") &&
           require(GLEW_ARB_texture_rectangle, "ARB_texture_rectangle",
                   "This extension is required to run VYXVideoPlayer!\n");
}

void init_gl_state() {
    glDisable(GL_DEPTH_TEST);
    blend_over();
    const GLenum target = GLEW_EXT_texture_rectangle ? GL_TEXTURE_RECTANGLE_ARB : GL_TEXTURE_2D;
    glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &texture_size_limit);
    max_texture_size = std::min(texture_size_limit, largest_texture_used);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    draws_on_processor = is_software(gl_text(GL_RENDERER));
}

void blend_over() {
    if (glBlendFuncSeparate) {
        glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    } else {
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
}

void reshape_gl(int width, int height) {
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluOrtho2D(0, width, height, 0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    make_framebuffers();
}

bool has_pixel_buffers() {
    return GLEW_EXT_pixel_buffer_object || GLEW_ARB_pixel_buffer_object;
}

void finish_drawing() {
    glFinish();
}

void present_window() {
    glDisable(GL_BLEND);
    glDisable(GL_LINE_SMOOTH);
    SDL_GL_SwapBuffers();
}
