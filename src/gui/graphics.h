// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"

// Immediate-mode drawing in the coordinates of the current GL matrices. Angles are in degrees.
// Everything here touches the GL context and plain global state: [main] only.
//
// Outlines and lines use the pen, fills use the brush; each primitive applies its colour before it
// draws. A packed colour is 0xAARRGGBB.

/// Nominally 0 to 1 each.
struct gl_color {
    float r = 0.0F;
    float g = 0.0F;
    float b = 0.0F;
    float a = 0.0F;
};

/// An integer rectangle by its origin and extent.
struct rect {
    int x = 0;
    int y = 0;
    int w = 0;
    int h = 0;
};

inline constexpr int clipping_levels = 128;

extern gl_color pen_color;
extern gl_color brush_color;

/// Multiplies the alpha of every colour on its way to GL. 0 until someone sets it: code that draws
/// outside a form must do so first.
extern float opacity;

/// Scissor boxes in window coordinates, one per nesting level.
extern rectf clipping_stack[clipping_levels];
extern int clipping_depth;

/// Makes `c` the current colour, its alpha times `opacity`; blends only where that is below 1.
void glSetColor(gl_color c);

/// Each sets the pen or the brush and makes it the current colour at once, so that raw vertices
/// after it have that colour. Components are 0 to 255, not clamped.
void setpencolor(unsigned color);
void setpencolorrgb(int r, int g, int b);
void setpencolorrgba(int r, int g, int b, int a);
void setbrushcolor(unsigned color);
void setbrushcolorrgb(int r, int g, int b);
void setbrushcolorrgba(int r, int g, int b, int a);

/// Takes effect with the next colour.
void setopacity(float o);

/// Packed colours; components are clamped to 0..255. Without alpha: opaque.
unsigned makecolorrgb(int r, int g, int b);
unsigned makecolorrgba(int r, int g, int b, int a);
/// `color` with another alpha.
unsigned makecoloralpha(unsigned color, int a);

void makerect(rect* out, int x, int y, int w, int h);
void makerectf(rectf* out, float x, float y, float w, float h);
/// Moves every edge outwards by `dx` and `dy`.
void inflate_rect(rect* r, int dx, int dy);
void inflate_rectf(rectf* r, float dx, float dy);
void offset_rectf(rectf* r, float dx, float dy);
/// 1 where `p` lies inside, else 0; the far edges are outside.
int rectf_contains(const rectf* r, const pointf* p);

// Fills carry texture coordinates in pixels from their own corner, so that a bound rectangle
// texture maps one texel per unit.

void rectangle(int x, int y, int w, int h);
void fillrectangle(int x, int y, int w, int h);
void rectanglef(float x, float y, float w, float h);
void fillrectanglef(float x, float y, float w, float h);
void rectanglerc(const rectf* r);
void fillrectanglerc(const rectf* r);
void drawline(int x0, int y0, int x1, int y1);
void drawlinef(float x0, float y0, float x1, float y1);
/// A closed outline through `n` points; none where `n` is below 1.
void drawpolyf(const pointf* pts, int n);
/// A convex polygon.
void fillpolyf(const pointf* pts, int n);

/// The origin of `out` is the minimum corner of the points. Its extent is always 0 and means
/// nothing. Nothing is written where `n` is below 1.
void getpolygonbounds(rectf* out, const pointf* pts, int n);

// Shapes that have a name and no drawing.

void ellipse(int x, int y, int w, int h);
void fillellipse(int x, int y, int w, int h);
void ellipsef(float x, float y, float w, float h);
void fillellipsef(float x, float y, float w, float h);
void ellipserc(const rectf* r);
void fillellipserc(const rectf* r);
void drawarcf(float x, float y, float w, float h, float start, float sweep);
void drawarcrc(const rectf* r, float start, float sweep);
void drawpie(const rectf* r, float start, float sweep);
void fillpie(const rectf* r, float start, float sweep);
void drawcurvef(const pointf* pts, int n);
void drawpath();
void fillpath();

// Transforms multiply the current matrix on the right: the one issued last applies first.

void push_transform();
void pop_transform();
void set_identity_transform();
void rotate_transform(float degrees);
void scale_transform(float sx, float sy);
void translate_transform(float dx, float dy);

// Transforms that have a name and no effect.

void set_transform(float a, float b, float c, float d, float e, float f);
void rotate_pretransform(float degrees);
void scale_pretransform(float sx, float sy);
void translate_pretransform(float dx, float dy);

/// Replaces (x, y) by where it appears in the window, origin at the bottom left, with the matrices
/// and viewport of this moment.
void glConvertToWindowCoords(float* x, float* y);

/// Points of a rounded outline.
inline constexpr int rounded_points = 20;

/// Writes the convex outline of `r` with rounded corners: four arcs of five points, from the corner
/// (x + w, y + h) on. `radius` is in units, or, where `relative`, in shares of the smaller extent.
/// `*count` is the room in `out`; it becomes 20, or 0 with nothing written where the room is less.
void roundedrect(const rectf* r, const pointf* radius, pointf* out, int* count, bool relative);
/// The same with one radius for each corner: (x, y), (x + w, y), (x + w, y + h), (x, y + h).
void roundedrect2(const rectf* r, const pointf radii[4], pointf* out, int* count, bool relative);

/// Enters a nesting level; at the deepest it stays there.
void push_clippingrectangle();
/// Clips to a rectangle of the current coordinates. It replaces the box of the level above,
/// whatever the name: nothing is intersected or united. Negative extents clip everything away.
void set_cliprectanglef(float x, float y, float w, float h);
void add_cliprectanglef(float x, float y, float w, float h);
void or_cliprectanglef(float x, float y, float w, float h);
/// Leaves a nesting level; leaving the outermost ends clipping.
void pop_clippingrectangle();
