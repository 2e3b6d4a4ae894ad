// SPDX-License-Identifier: MIT
#include "support/drawing_recorder.h"

#include "gui/gl_font.h"

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

ListCounts list_counts;

namespace {

DrawingRecorder* recorder = nullptr;

std::vector<pointf> corners(const rectf& r) {
    return {{r.x, r.y}, {r.x + r.w, r.y}, {r.x + r.w, r.y + r.h}, {r.x, r.y + r.h}};
}

gl_color with_opacity(gl_color color) {
    color.a *= opacity;
    return color;
}

// Whether the real function is to be called.
bool passes_on() {
    return !recorder || recorder->draw_too;
}

void note(Drawn::Kind kind, std::vector<pointf> points) {
    if (recorder) recorder->note(kind, std::move(points));
}

}  // namespace

rectf Drawn::box() const {
    pointf low = points.at(0);
    pointf high = low;
    for (const pointf p : points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    return {low.x, low.y, high.x - low.x, high.y - low.y};
}

rectf DrawingRecorder::Transform::operator()(rectf r) const {
    const pointf corner = (*this)(pointf(r));
    return {corner.x, corner.y, r.w * scale.x, r.h * scale.y};
}

DrawingRecorder::DrawingRecorder(bool draw_too_) : draw_too(draw_too_) {
    recorder = this;
}

DrawingRecorder::~DrawingRecorder() {
    recorder = nullptr;
}

std::vector<Drawn> DrawingRecorder::of_kind(Drawn::Kind kind) const {
    std::vector<Drawn> found;
    std::copy_if(drawn.begin(), drawn.end(), std::back_inserter(found),
                 [&](const Drawn& d) { return d.kind == kind; });
    return found;
}

Drawn DrawingRecorder::text(const std::string& string) const {
    std::vector<Drawn> found;
    std::copy_if(drawn.begin(), drawn.end(), std::back_inserter(found),
                 [&](const Drawn& d) { return d.kind == Drawn::text && d.string == string; });
    EXPECT_EQ(found.size(), 1U) << "text " << string;
    return found.empty() ? Drawn{Drawn::text, {pointf(-1, -1)}, {}, {}, 0, false, {}} : found[0];
}

void DrawingRecorder::note(Drawn::Kind kind, std::vector<pointf> points) {
    for (pointf& p : points)
        p = transform(p);
    const gl_color color = kind == Drawn::fill ? brush_color : pen_color;
    Drawn d{kind, std::move(points), with_opacity(color), {}, 0.0F, !clips.empty(), {}};
    if (d.clipped) d.clip = clips.back();
    drawn.push_back(std::move(d));
}

// The linker gives calls of X to __wrap_X, and X itself is __real_X. The names are those that the
// compiler gives these functions.

#define CAUGHT(kind, points, name, types, names) \
    extern "C" void __real_##name types;         \
    extern "C" void __wrap_##name types;         \
    extern "C" void __wrap_##name types {        \
        note(kind, points);                      \
        if (passes_on()) __real_##name names;    \
    }

#define LIST(...) __VA_ARGS__

CAUGHT(Drawn::fill, corners({x, y, w, h}), _Z14fillrectanglefffff,
       (float x, float y, float w, float h), (x, y, w, h))
CAUGHT(Drawn::fill, corners(*r), _Z15fillrectanglercPK5rectf, (const rectf* r), (r))
CAUGHT(Drawn::outline, corners({x, y, w, h}), _Z10rectanglefffff,
       (float x, float y, float w, float h), (x, y, w, h))
CAUGHT(Drawn::outline, corners(*r), _Z11rectanglercPK5rectf, (const rectf* r), (r))
CAUGHT(Drawn::line, LIST({{x0, y0}, {x1, y1}}), _Z9drawlinefffff,
       (float x0, float y0, float x1, float y1), (x0, y0, x1, y1))
CAUGHT(Drawn::outline, std::vector<pointf>(p, p + n), _Z9drawpolyfPK6pointfi,
       (const pointf* p, int n), (p, n))
CAUGHT(Drawn::fill, std::vector<pointf>(p, p + n), _Z9fillpolyfPK6pointfi, (const pointf* p, int n),
       (p, n))

#define CHANGES(change, name, types, names)   \
    extern "C" void __real_##name types;      \
    extern "C" void __wrap_##name types;      \
    extern "C" void __wrap_##name types {     \
        if (recorder) {                       \
            change;                           \
        }                                     \
        if (passes_on()) __real_##name names; \
    }

CHANGES(recorder->stack.push_back(recorder->transform), _Z14push_transformv, (), ())
CHANGES(recorder->transform = recorder->stack.back();
        recorder->stack.pop_back(), _Z13pop_transformv, (), ())
CHANGES(recorder->transform.origin = recorder->transform(pointf(x, y)), _Z19translate_transformff,
        (float x, float y), (x, y))
CHANGES(recorder->transform.scale = pointf(recorder->transform.scale.x * x,
                                           recorder->transform.scale.y* y),
        _Z15scale_transformff, (float x, float y), (x, y))
CHANGES(recorder->clips.emplace_back(), _Z22push_clippingrectanglev, (), ())
CHANGES(recorder->clips.back() = recorder->transform(rectf(x, y, w, h)), _Z18add_cliprectanglefffff,
        (float x, float y, float w, float h), (x, y, w, h))
CHANGES(recorder->clips.pop_back(), _Z21pop_clippingrectanglev, (), ())

#define DRAW_STRING                                                                  \
    "_ZNK6glfont6GLFont10DrawStringERKNSt7__cxx1112basic_stringIcSt11char_traitsIcE" \
    "SaIcEEEfff"

void real_draw_string(const glfont::GLFont* font, const std::string& text, float scale, float x,
                      float y) __asm__("__real_" DRAW_STRING);
void caught_draw_string(const glfont::GLFont* font, const std::string& text, float scale, float x,
                        float y) __asm__("__wrap_" DRAW_STRING);
void caught_draw_string(const glfont::GLFont* font, const std::string& text, float scale, float x,
                        float y) {
    if (recorder) {
        recorder->note(Drawn::text, {{x, y}});
        recorder->drawn.back().string = text;
        recorder->drawn.back().scale = scale;
    }
    if (passes_on()) real_draw_string(font, text, scale, x, y);
}

// Without a context the names of lists are made up.

extern "C" GLuint __real_glGenLists(GLsizei count);
extern "C" GLuint __wrap_glGenLists(GLsizei count);
extern "C" GLuint __wrap_glGenLists(GLsizei count) {
    ++list_counts.named;
    return passes_on() ? __real_glGenLists(count) : static_cast<GLuint>(1000 + list_counts.named);
}
CHANGES((void)0, glEndList, (), ())
extern "C" void __real_glNewList(GLuint list, GLenum mode);
extern "C" void __wrap_glNewList(GLuint list, GLenum mode);
extern "C" void __wrap_glNewList(GLuint list, GLenum mode) {
    ++list_counts.recorded;
    list_counts.mode = mode;
    if (passes_on()) __real_glNewList(list, mode);
}
extern "C" void __real_glCallList(GLuint list);
extern "C" void __wrap_glCallList(GLuint list);
extern "C" void __wrap_glCallList(GLuint list) {
    ++list_counts.replayed;
    if (passes_on()) __real_glCallList(list);
}
extern "C" void __real_glDeleteLists(GLuint list, GLsizei count);
extern "C" void __wrap_glDeleteLists(GLuint list, GLsizei count);
extern "C" void __wrap_glDeleteLists(GLuint list, GLsizei count) {
    ++list_counts.deleted;
    if (passes_on()) __real_glDeleteLists(list, count);
}
