// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"

#include <GL/glew.h>

/// Texture units and render targets that a pass may use.
inline constexpr int binding_slots = 8;

/// What is bound for the next pass; `gl_shader_resource::run` empties both. References are not
/// counted. [main]
extern gl_texture_resource* textures[binding_slots];
extern gl_texture_resource* rendertargets[binding_slots];

/// One framebuffer object per render-target slot, 0 before the first `make_framebuffers`.
extern GLuint fb[binding_slots];

/// Makes the framebuffer objects anew. Does nothing where the driver has none. [main]
void make_framebuffers();

/// Binds `tex` on texture unit `unit` for the next pass, with `filter` (`GL_NEAREST` or
/// `GL_LINEAR`) and clamped edges. Units outside 0..7 are ignored. [main]
void set_texture(int unit, gl_texture_resource* tex, int filter);

/// Makes `tex` (null: nothing) the target of slot `slot` for the next pass. Slots outside 0..7 are
/// ignored. The slot's framebuffer stays bound. [main]
void set_rendertarget(int slot, gl_texture_resource* tex);

/// Unbinds every texture that is recorded for the next pass. [main]
void unbind_textures();

/// Makes the window the target of what is drawn next: framebuffer 0, no program, unit 0, no pixel
/// buffer, and a viewport of `width` x `height`. [main]
void bind_window(int width, int height);
