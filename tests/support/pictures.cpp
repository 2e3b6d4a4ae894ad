// SPDX-License-Identifier: MIT
#include "support/pictures.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

template <class Measure>
Difference compare(const Image& a, const Image& b, int channels, const Measure& measure) {
    if (a.width() != b.width() || a.height() != b.height()) return {INFINITY, INFINITY};
    Difference result;
    double sum = 0.0;
    for (std::size_t i = 0; i < a.texels().size(); ++i) {
        const Rgba& p = a.texels()[i];
        const Rgba& q = b.texels()[i];
        const float first[] = {p.r, p.g, p.b, p.a};
        const float second[] = {q.r, q.g, q.b, q.a};
        for (int c = 0; c < channels; ++c) {
            const float d = measure(first[c], second[c]);
            if (std::isnan(d)) return {INFINITY, INFINITY};
            result.largest = std::max(result.largest, d);
            sum += static_cast<double>(d);
        }
    }
    const auto values = static_cast<double>(a.texels().size()) * channels;
    result.mean = static_cast<float>(sum / std::max(values, 1.0));
    return result;
}

}  // namespace

Difference difference(const Image& a, const Image& b, int channels) {
    return compare(a, b, channels, [](float p, float q) { return std::abs(p - q); });
}

Difference relative_difference(const Image& a, const Image& b, int channels, float smallest) {
    return compare(a, b, channels, [smallest](float p, float q) {
        return std::abs(p - q) / std::max(std::abs(q), smallest);
    });
}

Image extreme_image(int width, int height, unsigned seed) {
    std::mt19937 generator(seed);
    const auto bit = [&] { return static_cast<float>(generator() >> 31); };
    return make_image(width, height, [&](int, int) {
        const float r = bit();
        const float g = bit();
        const float b = bit();
        return Rgba{r, g, b, bit()};
    });
}

Image film_like_image(int width, int height, float shift_x, float shift_y) {
    return make_image(width, height, [&](int x, int y) {
        const float u = static_cast<float>(x) + shift_x;
        const float v = static_cast<float>(y) + shift_y;
        const float waves =
            0.5F + 0.25F * std::sin(u * 0.31F + v * 0.17F) + 0.15F * std::sin(u * 0.9F - v * 0.53F);
        const bool inside = std::fmod(std::abs(u + 2.0F * v), 23.0F) < 9.0F;
        return Rgba{waves, inside ? 0.8F * waves : 0.3F + 0.5F * waves, 1.0F - waves, 1.0F};
    });
}

Image constant_image(int width, int height, Rgba value) {
    return make_image(width, height, [&](int, int) { return value; });
}

void make_picture(VideoPicture& pic, int width, int height, int factor) {
    pic.width = width;
    pic.height = height;
    pic.block_width = pic.block_height = 8;
    pic.grid_width = 2 * ((width + 15) / 16);
    pic.grid_height = 2 * ((height + 15) / 16);
    pic.motion_vectors.allocate(pic.grid_height + 1, pic.grid_width + 1);
    pic.quantization_table.allocate(pic.grid_height, pic.grid_width);
    pic.quantization_table.fill(1);
    pic.rgb = new gl_texture_resource(height, width, GL_RGBA, nullptr);
    pic.enhanced = new gl_texture_resource(height * factor, width * factor, 0, nullptr);
    pic.motion = new gl_texture_resource(pic.grid_height, pic.grid_width, 0, nullptr);
    pic.uploaded = true;
    upload_motion(pic);
}

void randomise_vectors(VideoPicture& pic, int reach, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_int_distribution<int> component(-reach, reach);
    for (int r = 0; r < pic.motion_vectors.rows(); ++r) {
        for (int c = 0; c < pic.motion_vectors.columns(); ++c) {
            const int x = component(generator);
            pic.motion_vectors[r][c] = {x, component(generator)};
        }
    }
    upload_motion(pic);
}

void randomise_quantisers(VideoPicture& pic, int lowest, int highest, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_int_distribution<int> factor(lowest, highest);
    for (int r = 0; r < pic.quantization_table.rows(); ++r) {
        for (int c = 0; c < pic.quantization_table.columns(); ++c)
            pic.quantization_table[r][c] = static_cast<std::uint8_t>(factor(generator));
    }
}

void upload_motion(VideoPicture& pic) {
    put(pic.motion, make_image(pic.grid_width, pic.grid_height, [&](int c, int r) {
            const MotionVector own = pic.motion_vectors[r][c];
            const MotionVector next = pic.motion_vectors[r + 1][c + 1];
            return Rgba{static_cast<float>(own.x), static_cast<float>(own.y),
                        static_cast<float>(next.x), static_cast<float>(next.y)};
        }));
}

void put(gl_texture_resource* texture, const Image& image) {
    glBindTexture(texture->target(), texture->name());
    glTexSubImage2D(texture->target(), 0, 0, 0, image.width(), image.height(), GL_RGBA, GL_FLOAT,
                    image.texels().data());
    glBindTexture(texture->target(), 0);
}
