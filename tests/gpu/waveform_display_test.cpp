// SPDX-License-Identifier: MIT
// The picture of the waveforms: its trail against plain arithmetic, its lines, its place.

#include "gpu/waveform_display.h"

#include "gpu/gl_bindings.h"
#include "gpu/pass.h"
#include "gpu/video_display.h"
#include "support/gl_fixture.h"
#include "support/without_extension.h"

#include <algorithm>
#include <cmath>

namespace {

// Smooth lines touch a texel more at either end.
constexpr float soft_ends = 2.0F;
constexpr float least_level = 1.0F / 16384.0F;

Rgba faded(const Rgba& texel) {
    const float level = texel.a * 0.75F;
    if (level < least_level) return {};
    return {(1 - level) * level, 1 - level, 1 - level, level};
}

class WaveformDisplay : public GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        alloc_waveforms(picture_);
    }
    void TearDown() override {
        bind_window(window_width, window_height);
        GlTest::TearDown();
    }

    static Waveform level(float amplitude) {
        Waveform waveform;
        waveform.fill(amplitude);
        return waveform;
    }

    // How many texels of a column are lit, and the middle of them.
    struct Line {
        int length = 0;
        float middle = 0.0F;
    };
    static Line line(const Image& image, int x, int from = 0, int to = waveform_height) {
        Line found;
        float sum = 0.0F;
        for (int y = from; y < to; ++y) {
            if (image.at(x, y).b < 0.5F) continue;
            ++found.length;
            sum += static_cast<float>(y) + 0.5F;
        }
        found.middle = found.length > 0 ? sum / static_cast<float>(found.length) : 0.0F;
        return found;
    }

    object_ref<gl_texture_resource> picture_;
};

TEST_F(WaveformDisplay, NewPictureIsEmpty) {
    EXPECT_EQ(picture_->width(), 600);
    EXPECT_EQ(picture_->height(), 450);
    const Image empty = make_image(600, 450, [](int, int) { return Rgba{}; });
    EXPECT_EQ(largest_difference(download(picture_), empty), 0.0F);
    gl_texture_resource* before = picture_;
    draw_waveforms(picture_, std::vector{level(0.5F)});
    alloc_waveforms(picture_);
    EXPECT_EQ(static_cast<gl_texture_resource*>(picture_), before) << "and stays afterwards";
    EXPECT_GT(line(download(picture_), 300).length, 0);
}

TEST_F(WaveformDisplay, TrailAsItsTwin) {
    Image image = random_image(600, 450, 3);
    // Levels down to nothing.
    for (int x = 0; x < 600; ++x)
        image.at(x, 7).a = std::exp2(static_cast<float>(-x) / 20.0F);
    image.at(0, 8).a = 0.0F;
    image.at(1, 8).a = 1.0F;
    for (const bool barrier : {true, false}) {
        const WithoutExtension no_arb(barrier ? __GLEW_ARB_multitexture
                                              : __GLEW_ARB_texture_barrier);
        const WithoutExtension no_nv(barrier ? __GLEW_ARB_multitexture : __GLEW_NV_texture_barrier);
        EXPECT_EQ(has_texture_barrier(), barrier);
        const auto texture = upload(image);
        const Image source = download(texture);
        fade_waveforms(texture);
        const Image expected =
            make_image(600, 450, [&](int x, int y) { return faded(source.at(x, y)); });
        const Image found = download(texture);
        EXPECT_LE(largest_difference(found, expected), 0.0006F) << barrier;  // measured 0.00049
        for (int x = 0; x < 600; ++x) {
            const float level = source.at(x, 7).a * 0.75F;
            EXPECT_EQ(found.at(x, 7).b > 0.0F, level >= least_level) << level;
        }
    }
}

TEST_F(WaveformDisplay, TrailEnds) {
    draw_waveforms(picture_, std::vector{level(1.0F)});
    ASSERT_GT(line(download(picture_), 300).length, 200);
    int steps = 0;
    for (; steps < 100 && line(download(picture_), 300).length > 0; ++steps)
        fade_waveforms(picture_);
    // 0.75^34 is the first below 2^-14.
    EXPECT_LE(steps, 34);
    EXPECT_GE(steps, 20);
}

TEST_F(WaveformDisplay, OneChannelHas225UnitsPerAmplitude) {
    for (const float amplitude : {0.2F, 0.5F, 1.0F, -0.5F}) {
        object_ref<gl_texture_resource> picture;
        alloc_waveforms(picture);
        draw_waveforms(picture, std::vector{level(amplitude)});
        const Image image = download(picture);
        for (const int x : {0, 1, 299, 598}) {
            const Line found = line(image, x);
            EXPECT_NEAR(static_cast<float>(found.length), 225.0F * std::abs(amplitude), soft_ends)
                << x;
            EXPECT_NEAR(found.middle, 225.0F, 1.0F);
        }
        const Rgba& colour = image.at(299, 225);
        EXPECT_EQ(colour.r, 0.0F);
        EXPECT_NEAR(colour.g, 0.5F, 0.001F);
        EXPECT_EQ(colour.b, 1.0F);
        EXPECT_GT(colour.a, 0.4F) << "a level to fade from";
    }
}

TEST_F(WaveformDisplay, TwoChannelsShareTheHeight) {
    draw_waveforms(picture_, std::vector{level(0.4F), level(1.0F)});
    const Image image = download(picture_);
    const Line first = line(image, 300, 0, 225);
    const Line second = line(image, 300, 225, 450);
    EXPECT_NEAR(static_cast<float>(first.length), 0.4F * 112.5F, soft_ends);
    EXPECT_NEAR(first.middle, 112.5F, 1.0F);
    EXPECT_NEAR(static_cast<float>(second.length), 112.5F, soft_ends);
    EXPECT_NEAR(second.middle, 337.5F, 1.0F);
}

TEST_F(WaveformDisplay, EachColumnHasItsOwnAmplitude) {
    Waveform waveform{};
    waveform[100] = 1.0F;
    for (int x = 300; x < 600; ++x)
        waveform[static_cast<std::size_t>(x)] = 0.5F;
    draw_waveforms(picture_, std::vector{waveform});
    const Image image = download(picture_);
    EXPECT_LE(line(image, 50).length, 2) << "silence is a thin line";
    EXPECT_GT(line(image, 100).length + line(image, 99).length, 200);
    EXPECT_LE(line(image, 102).length, 2);
    EXPECT_NEAR(static_cast<float>(line(image, 450).length), 112.5F, soft_ends);
}

TEST_F(WaveformDisplay, NothingAndExtremesAreDrawnSafely) {
    draw_waveforms(picture_, {});
    EXPECT_EQ(line(download(picture_), 300).length, 0);
    draw_waveforms(picture_, std::vector{level(100.0F), level(-3.0e4F)});
    EXPECT_EQ(line(download(picture_), 300).length, 450);
}

// Drawing leaves matrices and viewport of the window as they were.
TEST_F(WaveformDisplay, MatricesComeBack) {
    GLfloat before[32];
    GLfloat after[32];
    glGetFloatv(GL_PROJECTION_MATRIX, before);
    glGetFloatv(GL_MODELVIEW_MATRIX, before + 16);
    fade_waveforms(picture_);
    draw_waveforms(picture_, std::vector{level(0.5F), level(0.5F)});
    bind_window(window_width, window_height);
    glGetFloatv(GL_PROJECTION_MATRIX, after);
    glGetFloatv(GL_MODELVIEW_MATRIX, after + 16);
    EXPECT_TRUE(std::equal(before, before + 32, after));
    EXPECT_FALSE(glIsEnabled(GL_LINE_SMOOTH));
}

TEST_F(WaveformDisplay, QualityOfLinesComesBack) {
    const auto hint = [] {
        GLint value = 0;
        glGetIntegerv(GL_LINE_SMOOTH_HINT, &value);
        return value;
    };
    for (const int before : {GL_FASTEST, GL_DONT_CARE}) {
        glHint(GL_LINE_SMOOTH_HINT, static_cast<GLenum>(before));
        draw_waveforms(picture_, std::vector{level(0.5F)});
        EXPECT_EQ(hint(), before);
    }
}

TEST_F(WaveformDisplay, FirstRowIsAtTheTopOfTheWindow) {
    const Image image = make_image(600, 450, [](int x, int y) {
        return Rgba{x < 300 ? 1.0F : 0.25F, y < 225 ? 1.0F : 0.25F, 0.5F, 0.0F};
    });
    const auto texture = upload(image);
    clear_window(window_width, window_height);
    glPushMatrix();
    glScalef(window_width / 600.0F, window_height / 450.0F, 1.0F);
    show_waveforms(texture, false, window_height, window_height, 0.0F);
    glPopMatrix();
    const Image shown = window();
    for (const auto& [x, y] : {std::pair{3, 3}, {310, 3}, {3, 230}, {310, 230}}) {
        EXPECT_NEAR(shown.at(x, y).r, x < 160 ? 1.0F : 0.25F, 0.01F);
        EXPECT_NEAR(shown.at(x, y).g, y < 120 ? 1.0F : 0.25F, 0.01F);
        EXPECT_NEAR(shown.at(x, y).b, 0.5F, 0.01F) << "alpha does not count";
    }
}

TEST_F(WaveformDisplay, SeekingAddsNoise) {
    clear_window(window_width, window_height);
    show_waveforms(picture_, true, 450, window_height, 0.7F);
    const Image shown = window();
    const auto [least, most] =
        std::minmax_element(shown.texels().begin(), shown.texels().end(),
                            [](const Rgba& a, const Rgba& b) { return a.r < b.r; });
    EXPECT_EQ(least->r, 0.0F);
    EXPECT_GT(most->r, 0.3F);
    EXPECT_FALSE(glIsEnabled(picture_->target()));
}

// Texels lie on pixels here, whatever the height is called.
TEST_F(WaveformDisplay, NoiseOfSeekingAsItsTwin) {
    const Image image = random_image(600, 450, 8, 0.0F, 0.3F);
    const auto texture = upload(image);
    const Image source = download(texture);
    constexpr float time = 0.5F;
    for (const int height : {450, 210, 37}) {
        clear_window(window_width, window_height);
        show_waveforms(texture, true, height, window_height, time);
        const Image shown = window();
        const float scale = 9876.78F / static_cast<float>(height);
        float largest = 0.0F;
        float noise_sum = 0.0F;
        for (int y = 0; y < 10; ++y) {
            for (int x = 0; x < 20; ++x) {
                const float s = static_cast<float>(x) + 0.5F;
                const float t = static_cast<float>(y) + 0.5F;
                const float raw = (time * std::cos(t) - time * time * std::sin(s)) * scale;
                const float noise = raw - std::floor(raw);
                const float alpha =
                    0.5F * std::pow(std::clamp(std::cos(0.1F * t + 0.2F), 0.0F, 1.0F), 4.0F);
                noise_sum += alpha * noise;
                // The noise turns over at whole numbers; near one, rounding decides.
                if (noise < 0.01F || noise > 0.99F) continue;
                const float expected = source.at(x, y).r + alpha * noise;
                largest = std::max(largest, std::abs(expected - shown.at(x, y).r));
            }
        }
        EXPECT_LE(largest, 0.006F) << height;  // measured 0.0031
        EXPECT_GT(noise_sum, 10.0F);
    }
}

TEST(WaveformRectangle, LiesInTheUpperSevenEighths) {
    const auto is = [](const SDL_Rect& r, int x, int y, int w, int h) {
        EXPECT_EQ(r.x, x);
        EXPECT_EQ(r.y, y);
        EXPECT_EQ(r.w, w);
        EXPECT_EQ(r.h, h);
    };
    is(waveform_rectangle(0, 1, 800, 600), 50, 5, 700, 525);
    is(waveform_rectangle(1, 4, 800, 600), 50, 5, 700, 525);  // the factor does not count there
    // 1080 x 7 / 8 = 945; 945 x 4 / 3 = 1260.
    is(waveform_rectangle(0, 1, 1920, 1080), 330, 5, 1260, 945);
    // 601 x 7 / 8 = 525; 602 x 7 / 8 = 526, and 701 or 702 lose the value 2.
    is(waveform_rectangle(0, 1, 800, 602), 49, 5, 701, 526);
    // Narrow: 300 / 1.3333334 = 225.
    is(waveform_rectangle(0, 1, 300, 600), 0, 155, 300, 225);
    is(waveform_rectangle(2, 1, 800, 600), 100, 42, 600, 450);
    is(waveform_rectangle(2, 3, 800, 600), -500, -407, 1800, 1350);
    is(waveform_rectangle(3, 1, 800, 600), -200, -182, 1200, 900);
    is(waveform_rectangle(4, 1, 800, 600), -800, -632, 2400, 1800);
    is(waveform_rectangle(4, 4, 800, 600), -4400, -3332, 9600, 7200);
    is(waveform_rectangle(0, 1, 1, 1), 0, 5, 0, 0);
    is(waveform_rectangle(0, 1, 8000, 100), 3942, 5, 116, 87);
}

}  // namespace
