// SPDX-License-Identifier: MIT
#include "gpu/drawing_pieces.h"

#include <GL/glew.h>

#include <algorithm>

bool draws_on_processor = false;

namespace {

bool (*drawing_unwanted)() = nullptr;

}  // namespace

void set_drawing_watch(bool (*unwanted)()) {
    drawing_unwanted = unwanted;
}

bool drawing_is_unwanted() {
    return draws_on_processor && drawing_unwanted && drawing_unwanted();
}

void draw_in_pieces(int width, int height, void (*draw)(const void*), const void* argument) {
    if (!draws_on_processor || !drawing_unwanted || width <= 0) {
        draw(argument);
        return;
    }
    const int rows = std::max(1, piece_texels / width);
    glPushAttrib(GL_SCISSOR_BIT);
    glEnable(GL_SCISSOR_TEST);
    for (int y = 0; y < height && !drawing_unwanted(); y += rows) {
        glScissor(0, y, width, std::min(rows, height - y));
        draw(argument);
        glFinish();
    }
    glPopAttrib();
}
