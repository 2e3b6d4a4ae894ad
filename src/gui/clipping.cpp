// SPDX-License-Identifier: MIT
#include "gui/graphics.h"

#include <GL/glew.h>
#include <GL/glu.h>

#include <algorithm>
#include <cmath>

rectf clipping_stack[clipping_levels];
int clipping_depth = 0;

namespace {

// The deepest level shares the last slot of the stack with the one above it.
rectf& current_box() {
    return clipping_stack[std::min(clipping_depth, clipping_levels - 1)];
}

// Truncated towards zero; a float beyond the range of an integer would not be defined.
int whole(float value) {
    constexpr float limit = 1.0e9F;
    return static_cast<int>(std::clamp(std::isnan(value) ? 0.0F : value, -limit, limit));
}

void apply(const rectf& box) {
    glScissor(whole(box.x), whole(box.y), std::max(whole(box.w), 0), std::max(whole(box.h), 0));
}

}  // namespace

void glConvertToWindowCoords(float* x, float* y) {
    GLint viewport[4];
    GLdouble modelview[16];
    GLdouble projection[16];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    GLdouble window_x = 0.0;
    GLdouble window_y = 0.0;
    GLdouble depth = 0.0;
    gluProject(*x, *y, 0.0, modelview, projection, viewport, &window_x, &window_y, &depth);
    *x = static_cast<float>(window_x);
    *y = static_cast<float>(window_y);
}

void push_clippingrectangle() {
    if (clipping_depth < clipping_levels) ++clipping_depth;
}

void set_cliprectanglef(float x, float y, float w, float h) {
    float x0 = x;
    float y0 = y;
    float x1 = x + w;
    float y1 = y + h;
    glConvertToWindowCoords(&x0, &y0);
    glConvertToWindowCoords(&x1, &y1);
    // y runs down here and up in the window.
    current_box() = {x0, y1, x1 - x0, y0 - y1};
    apply(current_box());
    glEnable(GL_SCISSOR_TEST);
}

void add_cliprectanglef(float x, float y, float w, float h) {
    set_cliprectanglef(x, y, w, h);
}

void or_cliprectanglef(float x, float y, float w, float h) {
    set_cliprectanglef(x, y, w, h);
}

void pop_clippingrectangle() {
    if (clipping_depth < 2) {
        clipping_depth = 0;
        glDisable(GL_SCISSOR_TEST);
        return;
    }
    --clipping_depth;
    apply(current_box());
}
