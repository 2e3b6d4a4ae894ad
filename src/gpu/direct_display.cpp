// SPDX-License-Identifier: MIT
#include "gpu/direct_display.h"

#include "core/settings.h"
#include "gpu/display_effects.h"
#include "gpu/pass.h"
#include "gpu/texture_cache.h"

#include <shaders/direct_display.h>

#include <cstdint>

namespace {

// Replaces a plane from `offset` in the buffer that is bound.
void upload_plane(const gl_texture_resource* tex, GLenum format, std::uintptr_t offset) {
    glBindTexture(tex->target(), tex->name());
    // OpenGL wants the offset as a pointer.
    const auto* place = reinterpret_cast<const void*>(offset);
    glTexSubImage2D(tex->target(), 0, 0, 0, tex->width(), tex->height(), format, GL_UNSIGNED_BYTE,
                    place);
}

}  // namespace

bool pictures_stay_untouched() {
    return master_settings.spatial_upscaling_factor.toInt() == 0 &&
           master_settings.upscaling_algorithm.toInt() == 0 &&
           master_settings.temporal_upscaling_factor.toInt() == 0 &&
           master_settings.sharpening_level.getValue() <= 0.0F &&
           !master_settings.demo_mode.toBool() && !master_settings.show_original.toBool();
}

void upload_planes(const VideoPicture& pic, DirectPlanes& planes) {
    if (pic.buffer_form == BufferForm::halved) {
        planes.y = nullptr;
        planes.uv = nullptr;
        alloc_texture(planes.halved, pic.height / 2, pic.width / 2, GL_RGBA);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pic.pbo);
        upload_plane(planes.halved, GL_RGBA, 0);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        return;
    }
    planes.halved = nullptr;
    // Before the buffer is bound: a new texture would be read from it.
    alloc_texture(planes.y, pic.height, pic.width, GL_LUMINANCE);
    alloc_texture(planes.uv, pic.height / 2, pic.width / 2, GL_LUMINANCE_ALPHA);
    const auto width = static_cast<std::uintptr_t>(pic.width);
    const auto height = static_cast<std::uintptr_t>(pic.height);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pic.pbo);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    upload_plane(planes.y, GL_LUMINANCE, 0);
    upload_plane(planes.uv, GL_LUMINANCE_ALPHA, width * height);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

void draw_planes(DirectPlanes& planes, int width, int height) {
    const ColourAdjustment colour = colour_adjustment();
    if (planes.halved) {
        Pass(yuv_halved)
            .input("texYUV", planes.halved, GL_LINEAR)
            .set("c", colour.c)
            .set("b", colour.b)
            .draw(width, height);
        return;
    }
    Pass(yuv420p_planes)
        .input("texY", planes.y, GL_LINEAR)
        .input("texUV", planes.uv, GL_LINEAR)
        .set("c", colour.c)
        .set("b", colour.b)
        .draw(width, height);
}
