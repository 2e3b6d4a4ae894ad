// SPDX-License-Identifier: MIT
// The display's programs against plain arithmetic, texel by texel.

#include "gpu/display_effects.h"

#include "core/settings.h"
#include "gpu/direct_display.h"
#include "gpu/gl_bindings.h"
#include "gpu/gl_context.h"
#include "gpu/gl_shader.h"
#include "gpu/picture_upload.h"
#include "platform/window.h"
#include "support/gl_fixture.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr float step8 = 1.0F / 255.0F;

struct Size {
    int width, height;
};
const Size odd_and_even[] = {{1, 1}, {3, 5}, {17, 9}, {64, 48}, {2, 2}, {853, 3}};

// W x 3H/2 bytes of noise.
std::vector<std::uint8_t> packed_noise(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(width * (height + height / 2)));
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

Rgba yuv_to_rgb(float y, float u, float v, float c, float b) {
    y -= 0.03125F;
    u -= 0.5F;
    v -= 0.5F;
    return {(y + 1.5960F * v) * c + b, (y - 0.3918F * u - 0.8130F * v) * c + b,
            (y + 2.0172F * u) * c + b, b};
}

class DisplayEffects : public GlTest {
  protected:
    void TearDown() override {
        for (Value* value : {&master_settings.brightness, &master_settings.contrast}) {
            value->setValue(value->default_value());
        }
        GlTest::TearDown();
    }

    static void adjust(float contrast, float brightness) {
        master_settings.contrast.setValue(contrast);
        master_settings.brightness.setValue(brightness);
    }

    // A staging texture as the upload makes it: it counts as W x H but holds half as many rows
    // more.
    static object_ref<gl_texture_resource> staging(int width, int height,
                                                   const std::vector<std::uint8_t>& bytes) {
        object_ref<gl_texture_resource> texture(
            new gl_texture_resource(height, width, GL_LUMINANCE, nullptr));
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(texture->target(), 0, GL_LUMINANCE, width, height + height / 2, 0,
                     GL_LUMINANCE, GL_UNSIGNED_BYTE, bytes.data());
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        glBindTexture(texture->target(), 0);
        return texture;
    }
};

TEST_F(DisplayEffects, YuvToRgb) {
    for (const Size& size : odd_and_even) {
        for (const auto& [contrast, brightness] :
             {std::pair{0.0F, 0.0F}, {1.0F, -0.25F}, {-2.0F, 0.5F}, {2.0F, -0.5F}}) {
            adjust(contrast, brightness);
            const int rows = size.height + size.height / 2;
            const std::vector<std::uint8_t> bytes = packed_noise(size.width, size.height, 11);
            const auto at = [&](float s, float t) {
                const int x = std::clamp(static_cast<int>(std::floor(s)), 0, size.width - 1);
                const int y = std::clamp(static_cast<int>(std::floor(t)), 0, rows - 1);
                return static_cast<float>(bytes[static_cast<std::size_t>(y * size.width + x)]) /
                       255.0F;
            };
            const float c = std::exp2(master_settings.contrast.getValue());
            const float b = master_settings.brightness.getValue();
            const Image expected = make_image(size.width, size.height, [&](int x, int y) {
                const float s = static_cast<float>(x) + 0.5F;
                const float t = static_cast<float>(y) + 0.5F;
                const auto h = static_cast<float>(size.height);
                const float half = static_cast<float>(size.width) * 0.5F;
                return yuv_to_rgb(at(s, t), at(0.5F * s, h + 0.5F * t),
                                  at(half + 0.5F * s, h + 0.5F * t), c, b);
            });
            const object_ref<gl_texture_resource> rgb(
                new gl_texture_resource(size.height, size.width, GL_RGBA, nullptr));
            convert_yuv420p_to_rgb(staging(size.width, size.height, bytes), rgb);
            // Measured: 0 to 1 step.
            EXPECT_LE(largest_difference(download(rgb), as_8_bits(expected)), step8 * 1.01F)
                << size.width << " x " << size.height << ", contrast " << contrast;
        }
    }
}

TEST_F(DisplayEffects, BlackWhiteAndTheOffsetOfLuma) {
    for (const auto& [luma, grey] :
         {std::pair{16, 8.03F}, {235, 227.03F}, {0, 0.0F}, {255, 247.03F}}) {
        std::vector<std::uint8_t> bytes(6, 128);
        std::fill_n(bytes.begin(), 4, static_cast<std::uint8_t>(luma));
        const object_ref<gl_texture_resource> rgb(new gl_texture_resource(2, 2, GL_RGBA, nullptr));
        convert_yuv420p_to_rgb(staging(2, 2, bytes), rgb);
        // 128 is 0.00196 above the middle of 0.5, so greys carry a trace of colour.
        EXPECT_NEAR(download(rgb).at(0, 0).g * 255.0F, grey, 1.2F);
    }
}

TEST_F(DisplayEffects, BrightnessAndContrastInPlace) {
    for (const Size& size : odd_and_even) {
        adjust(0.5F, 0.125F);
        VideoPicture pic;
        const Image image = random_image(size.width, size.height, 5);
        pic.rgb = upload(image, GL_RGBA);
        brightness_contrast_enhancement(&pic);
        EXPECT_TRUE(pic.converted);
        const float c = std::exp2(master_settings.contrast.getValue());
        const float b = master_settings.brightness.getValue();
        const Image source = as_8_bits(image);
        const Image expected = make_image(size.width, size.height, [&](int x, int y) {
            const Rgba& t = source.at(x, y);
            return Rgba{t.r * c + b, t.g * c + b, t.b * c + b, t.a * c + b};
        });
        EXPECT_LE(largest_difference(download(pic.rgb), as_8_bits(expected)), step8 * 1.01F);

        const Image before = download(pic.rgb);
        brightness_contrast_enhancement(&pic);
        EXPECT_EQ(largest_difference(download(pic.rgb), before), 0.0F) << "once per picture";
    }
}

TEST_F(DisplayEffects, NeutralAdjustmentDoesNothingAtAll) {
    VideoPicture pic;
    const Image image = as_8_bits(random_image(17, 9, 5));
    pic.rgb = upload(image, GL_RGBA);
    brightness_contrast_enhancement(&pic);
    EXPECT_FALSE(pic.converted) << "a change while it is shown still counts";
    EXPECT_LT(largest_difference(download(pic.rgb), image), 1e-6F);
}

TEST_F(DisplayEffects, DemoSplitHasARedLineInTheMiddle) {
    for (const Size& size : {Size{1, 1}, {3, 5}, {17, 9}, {64, 48}}) {
        const Image enhanced = random_image(size.width, size.height, 1);
        const Image original = as_8_bits(random_image(size.width, size.height, 2));
        const auto output = upload(enhanced);
        show_demo_overlay(output, upload(original, GL_RGBA), false);
        const Image before = download(upload(enhanced));
        const int line = size.width / 2;
        const Image expected = make_image(size.width, size.height, [&](int x, int y) {
            if (x < line) return original.at(x, y);
            return x == line ? Rgba{1, 0, 0, 0} : before.at(x, y);
        });
        EXPECT_LE(largest_difference(download(output), expected), 0.002F)
            << size.width << " x " << size.height;
    }
}

TEST_F(DisplayEffects, ShowOriginalCoversEverything) {
    const Image original = as_8_bits(random_image(17, 9, 2));
    const auto output = upload(random_image(17, 9, 1));
    show_demo_overlay(output, upload(original, GL_RGBA), true);
    EXPECT_LE(largest_difference(download(output), original), 0.002F);
}

// Draws the quad that the display draws, 20 x 10 texels on as many pixels at the window's corner.
TEST_F(DisplayEffects, SeekingEffectAddsBandsOfNoise) {
    constexpr int width = 20;
    constexpr int height = 10;
    const Image image = random_image(width, height, 9, 0.0F, 0.3F);
    const auto texture = upload(image);
    bind_window(window_width, window_height);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(texture->target());
    glBindTexture(texture->target(), texture->name());
    constexpr float time = 0.5F;
    begin_seeking_effect(height, window_height, time);
    glBegin(GL_QUADS);
    for (const auto& [x, y] : {std::pair{0, 0}, {width, 0}, {width, height}, {0, height}}) {
        glTexCoord2i(x, y);
        glVertex2i(x, y);
    }
    glEnd();
    glUseProgram(0);
    glDisable(texture->target());
    glBindTexture(texture->target(), 0);
    const Image shown = window();
    const Image source = download(texture);
    float largest = 0.0F;
    float noise_sum = 0.0F;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float s = static_cast<float>(x) + 0.5F;
            const float t = static_cast<float>(y) + 0.5F;
            const float scale = 9876.78F / height;
            const float raw = (time * std::cos(t) - time * time * std::sin(s)) * scale;
            const float noise = raw - std::floor(raw);
            const float alpha =
                0.5F * std::pow(std::clamp(std::cos(0.1F * t + 0.2F), 0.0F, 1.0F), 4.0F);
            const float expected = source.at(x, y).r + alpha * noise;
            noise_sum += alpha * noise;
            // The noise turns over at whole numbers; near one, rounding decides.
            if (noise > 0.01F && noise < 0.99F) {
                largest = std::max(largest, std::abs(expected - shown.at(x, y).r));
            }
        }
    }
    EXPECT_LE(largest, 0.006F);  // measured 0.0039
    EXPECT_GT(noise_sum, 10.0F);
}

TEST_F(DisplayEffects, PlanesGoStraightToTheWindow) {
    for (const Size& size : {Size{2, 2}, {16, 8}, {64, 48}}) {
        for (const int zoom : {1, 3}) {
            adjust(0.25F, -0.125F);
            const std::vector<std::uint8_t> bytes = packed_noise(size.width, size.height, 4);
            VideoPicture pic;
            pic.width = size.width;
            pic.height = size.height;
            make_pixel_buffer(pic);
            glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pic.pbo);
            glBufferData(GL_PIXEL_UNPACK_BUFFER, static_cast<GLsizeiptr>(bytes.size()),
                         bytes.data(), GL_STREAM_DRAW);
            glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
            DirectPlanes planes;
            upload_planes(pic, planes);
            bind_window(window_width, window_height);
            draw_planes(planes, size.width * zoom, size.height * zoom);
            const Image shown = window();
            delete_pixel_buffer(pic);

            // Every `step`-th byte from `first` on, in rows of the picture's width.
            const auto plane = [&](int first, int step, int w, int h) {
                return make_image(w, h, [&](int x, int y) {
                    const std::size_t i =
                        static_cast<std::size_t>(first + y * size.width + x * step);
                    return Rgba{static_cast<float>(bytes[i]) / 255.0F, 0, 0, 0};
                });
            };
            const int luma = size.width * size.height;
            const Image y_plane = plane(0, 1, size.width, size.height);
            const Image u_plane = plane(luma, 2, size.width / 2, size.height / 2);
            const Image v_plane = plane(luma + 1, 2, size.width / 2, size.height / 2);
            const float c = std::exp2(master_settings.contrast.getValue());
            const float b = master_settings.brightness.getValue();
            const Image expected =
                make_image(size.width * zoom, size.height * zoom, [&](int x, int y) {
                    const float s = (static_cast<float>(x) + 0.5F) / static_cast<float>(zoom);
                    const float t = (static_cast<float>(y) + 0.5F) / static_cast<float>(zoom);
                    return yuv_to_rgb(y_plane.linear(s, t).r, u_plane.linear(s / 2, t / 2).r,
                                      v_plane.linear(s / 2, t / 2).r, c, b);
                });
            const Image part = make_image(size.width * zoom, size.height * zoom,
                                          [&](int x, int y) { return shown.at(x, y); });
            // The driver filters with weights of 8 bits, for each of three planes of pure noise,
            // and blue takes its u twice (measured: at most 4 steps).
            EXPECT_LE(largest_difference(part, as_8_bits(expected), 3), 5.0F * step8)
                << size.width << " x " << size.height << " times " << zoom;
        }
    }
}

TEST_F(DisplayEffects, HalvedPicturesGoStraightToTheWindow) {
    for (const Size& size : {Size{2, 2}, {16, 8}, {64, 48}}) {
        adjust(0.25F, -0.125F);
        const int w = size.width / 2;
        const int h = size.height / 2;
        const std::vector<std::uint8_t> texels = packed_noise(size.width, size.height, 5);
        VideoPicture pic;
        pic.width = size.width;
        pic.height = size.height;
        pic.buffer_form = BufferForm::halved;
        make_pixel_buffer(pic);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, pic.pbo);
        glBufferData(GL_PIXEL_UNPACK_BUFFER, static_cast<GLsizeiptr>(w) * h * 4, texels.data(),
                     GL_STREAM_DRAW);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        DirectPlanes planes;
        upload_planes(pic, planes);
        bind_window(window_width, window_height);
        draw_planes(planes, w, h);
        const Image shown = window();
        delete_pixel_buffer(pic);
        const float c = std::exp2(master_settings.contrast.getValue());
        const float b = master_settings.brightness.getValue();
        const Image expected = make_image(w, h, [&](int x, int y) {
            const std::uint8_t* texel = &texels[static_cast<std::size_t>(4 * (y * w + x))];
            return yuv_to_rgb(static_cast<float>(texel[0]) / 255.0F,
                              static_cast<float>(texel[1]) / 255.0F,
                              static_cast<float>(texel[2]) / 255.0F, c, b);
        });
        const Image part = make_image(w, h, [&](int x, int y) { return shown.at(x, y); });
        EXPECT_LE(largest_difference(part, as_8_bits(expected), 3), 1.01F * step8)
            << size.width << " x " << size.height;
    }
}

}  // namespace
