// SPDX-License-Identifier: MIT
#include "gui/thumbnail_drawing.h"

#include "gpu/gl_texture.h"
#include "gui/graphics.h"

#include <cstdint>

namespace {

constexpr unsigned white = 0xFFFFFFFFU;

// In texels, also where the driver has no rectangle textures.
void draw_textured(float x, float y, float w, float h, float texels_wide, float texels_high) {
    glBegin(GL_QUADS);
    glTexCoord2f(0.0F, 0.0F);
    glVertex2f(x, y);
    glTexCoord2f(texels_wide, 0.0F);
    glVertex2f(x + w, y);
    glTexCoord2f(texels_wide, texels_high);
    glVertex2f(x + w, y + h);
    glTexCoord2f(0.0F, texels_high);
    glVertex2f(x, y + h);
    glEnd();
}

}  // namespace

int thumbnail_width(const gl_texture_resource& texture, int height) {
    if (texture.height() == 0) return 0;
    return static_cast<int>(std::int64_t{texture.width()} * height / texture.height());
}

void draw_thumbnail(const gl_texture_resource& texture, float x, float y, int width, int height) {
    const GLenum target = texture.target();
    glActiveTexture(GL_TEXTURE0);
    glEnable(target);
    glBindTexture(target, texture.name());
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    setpencolor(white);
    draw_textured(x, y, static_cast<float>(width), static_cast<float>(height),
                  static_cast<float>(texture.width()), static_cast<float>(texture.height()));
    glBindTexture(target, 0);
    glDisable(target);
}
