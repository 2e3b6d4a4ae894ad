// SPDX-License-Identifier: MIT
#include "gui/gui_layer.h"

#include "gui/graphics.h"

#include <GL/glew.h>

namespace {

constexpr float pixel_centre = 0.5F;

}  // namespace

void draw_gui() {
    glEnable(GL_LINE_SMOOTH);
    translate_transform(pixel_centre, pixel_centre);
    translate_transform(-pixel_centre, -pixel_centre);
    glDisable(GL_BLEND);
    glDisable(GL_LINE_SMOOTH);
}
