// SPDX-License-Identifier: MIT
#include "gui/kept_drawing.h"

#include "gpu/gl_context.h"
#include "gui/graphics.h"

#include <GL/glew.h>
#include <SDL.h>

#include <algorithm>
#include <cmath>

namespace {

// Lines reach beyond the points they join.
constexpr float line_room = 2.0F;

/// Pixels of a viewport, counted from the window's lower left corner.
struct PixelBox {
    int x;
    int y;
    int w;
    int h;
};

// Where (0, 0) and (1, 1) lie in the window: forms are moved and zoomed, never turned.
struct Placement {
    pointf origin;
    pointf unit;
};

Placement placement() {
    Placement p{{0.0F, 0.0F}, {1.0F, 1.0F}};
    glConvertToWindowCoords(&p.origin.x, &p.origin.y);
    glConvertToWindowCoords(&p.unit.x, &p.unit.y);
    p.unit = p.unit - p.origin;
    return p;
}

// The whole pixels of one axis that the span touches, within the viewport's.
void enclosed(float a, float b, int start, int length, int* first, int* count) {
    const float low =
        std::clamp(std::min(a, b), static_cast<float>(start), static_cast<float>(start + length));
    const float high =
        std::clamp(std::max(a, b), static_cast<float>(start), static_cast<float>(start + length));
    *first = static_cast<int>(std::floor(low));
    *count = static_cast<int>(std::ceil(high)) - *first;
}

PixelBox pixels_of(const rectf& area, const Placement& at, const GLint viewport[4]) {
    const auto x = [&](float local) { return at.origin.x + local * at.unit.x; };
    const auto y = [&](float local) { return at.origin.y + local * at.unit.y; };
    PixelBox box{};
    enclosed(x(area.x), x(area.x + area.w), viewport[0], viewport[2], &box.x, &box.w);
    enclosed(y(area.y), y(area.y + area.h), viewport[1], viewport[3], &box.y, &box.h);
    return box;
}

}  // namespace

KeptDrawing::~KeptDrawing() {
    if (!texture_ || !SDL_WasInit(SDL_INIT_VIDEO)) return;
    glDeleteTextures(1, &texture_);
    glDeleteFramebuffersEXT(1, &framebuffer_);
}

bool KeptDrawing::prepare_texture(int width, int height) {
    if (!texture_) {
        glGenTextures(1, &texture_);
        glGenFramebuffersEXT(1, &framebuffer_);
    }
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, framebuffer_);
    if (width != width_ || height != height_) {
        glBindTexture(GL_TEXTURE_RECTANGLE, texture_);
        glTexParameteri(GL_TEXTURE_RECTANGLE, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_RECTANGLE, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_RECTANGLE, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
        glBindTexture(GL_TEXTURE_RECTANGLE, 0);
        glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT,
                                  GL_TEXTURE_RECTANGLE, texture_, 0);
        width_ = width;
        height_ = height;
    }
    return glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT) == GL_FRAMEBUFFER_COMPLETE_EXT;
}

bool KeptDrawing::make(const rectf& area, const std::function<void()>& draw) {
    if (!GLEW_EXT_framebuffer_object || !GLEW_ARB_texture_rectangle || !glBlendFuncSeparate)
        return false;
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    const Placement at = placement();
    const rectf with_edges(area.x - line_room, area.y - line_room, area.w + 2.0F * line_room,
                           area.h + 2.0F * line_room);
    const PixelBox box = pixels_of(with_edges, at, viewport);
    if (box.w < 1 || box.h < 1 || at.unit.x == 0.0F || at.unit.y == 0.0F) return false;
    GLint window = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &window);
    const bool complete = prepare_texture(box.w, box.h);
    if (complete) {
        // The matrices stay as they are; only the corner of the window moves.
        glViewport(viewport[0] - box.x, viewport[1] - box.y, viewport[2], viewport[3]);
        glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
        glClear(GL_COLOR_BUFFER_BIT);
        draw();
        glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    }
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, static_cast<GLuint>(window));
    place_ = {(static_cast<float>(box.x) - at.origin.x) / at.unit.x,
              (static_cast<float>(box.y) - at.origin.y) / at.unit.y,
              static_cast<float>(box.w) / at.unit.x, static_cast<float>(box.h) / at.unit.y};
    return complete;
}

void KeptDrawing::draw() const {
    const auto w = static_cast<float>(width_);
    const auto h = static_cast<float>(height_);
    glEnable(GL_TEXTURE_RECTANGLE);
    glBindTexture(GL_TEXTURE_RECTANGLE, texture_);
    glEnable(GL_BLEND);
    // The colours were multiplied by what they cover when they were drawn.
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
    glBegin(GL_QUADS);
    glTexCoord2f(0.0F, 0.0F);
    glVertex2f(place_.x, place_.y);
    glTexCoord2f(w, 0.0F);
    glVertex2f(place_.x + place_.w, place_.y);
    glTexCoord2f(w, h);
    glVertex2f(place_.x + place_.w, place_.y + place_.h);
    glTexCoord2f(0.0F, h);
    glVertex2f(place_.x, place_.y + place_.h);
    glEnd();
    glBindTexture(GL_TEXTURE_RECTANGLE, 0);
    glDisable(GL_TEXTURE_RECTANGLE);
    glDisable(GL_BLEND);
    blend_over();
}
