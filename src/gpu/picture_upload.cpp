// SPDX-License-Identifier: MIT
#include "gpu/picture_upload.h"

#include "gpu/display_effects.h"
#include "gpu/gl_bindings.h"
#include "gpu/texture_cache.h"

#include <vector>

namespace {

// What a picture takes in that form; YUV 4:2:0 is half of RGB, and of even sizes.
GLsizeiptr buffer_bytes(const VideoPicture& pic, BufferForm form) {
    const GLsizeiptr rgb = static_cast<GLsizeiptr>(pic.width) * 3 * pic.height;
    if (form == BufferForm::rgb) return rgb;
    return form == BufferForm::halved ? rgb / 3 : rgb / 2;
}

// Replaces the texels of `tex` from `data`, an offset when a pixel buffer is bound.
void replace_texels(gl_texture_resource* tex, int width, int height, GLenum format, GLenum type,
                    int alignment, const void* data) {
    glBindTexture(tex->target(), tex->name());
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
    glTexSubImage2D(tex->target(), 0, 0, 0, width, height, format, type, data);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

void upload_yuv(VideoPicture& pic, object_ref<gl_texture_resource>& staging) {
    const int rows = pic.height + pic.height / 2;
    const bool fresh = alloc_texture(staging, pic.height, pic.width, GL_LUMINANCE);
    if (fresh) {
        // The texture stands for W x H luma texels, so that a pass over W x H reads it at those
        // coordinates; the chroma rows lie below.
        glBindTexture(staging->target(), staging->name());
        glTexImage2D(staging->target(), 0, GL_LUMINANCE, pic.width, rows, 0, GL_LUMINANCE,
                     GL_UNSIGNED_BYTE, nullptr);
    }
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pic.pbo);
    replace_texels(staging, pic.width, rows, GL_LUMINANCE, GL_UNSIGNED_BYTE, 1, nullptr);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    convert_yuv420p_to_rgb(staging, pic.rgb);
    pic.converted = true;
}

void upload_rgb_buffer(VideoPicture& pic) {
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pic.pbo);
    replace_texels(pic.rgb, pic.width, pic.height, GL_RGB, GL_UNSIGNED_BYTE, 1, nullptr);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

void upload_surface(VideoPicture& pic) {
    SDL_Surface* surface = pic.surface.get();
    SDL_LockSurface(surface);
    const int alignment = surface->pitch == pic.width * 3 ? 1 : 4;
    replace_texels(pic.rgb, pic.width, pic.height, pic.rgb->pixel_format(), GL_UNSIGNED_BYTE,
                   alignment, surface->pixels);
    SDL_UnlockSurface(surface);
    glTexParameteri(pic.rgb->target(), GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(pic.rgb->target(), GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

// A texel per cell: its own vector, and that of the cell below on the right.
void upload_motion_vectors(VideoPicture& pic) {
    const int rows = pic.grid_height;
    const int columns = pic.grid_width;
    if (rows == 0 || columns == 0) return;
    alloc_texture(pic.motion, rows, columns, 0);
    if (pic.motion_vectors.empty()) return;
    static std::vector<float> texels;  // [main] keeps its memory between pictures
    texels.resize(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns) * 4);
    float* texel = texels.data();
    for (int r = 0; r < rows; ++r) {
        const MotionVector* own = pic.motion_vectors[r];
        const MotionVector* next = pic.motion_vectors[r + 1];
        for (int c = 0; c < columns; ++c, texel += 4) {
            texel[0] = static_cast<float>(own[c].x);
            texel[1] = static_cast<float>(own[c].y);
            texel[2] = static_cast<float>(next[c + 1].x);
            texel[3] = static_cast<float>(next[c + 1].y);
        }
    }
    replace_texels(pic.motion, columns, rows, GL_RGBA, GL_FLOAT, 4, texels.data());
}

}  // namespace

void make_pixel_buffer(VideoPicture& pic) {
    delete_pixel_buffer(pic);
    glGenBuffers(1, &pic.pbo);
}

void delete_pixel_buffer(VideoPicture& pic) {
    if (pic.pbo) glDeleteBuffers(1, &pic.pbo);
    pic.pbo = 0;
    pic.pbo_bytes = 0;
}

void fill_pixel_buffer(VideoPicture& pic, PictureSource& source, BufferForm form) {
    const GLsizeiptr bytes = buffer_bytes(pic, form);
    const bool fits = pic.pbo_bytes == bytes;
    // A new one: where memory is short, the old one could be mapped, and be too small.
    if (!fits) make_pixel_buffer(pic);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pic.pbo);
    if (!fits) {
        glBufferData(GL_PIXEL_UNPACK_BUFFER, bytes, nullptr, GL_STREAM_DRAW);
        pic.pbo_bytes = bytes;
    }
    if (void* memory = glMapBuffer(GL_PIXEL_UNPACK_BUFFER, GL_WRITE_ONLY)) {
        source.fill_picture(pic, static_cast<std::uint8_t*>(memory), form);
        glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER);
    }
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    pic.buffer_filled = true;
    pic.buffer_form = form;
}

void upload_picture(VideoPicture& pic, const UploadOptions& options) {
    if (alloc_texture(pic.rgb, pic.height, pic.width, GL_RGBA)) pic.converted = false;
    if (!options.enhanced) pic.enhanced = nullptr;
    upload_motion_vectors(pic);
    if (pic.buffer_filled && pic.buffer_form == BufferForm::packed) {
        upload_yuv(pic, options.staging);
    } else {
        if (pic.buffer_filled) {
            upload_rgb_buffer(pic);
        } else if (!options.pixel_buffers && pic.surface) {
            upload_surface(pic);
        }
        brightness_contrast_enhancement(&pic);
    }
    pic.uploaded = true;
}
