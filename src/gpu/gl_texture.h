// SPDX-License-Identifier: MIT
#pragma once

#include "core/object.h"

#include <GL/glew.h>
#include <SDL.h>

/// The largest side of a texture that the driver takes, at most 8192. Set at start-up.
extern int max_texture_size;
/// Largest width and height that OpenGL takes at all.
extern int texture_size_limit;

/// Which ways `gl_texture_resource::transfer_to_texture` uploads. Both may be on.
extern bool hwaccelerated_nvidia;
extern bool hwaccelerated_ati;

/// Reads the GL error flag. Returns true when there was no error; `where` names the place for a
/// reader of the code or a debugger. [main]
bool check_glerror(const char* where);

/// Whether textures are addressed in texels instead of 0 to 1.
bool has_rectangle_textures();

/// A texture that can be sampled and rendered to.
///
/// Rectangle textures (texel coordinates) where the driver has them, otherwise 2-D ones. Made on
/// the main thread. Its GL name is deleted with the object; when another thread drops the last
/// reference, the name waits until `delete_dropped_textures`.
class gl_texture_resource : public object {
  public:
    /// Note the order: height first. `format` is an internal format, 0 for the default one (16-bit
    /// float where possible). `data` is a picture in the texture's pixel format, or null.
    gl_texture_resource(int height, int width, int format, const void* data);
    ~gl_texture_resource() override;
    gl_texture_resource(const gl_texture_resource&) = delete;
    gl_texture_resource& operator=(const gl_texture_resource&) = delete;

    /// The internal format that a request for `format` gives: itself, or the default for 0.
    static int get_internal_format(int format);

    /// Uploads a whole picture of floats in the texture's pixel format, rows from the bottom.
    /// [main]
    void transfer_to_texture(const void* data);

    /// Reads the whole picture, or the rectangle `r`, as floats in the texture's pixel format.
    /// Render-target slot 0 stays set to this texture. [main]
    void transfer_from_texture(void* data);
    void transfer_from_texture(void* data, SDL_Rect r);

    GLuint name() const { return name_; }
    GLenum target() const { return target_; }
    int internal_format() const { return static_cast<int>(internal_format_); }
    GLenum pixel_format() const { return pixel_format_; }
    int height() const { return height_; }
    int width() const { return width_; }

  private:
    GLuint name_ = 0;
    GLenum target_;
    GLuint internal_format_;
    GLenum pixel_format_;
    int height_;
    int width_;
};

/// Deletes the GL names of textures whose last reference another thread dropped. [main]
void delete_dropped_textures();

/// How many textures exist. For tests and for finding leaks.
int live_textures();
