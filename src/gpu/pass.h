// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_shader.h"
#include "gpu/gl_texture.h"

/// One drawing of a fragment program over a whole texture. [main]
///
///     Pass(code_frag_II, out).input("texHighRes", in).set("weight", 1.0F).run();
///
/// Inputs take units 0, 1, 2 in the order they are named; the first decides the coordinates.
/// Program text and uniform names must be literals.
class Pass {
  public:
    Pass(const char* program, gl_texture_resource* out);
    /// Draws into what is bound, by `draw`.
    explicit Pass(const char* program);

    Pass& input(const char* uniform, gl_texture_resource* tex, int filter = GL_NEAREST);

    template <class T>
    Pass& set(const char* uniform, T value) {
        program_->setValue(uniform, value);
        return *this;
    }
    Pass& set_vectors3(const char* uniform, const float* values, int count);
    Pass& set_vectors4(const char* uniform, const float* values, int count);

    void run();
    /// Instead of `run`: a quad from (0, 0) to (`width`, `height`) in the current transformation,
    /// the first input all over it.
    void draw(int width, int height);

  private:
    object_ref<gl_shader_resource> program_;
    int unit_ = 0;
};

/// Whether the driver can order a pass after the one before it that wrote the same texture.
bool has_texture_barrier();

/// Call before a pass that reads and writes one texture, each texel for itself. Does nothing where
/// the driver lacks it: such a pass then needs another target. [main]
void texture_barrier();

/// Copies `from` into `to`, a texture of its size, without a program. [main]
void copy_texture(gl_texture_resource* from, gl_texture_resource* to);
