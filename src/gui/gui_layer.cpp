// SPDX-License-Identifier: MIT
#include "gui/gui_layer.h"

#include "gui/graphics.h"
#include "gui/widget_container.h"
#include "platform/threads.h"

#include <GL/glew.h>

namespace {

constexpr float pixel_centre = 0.5F;

}  // namespace

void draw_gui() {
    assert_thread(ThreadRole::main);
    glEnable(GL_LINE_SMOOTH);
    translate_transform(pixel_centre, pixel_centre);
    gui.draw();
    translate_transform(-pixel_centre, -pixel_centre);
    glDisable(GL_BLEND);
    glDisable(GL_LINE_SMOOTH);
}
