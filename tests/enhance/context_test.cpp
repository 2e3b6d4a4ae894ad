// SPDX-License-Identifier: MIT
#include "enhance/headless_context.h"

#include "gpu/gl_texture.h"
#include "gpu/pass.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

const char grey_program[] = "void main() { gl_FragColor = vec4(0.25, 0.5, 0.75, 1.0); }";

void expect_that_passes_draw() {
    const object_ref<gl_texture_resource> out(new gl_texture_resource(3, 5, 0, nullptr));
    Pass(grey_program, out).run();
    float texels[5 * 3 * 4] = {};
    glBindTexture(out->target(), out->name());
    glGetTexImage(out->target(), 0, GL_RGBA, GL_FLOAT, texels);
    for (int i = 0; i < 15; ++i)
        EXPECT_EQ(texels[i * 4 + 1], 0.5F) << i;
}

// Each of these runs in a process of its own, so the environment may be changed.

TEST(HeadlessContextTest, NeedsNoDisplay) {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    make_headless_context();
    expect_that_passes_draw();
}

TEST(HeadlessContextTest, HiddenWindowDrawsToo) {
    if (!std::getenv("DISPLAY")) GTEST_SKIP() << "there is no display to hide a window on";
    const auto backend = make_hidden_window_context();
    ASSERT_NE(backend, nullptr);
    ASSERT_EQ(glewInit(), static_cast<GLenum>(GLEW_OK));
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
}

TEST(HeadlessContextTest, HiddenWindowWithoutADisplayIsNothing) {
    unsetenv("DISPLAY");
    EXPECT_EQ(make_hidden_window_context(), nullptr);
}

TEST(HeadlessContextTest, ThereIsOne) {
    make_headless_context();
    const auto current = glGetString(GL_VERSION);
    const object_ref<gl_texture_resource> texture(new gl_texture_resource(3, 5, 0, nullptr));
    make_headless_context();
    EXPECT_EQ(glGetString(GL_VERSION), current);
    EXPECT_EQ(glIsTexture(texture->name()), GL_TRUE) << "nothing was lost";
    expect_that_passes_draw();
}

}  // namespace
