// SPDX-License-Identifier: MIT
#include "gpu/gl_bindings.h"

gl_texture_resource* textures[binding_slots] = {};
gl_texture_resource* rendertargets[binding_slots] = {};
GLuint fb[binding_slots] = {};

void make_framebuffers() {
    if (!GLEW_EXT_framebuffer_object) return;
    if (fb[0]) glDeleteFramebuffersEXT(binding_slots, fb);
    glGenFramebuffersEXT(binding_slots, fb);
}

void set_texture(int unit, gl_texture_resource* tex, int filter) {
    if (unit < 0 || unit >= binding_slots || !tex) return;
    textures[unit] = tex;
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    glBindTexture(tex->target(), tex->name());
    glTexParameteri(tex->target(), GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(tex->target(), GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(tex->target(), GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(tex->target(), GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void set_rendertarget(int slot, gl_texture_resource* tex) {
    if (slot < 0 || slot >= binding_slots) return;
    rendertargets[slot] = tex;
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, fb[slot]);
    glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT,
                              GL_COLOR_ATTACHMENT0_EXT + static_cast<GLenum>(slot),
                              GL_TEXTURE_RECTANGLE_ARB, tex ? tex->name() : 0, 0);
    check_glerror("set_rendertarget");
}

void unbind_textures() {
    for (int unit = 0; unit < binding_slots; ++unit) {
        if (!textures[unit]) continue;
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        glBindTexture(textures[unit]->target(), 0);
        textures[unit] = nullptr;
    }
    glActiveTexture(GL_TEXTURE0);
}

void bind_window(int width, int height) {
    if (GLEW_EXT_framebuffer_object) glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
    glUseProgram(0);
    if (GLEW_ARB_pixel_buffer_object) glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    glActiveTexture(GL_TEXTURE0);
    glViewport(0, 0, width, height);
}
