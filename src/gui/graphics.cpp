// SPDX-License-Identifier: MIT
#include "gui/graphics.h"

#include <GL/glew.h>

#include <algorithm>

gl_color pen_color;
gl_color brush_color;
float opacity = 0.0F;

namespace {

float fraction(unsigned byte) {
    return static_cast<float>(byte / 255.0);
}

gl_color unpacked(unsigned color) {
    return {fraction(color >> 16 & 255U), fraction(color >> 8 & 255U), fraction(color & 255U),
            fraction(color >> 24)};
}

gl_color from_bytes(int r, int g, int b, int a) {
    const auto part = [](int value) { return static_cast<float>(value) / 255.0F; };
    return {part(r), part(g), part(b), part(a)};
}

unsigned clamped(int value) {
    return static_cast<unsigned>(std::clamp(value, 0, 255));
}

void outline(float x, float y, float w, float h) {
    glBegin(GL_LINE_LOOP);
    glVertex2f(x, y);
    glVertex2f(x + w, y);
    glVertex2f(x + w, y + h);
    glVertex2f(x, y + h);
    glEnd();
}

void fill(float x, float y, float w, float h) {
    glBegin(GL_QUADS);
    glTexCoord2f(0.0F, 0.0F);
    glVertex2f(x, y);
    glTexCoord2f(w, 0.0F);
    glVertex2f(x + w, y);
    glTexCoord2f(w, h);
    glVertex2f(x + w, y + h);
    glTexCoord2f(0.0F, h);
    glVertex2f(x, y + h);
    glEnd();
}

void segment(float x0, float y0, float x1, float y1) {
    glBegin(GL_LINES);
    glVertex2f(x0, y0);
    glVertex2f(x1, y1);
    glEnd();
}

}  // namespace

void glSetColor(gl_color c) {
    const float alpha = c.a * opacity;
    glColor4f(c.r, c.g, c.b, alpha);
    if (alpha >= 1.0F) {
        glDisable(GL_BLEND);
    } else {
        glEnable(GL_BLEND);
    }
}

void setpencolor(unsigned color) {
    pen_color = unpacked(color);
    glSetColor(pen_color);
}

void setpencolorrgb(int r, int g, int b) {
    setpencolorrgba(r, g, b, 255);
}

void setpencolorrgba(int r, int g, int b, int a) {
    pen_color = from_bytes(r, g, b, a);
    glSetColor(pen_color);
}

void setbrushcolor(unsigned color) {
    brush_color = unpacked(color);
    glSetColor(brush_color);
}

void setbrushcolorrgb(int r, int g, int b) {
    setbrushcolorrgba(r, g, b, 255);
}

void setbrushcolorrgba(int r, int g, int b, int a) {
    brush_color = from_bytes(r, g, b, a);
    glSetColor(brush_color);
}

void setopacity(float o) {
    opacity = o;
}

unsigned makecolorrgb(int r, int g, int b) {
    return makecolorrgba(r, g, b, 255);
}

unsigned makecolorrgba(int r, int g, int b, int a) {
    return clamped(a) << 24 | clamped(r) << 16 | clamped(g) << 8 | clamped(b);
}

unsigned makecoloralpha(unsigned color, int a) {
    return (color & 0xFFFFFFU) | clamped(a) << 24;
}

void makerect(rect* out, int x, int y, int w, int h) {
    *out = {x, y, w, h};
}

void makerectf(rectf* out, float x, float y, float w, float h) {
    *out = {x, y, w, h};
}

void inflate_rect(rect* r, int dx, int dy) {
    *r = {r->x - dx, r->y - dy, r->w + 2 * dx, r->h + 2 * dy};
}

void inflate_rectf(rectf* r, float dx, float dy) {
    *r = {r->x - dx, r->y - dy, r->w + (dx + dx), r->h + (dy + dy)};
}

void offset_rectf(rectf* r, float dx, float dy) {
    *r += {dx, dy};
}

int rectf_contains(const rectf* r, const pointf* p) {
    return r->contains(*p) ? 1 : 0;
}

void rectangle(int x, int y, int w, int h) {
    rectanglef(static_cast<float>(x), static_cast<float>(y), static_cast<float>(w),
               static_cast<float>(h));
}

void fillrectangle(int x, int y, int w, int h) {
    fillrectanglef(static_cast<float>(x), static_cast<float>(y), static_cast<float>(w),
                   static_cast<float>(h));
}

void rectanglef(float x, float y, float w, float h) {
    glSetColor(pen_color);
    outline(x, y, w, h);
}

void fillrectanglef(float x, float y, float w, float h) {
    glSetColor(brush_color);
    fill(x, y, w, h);
}

void rectanglerc(const rectf* r) {
    rectanglef(r->x, r->y, r->w, r->h);
}

void fillrectanglerc(const rectf* r) {
    fillrectanglef(r->x, r->y, r->w, r->h);
}

void drawline(int x0, int y0, int x1, int y1) {
    drawlinef(static_cast<float>(x0), static_cast<float>(y0), static_cast<float>(x1),
              static_cast<float>(y1));
}

void drawlinef(float x0, float y0, float x1, float y1) {
    glSetColor(pen_color);
    segment(x0, y0, x1, y1);
}

void drawpolyf(const pointf* pts, int n) {
    glSetColor(pen_color);
    glBegin(GL_LINE_LOOP);
    for (int i = 0; i < n; ++i)
        glVertex2f(pts[i].x, pts[i].y);
    glEnd();
}

void fillpolyf(const pointf* pts, int n) {
    rectf bounds;
    getpolygonbounds(&bounds, pts, n);
    glSetColor(brush_color);
    glBegin(GL_POLYGON);
    for (int i = 0; i < n; ++i) {
        glTexCoord2f(pts[i].x - bounds.x, pts[i].y - bounds.y);
        glVertex2f(pts[i].x, pts[i].y);
    }
    glEnd();
}

void getpolygonbounds(rectf* out, const pointf* pts, int n) {
    if (n < 1) return;
    pointf corner = pts[0];
    pointf far = pts[0];
    for (int i = 1; i < n; ++i) {
        corner = {std::min(corner.x, pts[i].x), std::min(corner.y, pts[i].y)};
        far = {std::min(far.x, pts[i].x), std::min(far.y, pts[i].y)};
    }
    *out = {corner.x, corner.y, far.x - corner.x, far.y - corner.y};
}

void ellipse(int /*x*/, int /*y*/, int /*w*/, int /*h*/) {}
void fillellipse(int /*x*/, int /*y*/, int /*w*/, int /*h*/) {}
void ellipsef(float /*x*/, float /*y*/, float /*w*/, float /*h*/) {}
void fillellipsef(float /*x*/, float /*y*/, float /*w*/, float /*h*/) {}

void ellipserc(const rectf* r) {
    ellipsef(r->x, r->y, r->w, r->h);
}

void fillellipserc(const rectf* r) {
    fillellipsef(r->x, r->y, r->w, r->h);
}

void drawarcf(float /*x*/, float /*y*/, float /*w*/, float /*h*/, float /*start*/,
              float /*sweep*/) {}

void drawarcrc(const rectf* r, float start, float sweep) {
    drawarcf(r->x, r->y, r->w, r->h, start, sweep);
}

void drawpie(const rectf* /*r*/, float /*start*/, float /*sweep*/) {}
void fillpie(const rectf* /*r*/, float /*start*/, float /*sweep*/) {}
void drawcurvef(const pointf* /*pts*/, int /*n*/) {}
void drawpath() {}
void fillpath() {}

void push_transform() {
    glPushMatrix();
}

void pop_transform() {
    glPopMatrix();
}

void set_identity_transform() {
    glLoadIdentity();
}

void rotate_transform(float degrees) {
    glRotatef(degrees, 0.0F, 0.0F, 1.0F);
}

void scale_transform(float sx, float sy) {
    glScalef(sx, sy, 1.0F);
}

void translate_transform(float dx, float dy) {
    glTranslatef(dx, dy, 0.0F);
}

void set_transform(float /*a*/, float /*b*/, float /*c*/, float /*d*/, float /*e*/, float /*f*/) {}
void rotate_pretransform(float /*degrees*/) {}
void scale_pretransform(float /*sx*/, float /*sy*/) {}
void translate_pretransform(float /*dx*/, float /*dy*/) {}
