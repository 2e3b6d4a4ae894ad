// SPDX-License-Identifier: MIT
#include "support/gl_fixture.h"

#include "gpu/gl_bindings.h"
#include "gpu/gl_context.h"
#include "gpu/texture_cache.h"
#include "platform/window.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

const Rgba& Image::clamped(int x, int y) const {
    return at(std::clamp(x, 0, width_ - 1), std::clamp(y, 0, height_ - 1));
}

const Rgba& Image::nearest(float s, float t) const {
    return clamped(static_cast<int>(std::floor(s)), static_cast<int>(std::floor(t)));
}

Rgba Image::linear(float s, float t) const {
    const float x = s - 0.5F;
    const float y = t - 0.5F;
    const int x0 = static_cast<int>(std::floor(x));
    const int y0 = static_cast<int>(std::floor(y));
    const float fx = x - std::floor(x);
    const float fy = y - std::floor(y);
    const auto mix = [](const Rgba& p, const Rgba& q, float f) {
        return Rgba{p.r + f * (q.r - p.r), p.g + f * (q.g - p.g), p.b + f * (q.b - p.b),
                    p.a + f * (q.a - p.a)};
    };
    return mix(mix(clamped(x0, y0), clamped(x0 + 1, y0), fx),
               mix(clamped(x0, y0 + 1), clamped(x0 + 1, y0 + 1), fx), fy);
}

Image make_image(int width, int height, const std::function<Rgba(int, int)>& texel) {
    Image image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.at(x, y) = texel(x, y);
    }
    return image;
}

Image random_image(int width, int height, unsigned seed, float low, float high) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> value(low, high);
    return make_image(width, height, [&](int, int) {
        const float r = value(generator);
        const float g = value(generator);
        const float b = value(generator);
        return Rgba{r, g, b, value(generator)};
    });
}

Image as_8_bits(const Image& image) {
    Image result = image;
    const auto step = [](float v) {
        return std::round(std::clamp(v, 0.0F, 1.0F) * 255.0F) / 255.0F;
    };
    for (Rgba& texel : result.texels()) {
        texel = {step(texel.r), step(texel.g), step(texel.b), step(texel.a)};
    }
    return result;
}

float largest_difference(const Image& a, const Image& b, int channels) {
    if (a.width() != b.width() || a.height() != b.height()) return INFINITY;
    float largest = 0.0F;
    for (std::size_t i = 0; i < a.texels().size(); ++i) {
        const Rgba& p = a.texels()[i];
        const Rgba& q = b.texels()[i];
        const float differences[] = {p.r - q.r, p.g - q.g, p.b - q.b, p.a - q.a};
        for (int c = 0; c < channels; ++c) {
            // Not-a-number differs from everything.
            if (std::isnan(differences[c])) return INFINITY;
            largest = std::max(largest, std::abs(differences[c]));
        }
    }
    return largest;
}

namespace {

int gl_errors = 0;

void GLAPIENTRY note_message(GLenum /*source*/, GLenum type, GLuint /*id*/, GLenum /*severity*/,
                             GLsizei /*length*/, const GLchar* message, const void* /*user*/) {
    if (type != GL_DEBUG_TYPE_ERROR) return;
    ++gl_errors;
    std::fprintf(stderr, "GL: %s\n", message);
}

// The driver tells of every error, also of those whose flag somebody reads and drops.
void watch_errors() {
    if (!GLEW_KHR_debug) return;
    glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    glDebugMessageCallback(note_message, nullptr);
}

}  // namespace

void GlTest::expect_gl_errors(int count) {
    EXPECT_EQ(gl_errors, count);
    gl_errors = 0;
    while (glGetError() != GL_NO_ERROR) {}
}

void GlTest::SetUpTestSuite() {
    static bool ready = false;
    if (ready) return;
    static char scaling_off[] = "SDL12COMPAT_OPENGL_SCALING=0";
    putenv(scaling_off);
    ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO | SDL_INIT_TIMER | SDL_INIT_NOPARACHUTE), 0)
        << SDL_GetError() << "; these tests need a display, as tools/with-display gives one";
    ASSERT_TRUE(set_video_mode(window_width, window_height)) << SDL_GetError();
    ASSERT_TRUE(load_gl());
    init_gl_state();
    reshape_gl(window_width, window_height);
    watch_errors();
    std::atexit(SDL_Quit);
    ready = true;
}

void GlTest::SetUp() {
    ASSERT_NE(screen, nullptr) << "no window";
    while (glGetError() != GL_NO_ERROR) {}
}

void GlTest::TearDown() {
    expect_gl_errors(0);
    for (int slot = 0; slot < binding_slots; ++slot) {
        EXPECT_EQ(textures[slot], nullptr) << "unit " << slot << " is still bound";
    }
    bind_window(window_width, window_height);
    clear_texture_cache();
}

void GlTest::ignore_gl_errors() {
    EXPECT_GE(gl_errors, 1);
    gl_errors = 0;
    while (glGetError() != GL_NO_ERROR) {}
}

object_ref<gl_texture_resource> GlTest::upload(const Image& image, int format) {
    object_ref<gl_texture_resource> texture(
        new gl_texture_resource(image.height(), image.width(), format, nullptr));
    glBindTexture(texture->target(), texture->name());
    glTexSubImage2D(texture->target(), 0, 0, 0, image.width(), image.height(), GL_RGBA, GL_FLOAT,
                    image.texels().data());
    glBindTexture(texture->target(), 0);
    return texture;
}

Image GlTest::download(gl_texture_resource* texture) {
    Image image(texture->width(), texture->height());
    glBindTexture(texture->target(), texture->name());
    glGetTexImage(texture->target(), 0, GL_RGBA, GL_FLOAT, image.texels().data());
    glBindTexture(texture->target(), 0);
    return image;
}

Image GlTest::window() {
    bind_window(screen->w, screen->h);
    Image image(screen->w, screen->h);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, screen->w, screen->h, GL_RGBA, GL_FLOAT, image.texels().data());
    // OpenGL has its first row at the bottom.
    return make_image(screen->w, screen->h,
                      [&](int x, int y) { return image.at(x, screen->h - 1 - y); });
}
