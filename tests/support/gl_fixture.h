// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

/// One texel or colour.
struct Rgba {
    float r = 0, g = 0, b = 0, a = 0;
};

/// A picture in memory, rows in the order of the texture's t coordinate.
class Image {
  public:
    Image() = default;
    Image(int width, int height) : width_(width), height_(height), texels_(size()) {}

    int width() const { return width_; }
    int height() const { return height_; }
    Rgba& at(int x, int y) { return texels_[index(x, y)]; }
    const Rgba& at(int x, int y) const { return texels_[index(x, y)]; }

    /// The texel at or nearest to (x, y): sampling with clamped edges.
    const Rgba& clamped(int x, int y) const;
    /// Sampled in texel coordinates as a rectangle texture is: nearest, or linear between centres.
    const Rgba& nearest(float s, float t) const;
    Rgba linear(float s, float t) const;

    std::vector<Rgba>& texels() { return texels_; }
    const std::vector<Rgba>& texels() const { return texels_; }

  private:
    std::size_t size() const {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    }
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x);
    }

    int width_ = 0;
    int height_ = 0;
    std::vector<Rgba> texels_;
};

/// An image made by calling `texel(x, y)` everywhere.
Image make_image(int width, int height, const std::function<Rgba(int, int)>& texel);

/// Noise between `low` and `high`, the same for the same seed.
Image random_image(int width, int height, unsigned seed, float low = 0.0F, float high = 1.0F);

/// What an 8-bit texture keeps of an image: clamped and rounded to steps of 1/255.
Image as_8_bits(const Image& image);

/// The largest difference of two images of one size in any of the first `channels` channels.
float largest_difference(const Image& a, const Image& b, int channels = 4);

/// A real window with a real context, made once per test program. Needs a display.
class GlTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite();
    void SetUp() override;
    void TearDown() override;

    /// Asserts how many GL errors the test has caused so far; every test ends with 0.
    static void expect_gl_errors(int count);
    /// Forgets the errors caused so far; there has to be one at least.
    static void ignore_gl_errors();

    /// A texture with the image in it. `format` 0 is the default float format.
    object_ref<gl_texture_resource> upload(const Image& image, int format = 0);
    /// What a texture holds, all four channels.
    Image download(gl_texture_resource* texture);
    /// What the window's back buffer holds, top row first.
    Image window();

    static constexpr int window_width = 320;
    static constexpr int window_height = 240;
};
