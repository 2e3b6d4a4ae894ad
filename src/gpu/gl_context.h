// SPDX-License-Identifier: MIT
#pragma once

/// Loads the entry points of the current context and prints who made it. Returns false, with the
/// reason on standard error, when that fails or a required extension is missing. [main]
bool load_gl();

/// Fixed state of the context: blending, wrapping, fill mode, and the largest texture. [main]
void init_gl_state();

/// Each colour over what lies below it by its alpha. Where a texture is drawn into, its own alpha
/// becomes how much of what lies below is covered. [main]
void blend_over();

/// Viewport and projection for a window of `width` x `height` pixels, origin at the top left, and
/// new framebuffer objects. [main]
void reshape_gl(int width, int height);

/// Whether pictures can travel through pixel-buffer objects.
bool has_pixel_buffers();

/// Waits until everything is drawn. [main]
void finish_drawing();

/// Shows what was drawn. [main]
void present_window();
