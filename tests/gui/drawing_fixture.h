// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_bindings.h"
#include "gpu/gl_context.h"
#include "gui/graphics.h"

#include "support/gl_fixture.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <utility>

/// A black window in pixel coordinates, origin at the top left; opacity 1, pen and brush white.
class DrawingTest : public GlTest {
  protected:
    using Pixels = std::set<std::pair<int, int>>;

    void SetUp() override {
        GlTest::SetUp();
        bind_window(window_width, window_height);
        reshape_gl(window_width, window_height);
        glDisable(GL_SCISSOR_TEST);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        clipping_depth = 0;
        std::fill(std::begin(clipping_stack), std::end(clipping_stack), rectf());
        setopacity(1);
        setpencolor(0xFFFFFFFF);
        setbrushcolor(0xFFFFFFFF);
    }

    void TearDown() override {
        glDisable(GL_SCISSOR_TEST);
        glDisable(GL_BLEND);
        glLoadIdentity();
        clipping_depth = 0;
        setopacity(0);
        pen_color = brush_color = {};
        GlTest::TearDown();
    }

    /// Pixels that are not black.
    Pixels lit() { return lit(window()); }
    static Pixels lit(const Image& image) {
        Pixels found;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const Rgba& texel = image.at(x, y);
                if (texel.r > 0 || texel.g > 0 || texel.b > 0) found.emplace(x, y);
            }
        }
        return found;
    }
    void clear() { glClear(GL_COLOR_BUFFER_BIT); }

    /// All pixels of a block of `w` x `h`.
    static Pixels block(int x, int y, int w, int h) {
        Pixels all;
        for (int j = y; j < y + h; ++j) {
            for (int i = x; i < x + w; ++i)
                all.emplace(i, j);
        }
        return all;
    }
    /// Its edges alone.
    static Pixels frame(int x, int y, int w, int h) {
        Pixels all = block(x, y, w, h);
        for (const auto& inner : block(x + 1, y + 1, w - 2, h - 2))
            all.erase(inner);
        return all;
    }

    /// What only one of two has: an empty set where they are equal, and short to read where not.
    static Pixels unlike(const Pixels& a, const Pixels& b) {
        Pixels result;
        std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(),
                                      std::inserter(result, result.end()));
        return result;
    }

    /// Lines are drawn between middles of pixels, where every driver agrees.
    static void to_middles() { glTranslatef(0.5F, 0.5F, 0); }

    static std::array<float, 16> matrix() {
        std::array<float, 16> m{};
        glGetFloatv(GL_MODELVIEW_MATRIX, m.data());
        return m;
    }
    static std::array<float, 4> current_color() {
        std::array<float, 4> c{};
        glGetFloatv(GL_CURRENT_COLOR, c.data());
        return c;
    }
    static bool blending() { return glIsEnabled(GL_BLEND) == GL_TRUE; }
};
