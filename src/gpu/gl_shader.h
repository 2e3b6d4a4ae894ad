// SPDX-License-Identifier: MIT
#pragma once

#include "core/object.h"

#include <GL/glew.h>
#include <SDL.h>

#include <map>

/// Two or four numbers in a row, as the GL takes them.
template <class T>
struct paravec2 {
    T x, y;
};
template <class T>
struct paravec4 {
    T x, y, z, w;
};

/// One fragment program and the drawing of a pass with it.
///
/// A pass: `compile_shader`; `set_rendertarget(0, out)`; `set_texture(unit, in, filter)` for each
/// input; `begin`; `setValue` for each uniform; `run`; `end`. Everything on the main thread.
class gl_shader_resource : public object {
  public:
    gl_shader_resource() = default;
    ~gl_shader_resource() override;
    gl_shader_resource(const gl_shader_resource&) = delete;
    gl_shader_resource& operator=(const gl_shader_resource&) = delete;

    /// Makes the program current.
    void begin();
    /// Makes no program current, clears the GL error flag, and makes unit 0 active.
    void end();

    /// Set a uniform of the current program, between `begin` and `run`. `name` must be a literal:
    /// locations are remembered by its address. A name that the program does not use is ignored.
    void setValue(const char* name, int v);
    void setValue(const char* name, float v);
    void setValue(const char* name, paravec2<float> v);
    void setValue(const char* name, paravec4<float> v);
    void setValue(const char* name, const float* values, int count);
    /// An array of `count` vectors of three or four numbers.
    void setVectors3(const char* name, const float* values, int count);
    void setVectors4(const char* name, const float* values, int count);

    /// The location of a uniform, -1 when the program does not use it.
    int getToken(const char* name);

    /// Draws the pass over the rectangle `r`, in texels of the render target, origin bottom-left.
    ///
    /// Every bound texture gets texture coordinates in proportion to its size: an input of half the
    /// target's size is read at half its coordinates. Afterwards no texture and no render target is
    /// bound, and the framebuffer of the target, not the window, is current.
    void run(SDL_Rect r);
    /// Draws over the whole render target.
    void run();

    GLuint program() const { return program_; }

  private:
    friend gl_shader_resource* compile_shader(const char* source, bool keep);

    // Whether compiling or linking worked; if not, the log is appended to "GLShader.log".
    bool printShaderInfoLog() const;
    bool printProgramInfoLog() const;

    GLuint program_ = 0;
    GLuint shader_ = 0;
    bool attached_ = false;
    std::map<const char*, int> tokens_;
};

/// The program of a fragment-program text.
///
/// `source` must be a literal: with `keep` a program that compiled is remembered by its address
/// until exit, and every later call returns the same object. A program that did not compile is
/// returned too (drawing with it has no effect), with the reason in "GLShader.log". It is compiled
/// again by the next call, which releases it. Without `keep` a new program is the caller's.
gl_shader_resource* compile_shader(const char* source, bool keep);
