// SPDX-License-Identifier: MIT
#include "support/pass_test.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace {

// Room for the rounding of the comparison itself.
constexpr float slack = 1.001F;

// A portable pixmap of 8 bits, as the one that is kept.
Image read_pixmap(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string kind;
    int width = 0;
    int height = 0;
    int largest = 0;
    file >> kind >> width >> height >> largest;
    file.get();
    if (!file || kind != "P6" || largest != 255) throw std::runtime_error("cannot read " + path);
    return make_image(width, height, [&](int, int) {
        const auto next = [&] { return static_cast<float>(file.get()) / 255.0F; };
        const float r = next();
        const float g = next();
        return Rgba{r, g, next(), 1.0F};
    });
}

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

const Content& real_content() {
    static const Image picture = read_pixmap(TEST_DATA "/dog-64x48.ppm");
    // A part of it, another one for every seed; it starts again where it ends.
    static const Content content = [](int w, int h, unsigned seed) {
        const int left = static_cast<int>(seed * 7 % 64);
        const int top = static_cast<int>(seed * 5 % 48);
        return make_image(w, h, [&](int x, int y) {
            return picture.at((x + left) % picture.width(), (y + top) % picture.height());
        });
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
                 {&random_content(), &extreme_content(), &film_like_content(), &real_content()}) {
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
