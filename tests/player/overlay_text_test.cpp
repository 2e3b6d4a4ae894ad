// SPDX-License-Identifier: MIT
// Text over the picture, pixel by pixel.

#include "gui/overlay_text.h"

#include "gpu/video_display.h"
#include "gui/gl_font.h"
#include "gui/graphics.h"
#include "gui/widget_text.h"
#include "support/gl_fixture.h"

#include <algorithm>
#include <cmath>

namespace {

class OverlayTextTest : public GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        create_default_font();
    }
    void TearDown() override {
        default_font.Destroy();
        setopacity(0.0F);
        GlTest::TearDown();
    }

    // The window after something was drawn over one colour.
    Image over(const Rgba& background, const std::function<void()>& draw) {
        clear_window(window_width, window_height);
        glClearColor(background.r, background.g, background.b, 1.0F);
        glClear(GL_COLOR_BUFFER_BIT);
        draw();
        return window();
    }
    Image over(const Rgba& background, const OverlayText& text) {
        return over(background, [&text] { draw_overlay_text(text); });
    }
    Image over(const Rgba& background, const std::vector<OverlayText>& texts) {
        return over(background, [&texts] {
            for (const OverlayText& text : texts)
                draw_overlay_text(text);
        });
    }
    static int count(const Image& image, const std::function<bool(const Rgba&)>& wanted) {
        return static_cast<int>(
            std::count_if(image.texels().begin(), image.texels().end(), wanted));
    }
};

const Rgba black{0, 0, 0, 1};
const Rgba green{0, 1, 0, 1};

// The atlas is a mask: what is no stroke shows the picture, also under opaque text.
TEST_F(OverlayTextTest, OpaqueTextIsBlended) {
    const Image shown = over(green, {"Hello", 20, 60});
    for (const Rgba& pixel : shown.texels()) {
        // White by the stroke's coverage, darkened by it once more, over green.
        const float coverage = std::sqrt(pixel.r);
        ASSERT_NEAR(pixel.g, 1 - coverage + pixel.r, 0.004F);  // measured 0.002
        ASSERT_EQ(pixel.r, pixel.b);
    }
    EXPECT_GT(count(shown, [](const Rgba& p) { return p.r > 0.95F; }), 50) << "white strokes";
    EXPECT_GT(count(shown, [](const Rgba& p) { return p.r > 0.1F && p.r < 0.9F; }), 20)
        << "with soft edges";
}

TEST_F(OverlayTextTest, OpacityOfAFormBeforeDoesNotCount) {
    const Image wanted = over(black, {"Hello", 20, 60});
    setopacity(0.0F);
    EXPECT_EQ(largest_difference(over(black, {"Hello", 20, 60}), wanted, 3), 0.0F);
    EXPECT_EQ(opacity, 1.0F);
}

TEST_F(OverlayTextTest, AlphaWeakensIt) {
    const Image whole = over(black, {"Hello", 20, 60});
    const Image half = over(black, {"Hello", 20, 60, 1.0F, 0.5F});
    for (std::size_t i = 0; i < whole.texels().size(); ++i)
        ASSERT_NEAR(half.texels()[i].r, whole.texels()[i].r * 0.5F, 0.005F);  // measured 0.0039
    const Image none = over(green, {"Hello", 20, 60, 1.0F, 0.0F, true});
    EXPECT_EQ(count(none, [](const Rgba& p) { return p.r > 0 || p.g < 1; }), 0);
}

TEST_F(OverlayTextTest, StandsOnItsLowerEdge) {
    const Image shown = over(black, {"gjpqyWMQ|", 40, 100});
    const auto bottom = static_cast<int>(100 - text_size("g").y);
    for (int y = 0; y < window_height; ++y) {
        for (int x = 0; x < window_width; ++x) {
            const bool lit = shown.at(x, y).r > 0.02F;
            ASSERT_TRUE(!lit || (x >= 39 && y >= bottom - 1 && y <= 100)) << x << ", " << y;
        }
    }
}

// What the outline should look like, from what the text alone looks like.
TEST_F(OverlayTextTest, OutlineIsTheTextFourTimesInBlack) {
    const Image mask = over(black, {"Outline g", 30, 90});
    for (const float alpha : {1.0F, 0.6F}) {
        const Rgba grey{0.5F, 0.5F, 0.5F, 1};
        const Image shown = over(grey, {"Outline g", 30, 90, 1.0F, alpha, true});
        float largest = 0.0F;
        int dark = 0;
        for (int y = 1; y + 1 < window_height; ++y) {
            for (int x = 1; x + 1 < window_width; ++x) {
                // On black the coverage counts twice: as luminance and as alpha.
                const auto coverage = [&](int dx, int dy) {
                    return std::sqrt(mask.at(x - dx, y - dy).r);
                };
                float value = 0.5F;
                for (const auto& [dx, dy] : {std::pair{-1, -1}, {-1, 1}, {1, -1}, {1, 1}})
                    value *= 1 - coverage(dx, dy) * alpha;
                const float white = coverage(0, 0);
                value = value * (1 - white * alpha) + white * white * alpha;
                largest = std::max(largest, std::abs(value - shown.at(x, y).r));
                dark += shown.at(x, y).r < 0.2F;
            }
        }
        EXPECT_LE(largest, 0.012F) << alpha;  // five roundings to 8 bits; measured 0.0054
        EXPECT_GT(dark, 100) << "a dark edge";
    }
}

TEST_F(OverlayTextTest, OutlinedTextIsLegibleOnEveryBackground) {
    for (const float level : {0.0F, 0.5F, 1.0F}) {
        const Image shown = over({level, level, level, 1}, {"Hello", 20, 60, 1.0F, 1.0F, true});
        EXPECT_GT(count(shown, [](const Rgba& p) { return p.r > 0.9F; }), 50);
        EXPECT_GT(count(shown, [](const Rgba& p) { return p.r < 0.1F; }), 50);
    }
}

TEST_F(OverlayTextTest, ScaleEnlargesAndLeavesTheOutlineThin) {
    const Image small = over(black, {"H", 100, 200, 1.0F});
    const Image large = over(black, {"H", 100, 200, 3.0F});
    const auto lit = [](const Rgba& p) { return p.r > 0.5F; };
    EXPECT_NEAR(count(large, lit), 9 * count(small, lit), 2 * count(small, lit));
}

// The first time directly, then from a picture of them.
TEST_F(OverlayTextTest, LastingTextsLookTheSameInEveryFrame) {
    const std::vector<OverlayText> texts = {{"First line", 20.3F, 60.0F, 1.0F, 1.0F, true},
                                            {"and another", 25.0F, 100.5F, 1.2F, 0.7F, true}};
    LastingTexts lasting;
    for (const Rgba& background : {black, green, Rgba{0.5F, 0.5F, 0.5F, 1}, Rgba{1, 1, 1, 1}}) {
        const Image wanted = over(background, texts);
        for (int frame = 0; frame < 4; ++frame) {
            const Image shown = over(background, [&] { lasting.draw(texts); });
            // Measured 0 for the first and 0.012 for the others.
            EXPECT_LE(largest_difference(wanted, shown), 4.01F / 255.0F) << frame;
        }
    }
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
}

TEST_F(OverlayTextTest, LastingTextsFollowEveryChange) {
    LastingTexts lasting;
    const auto shown = [&](const std::vector<OverlayText>& texts) {
        return over(black, [&] { lasting.draw(texts); });
    };
    const OverlayText text{"Some words", 20, 60, 1.0F, 1.0F, true};
    for (int frame = 0; frame < 3; ++frame)
        shown({text});
    for (const OverlayText& changed : {OverlayText{"Other words", 20, 60, 1.0F, 1.0F, true},
                                       OverlayText{"Some words", 40, 60, 1.0F, 1.0F, true},
                                       OverlayText{"Some words", 20, 90, 1.0F, 1.0F, true},
                                       OverlayText{"Some words", 20, 60, 1.5F, 1.0F, true},
                                       OverlayText{"Some words", 20, 60, 1.0F, 0.5F, true}, text}) {
        for (int frame = 0; frame < 3; ++frame) {
            EXPECT_LE(largest_difference(shown({changed}), over(black, std::vector{changed})),
                      4.01F / 255.0F);
        }
    }
    EXPECT_EQ(count(shown({}), [](const Rgba& p) { return p.r > 0; }), 0) << "nothing stays";
}

// The window is 320 pixels wide here; words may be anywhere.
TEST_F(OverlayTextTest, LastingTextsOutsideTheWindowDoNoHarm) {
    for (const float place : {-5000.0F, -30.0F, 300.0F, 5000.0F, 1e30F}) {
        const std::vector<OverlayText> texts = {{"Some words", place, 60, 1.0F, 1.0F, true}};
        LastingTexts lasting;
        const Image wanted = over(green, texts);
        for (int frame = 0; frame < 3; ++frame) {
            const Image shown = over(green, [&] { lasting.draw(texts); });
            EXPECT_LE(largest_difference(wanted, shown), 4.01F / 255.0F) << place;
        }
    }
}

TEST_F(OverlayTextTest, LeavesBlendingOff) {
    draw_overlay_text({"x", 10, 50, 1.0F, 0.5F, true});
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
}

}  // namespace
