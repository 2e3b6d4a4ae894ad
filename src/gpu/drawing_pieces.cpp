// SPDX-License-Identifier: MIT
#include "gpu/drawing_pieces.h"

#include <GL/glew.h>

#include <algorithm>

bool draws_on_processor = false;

namespace {

bool (*drawing_unwanted)() = nullptr;
int texels_asked_for = 0;  // and not waited for yet

// Waiting costs time itself: passes over small textures are waited for together.
void wait_for_texels(int more) {
    texels_asked_for += more;
    if (texels_asked_for < piece_texels) return;
    glFinish();
    texels_asked_for = 0;
}

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
    if (height <= rows) {
        if (drawing_unwanted()) return;
        draw(argument);
        wait_for_texels(width * height);
        return;
    }
    glPushAttrib(GL_SCISSOR_BIT);
    glEnable(GL_SCISSOR_TEST);
    for (int y = 0; y < height && !drawing_unwanted(); y += rows) {
        const int piece = std::min(rows, height - y);
        glScissor(0, y, width, piece);
        draw(argument);
        wait_for_texels(width * piece);
    }
    glPopAttrib();
}
