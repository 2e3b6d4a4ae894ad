// SPDX-License-Identifier: MIT
#include "gpu/gl_texture.h"

#include "gpu/gl_bindings.h"
#include "platform/threads.h"

#include <GL/glu.h>

#include <atomic>
#include <mutex>
#include <vector>

int max_texture_size = 0;
int texture_size_limit = 0;
bool hwaccelerated_nvidia = true;
bool hwaccelerated_ati = false;

namespace {

std::atomic<int> texture_count{0};

// Names that wait for the thread with the context.
std::mutex dropped_mutex;
std::vector<GLuint>& dropped_names() {
    static auto* names = new std::vector<GLuint>;  // outlives threads that drop textures at exit
    return *names;
}

bool owns_context() {
    return thread_role() == ThreadRole::main || thread_role() == ThreadRole::unnamed;
}

GLenum component_type(int format) {
    if (format == GL_RGBA8 || format == GL_RGB8) return GL_UNSIGNED_BYTE;
    return has_rectangle_textures() && GLEW_ARB_texture_float ? GL_FLOAT : GL_UNSIGNED_BYTE;
}

}  // namespace

bool check_glerror(const char* /*where*/) {
    const GLenum error = glGetError();
    if (error == GL_NO_ERROR) return true;
    gluErrorString(error);
    return false;
}

bool has_rectangle_textures() {
    return GLEW_ARB_texture_rectangle != 0;
}

gl_texture_resource::gl_texture_resource(int height, int width, int format, const void* data)
    : target_(has_rectangle_textures() ? GL_TEXTURE_RECTANGLE_ARB : GL_TEXTURE_2D),
      internal_format_(static_cast<GLuint>(get_internal_format(format))),
      pixel_format_(format == 0 && GLEW_ARB_texture_float ? GL_RGBA : GL_RGB),
      height_(height),
      width_(width) {
    delete_dropped_textures();
    glGenTextures(1, &name_);
    glBindTexture(target_, name_);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(target_, 0, static_cast<GLint>(internal_format_), width, height, 0, pixel_format_,
                 component_type(format), data);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glTexParameteri(target_, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(target_, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(target_, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(target_, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    ++texture_count;
}

gl_texture_resource::~gl_texture_resource() {
    --texture_count;
    if (owns_context()) {
        glDeleteTextures(1, &name_);
        return;
    }
    const std::lock_guard lock(dropped_mutex);
    dropped_names().push_back(name_);
}

int gl_texture_resource::get_internal_format(int format) {
    if (format != 0) return format;
    if (!has_rectangle_textures()) return GL_RGBA8;
    return GLEW_ARB_texture_float ? GL_RGBA16F_ARB : GL_RGBA8;
}

void gl_texture_resource::transfer_to_texture(const void* data) {
    if (hwaccelerated_nvidia) {
        glBindTexture(target_, name_);
        glTexSubImage2D(target_, 0, 0, 0, width_, height_, pixel_format_, GL_FLOAT, data);
    }
    if (hwaccelerated_ati) {
        glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, target_, name_, 0);
        glDrawBuffer(GL_COLOR_ATTACHMENT0_EXT);
        glRasterPos2i(0, 0);
        glDrawPixels(width_, height_, pixel_format_, GL_FLOAT, data);
        glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, target_, 0, 0);
    }
}

void gl_texture_resource::transfer_from_texture(void* data) {
    set_rendertarget(0, this);
    glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
    glReadPixels(0, 0, width_, height_, pixel_format_, GL_FLOAT, data);
}

void gl_texture_resource::transfer_from_texture(void* data, SDL_Rect r) {
    set_rendertarget(0, this);
    glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
    glReadPixels(r.x, r.y, r.w, r.h, pixel_format_, GL_FLOAT, data);
}

void delete_dropped_textures() {
    std::vector<GLuint> names;
    {
        const std::lock_guard lock(dropped_mutex);
        names.swap(dropped_names());
    }
    if (!names.empty()) glDeleteTextures(static_cast<GLsizei>(names.size()), names.data());
}

int live_textures() {
    return texture_count;
}
