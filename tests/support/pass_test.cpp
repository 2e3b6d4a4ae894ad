// SPDX-License-Identifier: MIT
#include "support/pass_test.h"

#include <algorithm>

namespace {

// Room for the rounding of the comparison itself.
constexpr float slack = 1.001F;

}  // namespace

const Content& random_content() {
    static const Content content = [](int w, int h, unsigned seed) {
        return random_image(w, h, seed);
    };
    return content;
}

const Content& extreme_content() {
    static const Content content = extreme_image;
    return content;
}

const Content& film_like_content() {
    static const Content content = [](int w, int h, unsigned seed) {
        return film_like_image(w, h, static_cast<float>(seed) * 1.7F, static_cast<float>(seed));
    };
    return content;
}

Held PassTest::hold(const Image& image, int format) {
    Held held{upload(image, format), {}};
    held.image = download(held.texture);
    return held;
}

object_ref<gl_texture_resource> PassTest::target(int width, int height, int format) {
    return object_ref<gl_texture_resource>(new gl_texture_resource(height, width, format, nullptr));
}

void PassTest::everywhere(
    int lowest_factor,
    const std::function<void(Size, int factor, const Content&, unsigned seed)>& test) {
    unsigned seed = 1;
    for (const Size size : awkward_sizes) {
        for (int f = lowest_factor; f <= 4; ++f) {
            for (const Content* content :
                 {&random_content(), &extreme_content(), &film_like_content()}) {
                SCOPED_TRACE(::testing::Message() << size.width << "x" << size.height << " factor "
                                                  << f << " seed " << seed);
                test(size, f, *content, seed);
                seed += 10;
            }
        }
    }
}

void PassTest::expect_8_bits(const char* program, gl_texture_resource* found, const Image& twin,
                             float limit) {
    const Difference d = difference(download(found), as_8_bits(twin));
    note(program, d.largest / step);
    EXPECT_LE(d.largest, limit * slack) << program << ": " << d.largest / step << " / 255";
}

void PassTest::expect_16_bits(const char* program, gl_texture_resource* found, const Image& twin,
                              float limit) {
    const Difference d = relative_difference(download(found), twin);
    note(program, d.largest);
    EXPECT_LE(d.largest, limit) << program;
}

void PassTest::note(const std::string& program, float difference) {
    float& largest = largest_[program];
    largest = std::max(largest, difference);
    RecordProperty(program, std::to_string(largest));
}
