// SPDX-License-Identifier: MIT
#include "gpu/pass.h"

#include "gpu/gl_bindings.h"

Pass::Pass(const char* program, gl_texture_resource* out)
    : program_(compile_shader(program, true)) {
    set_rendertarget(0, out);
    program_->begin();
}

Pass::Pass(const char* program) : program_(compile_shader(program, true)) {
    program_->begin();
}

Pass& Pass::input(const char* uniform, gl_texture_resource* tex, int filter) {
    set_texture(unit_, tex, filter);
    program_->setValue(uniform, unit_);
    ++unit_;
    return *this;
}

Pass& Pass::set_vectors3(const char* uniform, const float* values, int count) {
    program_->setVectors3(uniform, values, count);
    return *this;
}

Pass& Pass::set_vectors4(const char* uniform, const float* values, int count) {
    program_->setVectors4(uniform, values, count);
    return *this;
}

void Pass::run() {
    program_->run();
    program_->end();
}

void Pass::draw(int width, int height) {
    const gl_texture_resource& first = *textures[0];
    const bool texels = first.target() != GL_TEXTURE_2D;
    const auto corner = [&](int x, int y) {
        glTexCoord2i(texels ? x * first.width() : x, texels ? y * first.height() : y);
        glVertex2i(x * width, y * height);
    };
    glBegin(GL_QUADS);
    corner(0, 0);
    corner(1, 0);
    corner(1, 1);
    corner(0, 1);
    glEnd();
    program_->end();
    unbind_textures();
}

bool has_texture_barrier() {
    return GLEW_ARB_texture_barrier || GLEW_NV_texture_barrier;
}

void texture_barrier() {
    if (GLEW_ARB_texture_barrier) {
        glTextureBarrier();
    } else if (GLEW_NV_texture_barrier) {
        glTextureBarrierNV();
    }
}

void copy_texture(gl_texture_resource* from, gl_texture_resource* to) {
    set_rendertarget(0, from);
    glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
    glBindTexture(to->target(), to->name());
    glCopyTexSubImage2D(to->target(), 0, 0, 0, 0, 0, to->width(), to->height());
    glBindTexture(to->target(), 0);
    set_rendertarget(0, nullptr);
}
