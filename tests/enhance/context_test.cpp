// SPDX-License-Identifier: MIT
#include "enhance/headless_context.h"

#include "gpu/gl_texture.h"
#include "gpu/pass.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
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

// The environment has no display while this exists.
class WithoutDisplay {
  public:
    WithoutDisplay() {
        for (auto& [name, value] : kept_) {
            if (const char* text = std::getenv(name)) value = text;
            unsetenv(name);
        }
    }
    ~WithoutDisplay() {
        for (const auto& [name, value] : kept_)
            if (value) setenv(name, value->c_str(), 1);
    }
    WithoutDisplay(const WithoutDisplay&) = delete;
    WithoutDisplay& operator=(const WithoutDisplay&) = delete;

  private:
    std::map<const char*, std::optional<std::string>> kept_{{"DISPLAY", {}},
                                                            {"WAYLAND_DISPLAY", {}}};
};

TEST(HeadlessContextTest, NeedsNoDisplay) {
    const WithoutDisplay nowhere;
    make_headless_context();
    expect_that_passes_draw();
}

// Two kinds of contexts do not get on in one process: this one has its own.
TEST(HeadlessContextDeathTest, HiddenWindowDrawsToo) {
    ASSERT_NE(std::getenv("DISPLAY"), nullptr) << "tools/with-display gives it one";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto draws = [] {
        const auto backend = make_hidden_window_context();
        return backend && glewInit() == static_cast<GLenum>(GLEW_OK) && glGetString(GL_VERSION);
    };
    EXPECT_EXIT(std::_Exit(draws() ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

TEST(HeadlessContextTest, HiddenWindowWithoutADisplayIsNothing) {
    const WithoutDisplay nowhere;
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
