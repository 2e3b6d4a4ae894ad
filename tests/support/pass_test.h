// SPDX-License-Identifier: MIT
#pragma once

#include "support/gl_fixture.h"
#include "support/pictures.h"

#include <functional>
#include <map>
#include <string>

/// A texture and what it really holds, after its format rounded it.
struct Held {
    object_ref<gl_texture_resource> texture;
    Image image;
};

/// Makes a picture of a size from a seed.
using Content = std::function<Image(int width, int height, unsigned seed)>;

/// Random, extreme (only 0 and 1) and film-like content, and parts of a real film's picture.
const Content& random_content();
const Content& extreme_content();
const Content& film_like_content();
const Content& real_content();

/// Half of the step of 8-bit textures decides how values round; two roundings of one value may
/// differ by a whole one.
inline constexpr float step = 1.0F / 255.0F;

/// Compares passes with their twins. The largest difference found for each program is recorded as a
/// property of the test.
class PassTest : public GlTest {
  protected:
    Held hold(const Image& image, int format);
    object_ref<gl_texture_resource> target(int width, int height, int format);

    /// Calls `test` with every awkward size, every factor from `lowest_factor` to 4, random,
    /// extreme, film-like and real content, and seeds that differ by 10.
    void everywhere(
        int lowest_factor,
        const std::function<void(Size, int factor, const Content&, unsigned seed)>& test);

    /// An 8-bit target may differ by `limit` from the twin's rounded result.
    void expect_8_bits(const char* program, gl_texture_resource* found, const Image& twin,
                       float limit = step);
    /// A 16-bit float target may differ by `limit` of the twin's value.
    void expect_16_bits(const char* program, gl_texture_resource* found, const Image& twin,
                        float limit = 0.002F);

  private:
    void note(const std::string& program, float difference);

    std::map<std::string, float> largest_;
};
