// SPDX-License-Identifier: MIT
#include "gpu/gl_shader.h"

#include "gpu/drawing_pieces.h"
#include "gpu/gl_bindings.h"

#include <GL/glu.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace {

std::map<const char*, gl_shader_resource*>& compiled_shaders() {
    static auto* programs = new std::map<const char*, gl_shader_resource*>;  // kept until exit
    return *programs;
}

// The last attempt at each program that does not compile.
std::map<const char*, object_ref<gl_shader_resource>>& failed_shaders() {
    static auto* programs = new std::map<const char*, object_ref<gl_shader_resource>>;
    return *programs;
}

void append_to_log(const char* heading, const char* underline, const std::string& text) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("GLShader.log", "a"),
                                                               std::fclose);
    if (!file) return;
    for (const char* part : {heading, underline, text.c_str(), "\n"})
        std::fputs(part, file.get());
}

struct TextureSpan {
    float s, t, ds, dt;
};

// Where a pass over `r` of a target of W x H reads a texture.
TextureSpan texture_span(const gl_texture_resource& tex, SDL_Rect r, int W, int H) {
    if (tex.target() == GL_TEXTURE_2D) {
        const auto w = static_cast<float>(W);
        const auto h = static_cast<float>(H);
        return {static_cast<float>(r.x) / w, static_cast<float>(r.y) / h,
                static_cast<float>(r.w) / w, static_cast<float>(r.h) / h};
    }
    const auto scaled = [](int position, int size, int target_size) {
        return static_cast<float>(target_size == 0 ? 0 : position * size / target_size);
    };
    return {scaled(r.x, tex.width(), W), scaled(r.y, tex.height(), H), scaled(r.w, tex.width(), W),
            scaled(r.h, tex.height(), H)};
}

void enter_target(const gl_texture_resource& target) {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, target.width(), 0, target.height());
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glViewport(0, 0, target.width(), target.height());
}

void leave_target() {
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
}

int list_draw_buffers(GLenum (&list)[binding_slots]) {
    int count = 0;
    for (int slot = 0; slot < binding_slots; ++slot) {
        if (rendertargets[slot])
            list[count++] = GL_COLOR_ATTACHMENT0_EXT + static_cast<GLenum>(slot);
    }
    return count;
}

void draw_quad(SDL_Rect r, const gl_texture_resource* target) {
    TextureSpan spans[binding_slots] = {};
    for (int unit = 0; unit < binding_slots; ++unit) {
        if (textures[unit]) {
            spans[unit] = texture_span(*textures[unit], r, target ? target->width() : 0,
                                       target ? target->height() : 0);
        }
    }
    const auto vertex = [&](bool right, bool top) {
        for (int unit = 0; unit < binding_slots; ++unit) {
            if (!textures[unit]) continue;
            const TextureSpan& span = spans[unit];
            glMultiTexCoord2f(GL_TEXTURE0 + static_cast<GLenum>(unit),
                              right ? span.s + span.ds : span.s, top ? span.t + span.dt : span.t);
        }
        glVertex2i(right ? r.x + r.w : r.x, top ? r.y + r.h : r.y);
    };
    glBegin(GL_QUADS);
    vertex(false, false);
    vertex(true, false);
    vertex(true, true);
    vertex(false, true);
    glEnd();
}

void unbind_all(const GLenum* draw_buffers, int count) {
    for (int k = 0; k < count; ++k) {
        const auto slot = static_cast<int>(draw_buffers[k] - GL_COLOR_ATTACHMENT0_EXT);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, fb[slot]);
        glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, draw_buffers[k], GL_TEXTURE_RECTANGLE_ARB, 0,
                                  0);
        check_glerror("gl_shader_resource::run(2)");
        rendertargets[slot] = nullptr;
    }
    unbind_textures();
}

}  // namespace

gl_shader_resource::~gl_shader_resource() {
    if (attached_) glDetachShader(program_, shader_);
    glDeleteShader(shader_);
    glDeleteProgram(program_);
}

void gl_shader_resource::begin() {
    glUseProgram(program_);
}

void gl_shader_resource::end() {
    glUseProgram(0);
    glGetError();
    glActiveTexture(GL_TEXTURE0);
}

void gl_shader_resource::setValue(const char* name, int v) {
    glUniform1i(getToken(name), v);
}
void gl_shader_resource::setValue(const char* name, float v) {
    glUniform1f(getToken(name), v);
}
void gl_shader_resource::setValue(const char* name, paravec2<float> v) {
    glUniform2fv(getToken(name), 1, &v.x);
}
void gl_shader_resource::setValue(const char* name, paravec4<float> v) {
    glUniform4fv(getToken(name), 1, &v.x);
}
void gl_shader_resource::setValue(const char* name, const float* values, int count) {
    glUniform1fv(getToken(name), count, values);
}
void gl_shader_resource::setVectors3(const char* name, const float* values, int count) {
    glUniform3fv(getToken(name), count, values);
}
void gl_shader_resource::setVectors4(const char* name, const float* values, int count) {
    glUniform4fv(getToken(name), count, values);
}

int gl_shader_resource::getToken(const char* name) {
    const auto known = tokens_.find(name);
    if (known != tokens_.end() && std::strcmp(known->first, name) == 0) return known->second;
    return tokens_[name] = glGetUniformLocation(program_, name);
}

void gl_shader_resource::run(SDL_Rect r) {
    const gl_texture_resource* target = rendertargets[0] ? rendertargets[0] : rendertargets[1];
    if (target) enter_target(*target);
    GLenum draw_buffers[binding_slots];
    const int count = list_draw_buffers(draw_buffers);
    if (count == 1) glDrawBuffer(draw_buffers[0]);
    if (count > 1) glDrawBuffers(count, draw_buffers);
    check_glerror("gl_shader_resource::run(1)");
    if (target) {
        draw_in_pieces(target->width(), target->height(), [&] { draw_quad(r, target); });
    } else {
        draw_quad(r, target);
    }
    unbind_all(draw_buffers, count);
    if (target) leave_target();
}

void gl_shader_resource::run() {
    const gl_texture_resource* target = rendertargets[0] ? rendertargets[0] : rendertargets[1];
    if (!target) {
        unbind_textures();
        return;
    }
    run({0, 0, static_cast<Uint16>(target->width()), static_cast<Uint16>(target->height())});
}

bool gl_shader_resource::printShaderInfoLog() const {
    GLint ok = GL_FALSE;
    glGetShaderiv(shader_, GL_COMPILE_STATUS, &ok);
    if (ok) return true;
    GLint length = 0;
    glGetShaderiv(shader_, GL_INFO_LOG_LENGTH, &length);
    if (length > 1) {
        std::string text(static_cast<std::size_t>(length), '\0');
        glGetShaderInfoLog(shader_, length, nullptr, text.data());
        append_to_log("Shader info log\n", "===============\n", text);
    }
    return false;
}

bool gl_shader_resource::printProgramInfoLog() const {
    GLint ok = GL_FALSE;
    glGetProgramiv(program_, GL_LINK_STATUS, &ok);
    if (ok) return true;
    GLint length = 0;
    glGetProgramiv(program_, GL_INFO_LOG_LENGTH, &length);
    if (length > 1) {
        std::string text(static_cast<std::size_t>(length), '\0');
        glGetProgramInfoLog(program_, length, nullptr, text.data());
        append_to_log("Program info log\n", "================\n", text);
    }
    return false;
}

gl_shader_resource* compile_shader(const char* source, bool keep) {
    const auto known = compiled_shaders().find(source);
    if (known != compiled_shaders().end()) return known->second;

    check_glerror("compile_shader(1)");
    auto* program = new gl_shader_resource;
    program->program_ = glCreateProgram();
    check_glerror("glCreateProgram()");
    program->shader_ = glCreateShader(GL_FRAGMENT_SHADER);
    check_glerror("glCreateShader(GL_FRAGMENT_SHADER_ARB)");
    glShaderSource(program->shader_, 1, &source, nullptr);
    check_glerror("glShaderSource");
    glCompileShader(program->shader_);

    bool ok = program->printShaderInfoLog();
    if (ok) {
        glAttachShader(program->program_, program->shader_);
        program->attached_ = true;
        glLinkProgram(program->program_);
        ok = program->printProgramInfoLog();
        ok = check_glerror("compile_shader(2)") && ok;
    }
    if (!keep) return program;
    if (ok) {
        compiled_shaders()[source] = program;
        program->addref();
    } else {
        failed_shaders()[source] = program;
    }
    return program;
}
