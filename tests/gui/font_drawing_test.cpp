// SPDX-License-Identifier: MIT
#include "gui/gl_font.h"
#include "platform/resources.h"

#include "gui/drawing_fixture.h"
#include "gui/font_bytes.h"

#include <cmath>
#include <string>

namespace {

int begins = 0;
int questions = 0;

}  // namespace

// The linker sends the calls of this program here.
extern "C" {
void __real_glBegin(GLenum mode);
void __wrap_glBegin(GLenum mode) {
    ++begins;
    __real_glBegin(mode);
}
void __real_glGetIntegerv(GLenum what, GLint* values);
void __wrap_glGetIntegerv(GLenum what, GLint* values) {
    ++questions;
    __real_glGetIntegerv(what, values);
}
}

namespace {

using glfont::GLFont;
using glfont::Glyph;

constexpr int side = 256;

class FontDrawingTest : public DrawingTest {
  protected:
    void SetUp() override {
        DrawingTest::SetUp();
        load_resource("GLF", "DEFAULT", &data_, &size_);
        glGenTextures(1, &texture_);
        font_.Create(reinterpret_cast<const char*>(data_), size_, static_cast<int>(texture_));
    }
    void TearDown() override {
        glBindTexture(GL_TEXTURE_2D, 0);
        glDeleteTextures(1, &texture_);
        DrawingTest::TearDown();
    }

    void draw(const std::string& text, float scale, float x, float y) {
        font_.Begin();
        font_.DrawString(text, scale, x, y);
        font_.End();
    }

    // White text over black at scale 1 divided by `shrink`, 1 or 2: squares of texels are averaged,
    // and both luminance and alpha multiply the colour.
    Image expected(const std::string& text, int shrink, int x, int y) const {
        Image image(window_width, window_height);
        const unsigned char* texels = data_ + 24 + 96 * 24;
        for (const char c : text) {
            const Glyph& glyph = *font_.find(c);
            const int w = static_cast<int>(glyph.width * side) / shrink;
            const int h = static_cast<int>(glyph.height * side) / shrink;
            const auto s = static_cast<int>(glyph.left * side);
            const auto t = static_cast<int>(glyph.top * side);
            for (int j = 0; j < h; ++j) {
                for (int i = 0; i < w; ++i) {
                    int sum = 0;
                    for (int v = 0; v < shrink; ++v) {
                        for (int u = 0; u < shrink; ++u)
                            sum += texels[2 * ((t + j * shrink + v) * side + s + i * shrink + u)];
                    }
                    const float part =
                        static_cast<float>(sum) / 255.0F / static_cast<float>(shrink * shrink);
                    const float grey = part * part;
                    image.at(x + i, y - h + j) = {grey, grey, grey, 1};
                }
            }
            x += w;
        }
        return image;
    }

    static int parameter(GLenum what) {
        int value = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, what, &value);
        return value;
    }

    const unsigned char* data_ = nullptr;
    int size_ = 0;
    GLuint texture_ = 0;
    GLFont font_;
};

// 8-bit blending and filtering round; a step is 0.004. Measured beside the tests.
constexpr float rounding = 0.009F;

TEST_F(FontDrawingTest, ATexelIsAPixelAtFullSize) {
    draw("Quick (brown) fox: 42%", 1, 10, 60);
    // Measured 0.0019.
    EXPECT_LE(largest_difference(window(), expected("Quick (brown) fox: 42%", 1, 10, 60), 3),
              rounding);
}

TEST_F(FontDrawingTest, FourTexelsAreAveragedAtHalfSize) {
    draw("Jumps [over] the lazy dog, 3.5 dB", 0.5F, 10, 60);
    // Measured 0.0055.
    EXPECT_LE(
        largest_difference(window(), expected("Jumps [over] the lazy dog, 3.5 dB", 2, 10, 60), 3),
        rounding);
}

TEST_F(FontDrawingTest, AllFourFormsDrawAlike) {
    const Image drawn = expected("Text", 1, 10, 60);
    const auto shown = [&](const auto& call) {
        clear();
        font_.Begin();
        call();
        font_.End();
        return largest_difference(window(), drawn, 3);
    };
    EXPECT_LE(shown([&] { font_.DrawString("Text", 10, 60); }), rounding);
    EXPECT_LE(shown([&] { font_.DrawString(std::string("Text"), 10, 60); }), rounding);
    EXPECT_LE(shown([&] { font_.DrawString("Text", 1, 10, 60); }), rounding);
    EXPECT_LE(shown([&] { font_.DrawString(std::string("Text"), 1, 10, 60); }), rounding);
}

TEST_F(FontDrawingTest, TextHasTheCurrentColour) {
    setpencolor(0xFFFF8000);
    draw("M", 1, 10, 60);
    const Image white = expected("M", 1, 10, 60);
    const Image image = window();
    for (const auto& [x, y] : lit(white)) {
        EXPECT_NEAR(image.at(x, y).r, white.at(x, y).r, rounding);
        EXPECT_NEAR(image.at(x, y).g, white.at(x, y).r * 128 / 255, rounding);
        EXPECT_EQ(image.at(x, y).b, 0.0F);
    }
}

TEST_F(FontDrawingTest, OpacityFadesText) {
    setopacity(0.5F);
    setpencolor(0xFFFFFFFF);
    draw("M", 1, 10, 60);
    const Image full = expected("M", 1, 10, 60);
    const Image image = window();
    for (const auto& [x, y] : lit(full))
        EXPECT_NEAR(image.at(x, y).r, full.at(x, y).r / 2, rounding);
}

// First pixel row and column of what is lit.
std::pair<int, int> corner(const std::set<std::pair<int, int>>& pixels) {
    std::pair<int, int> least{9999, 9999};
    for (const auto& [x, y] : pixels)
        least = {std::min(least.first, x), std::min(least.second, y)};
    return least;
}

TEST_F(FontDrawingTest, ANewlineAdvancesByTheUnscaledHeight) {
    for (const float scale : {0.5F, 1.0F, 2.0F}) {
        clear();
        draw("E", scale, 100, 100);
        const auto first = corner(lit());
        clear();
        draw("\nE", scale, 100, 100);
        const auto second = corner(lit());
        EXPECT_EQ(second.first, first.first) << scale;
        EXPECT_EQ(second.second, first.second + font_.GetCharHeight('E')) << scale;
        clear();
        draw("  \n\nE", scale, 100, 100);
        EXPECT_EQ(corner(lit()).first, first.first) << "back to the start";
        EXPECT_EQ(corner(lit()).second, first.second + 2 * font_.GetCharHeight('E'));
    }
}

TEST_F(FontDrawingTest, CharactersItDoesNotHaveAreSkipped) {
    draw("a\x1f\t\x80\xff\xc3\xa4z", 1, 10, 60);
    EXPECT_LE(largest_difference(window(), expected("az", 1, 10, 60), 3), rounding);
    clear();
    draw(std::string("a\0z", 3), 1, 10, 60);
    EXPECT_LE(largest_difference(window(), expected("az", 1, 10, 60), 3), rounding);
    clear();
    font_.Begin();
    font_.DrawString("az\0no", 10, 60);
    font_.DrawString(static_cast<const char*>(nullptr), 10, 100);
    font_.End();
    EXPECT_LE(largest_difference(window(), expected("az", 1, 10, 60), 3), rounding);
}

TEST_F(FontDrawingTest, LoadingSetsTheTextureUp) {
    glBindTexture(GL_TEXTURE_2D, texture_);
    EXPECT_EQ(parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP);
    int mode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode);
    EXPECT_EQ(mode, GL_MODULATE);
    int bound = 0;
    __real_glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, static_cast<int>(texture_));
    std::vector<unsigned char> texels(2 * side * side);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, texels.data());
    EXPECT_TRUE(std::equal(texels.begin(), texels.end(), data_ + 24 + 96 * 24));
}

TEST_F(FontDrawingTest, RowsOfOddWidthsArePacked) {
    FontBytes made;
    made.width = 5;
    made.height = 3;
    made.texels.resize(2 * 5 * 3);
    for (std::size_t i = 0; i < made.texels.size(); ++i)
        made.texels[i] = static_cast<std::uint8_t>(i * 7 + 1);
    const std::vector<char> bytes = made.bytes();
    GLFont font;
    font.Create(bytes.data(), static_cast<int>(bytes.size()), static_cast<int>(texture_));
    std::vector<unsigned char> texels(made.texels.size());
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, texels.data());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    EXPECT_EQ(texels, made.texels);
    int alignment = 0;
    __real_glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    EXPECT_EQ(alignment, 4) << "as it was";
}

TEST_F(FontDrawingTest, BeginAndEndSetTheState) {
    glEnable(GL_TEXTURE_RECTANGLE);
    glDisable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glBindTexture(GL_TEXTURE_2D, 0);
    font_.Begin();
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_RECTANGLE));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_TRUE(blending());
    int value = 0;
    __real_glGetIntegerv(GL_TEXTURE_BINDING_2D, &value);
    EXPECT_EQ(value, static_cast<int>(texture_));
    __real_glGetIntegerv(GL_BLEND_SRC, &value);
    EXPECT_EQ(value, GL_SRC_ALPHA);
    __real_glGetIntegerv(GL_BLEND_DST, &value);
    EXPECT_EQ(value, GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP);
    font_.End();
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_FALSE(blending());
}

TEST_F(FontDrawingTest, AStringIsOneBatch) {
    font_.Begin();
    begins = questions = 0;
    font_.DrawString("Three\nlines of\ntext", 10, 60);
    EXPECT_EQ(begins, 1);
    EXPECT_EQ(questions, 0) << "the driver is not asked";
    font_.End();
}

TEST_F(FontDrawingTest, TheTextureIsTheCallers) {
    {
        GLFont other;
        other.Create(reinterpret_cast<const char*>(data_), size_, static_cast<int>(texture_));
        other.Destroy();
        EXPECT_TRUE(glIsTexture(texture_));
        other.Begin();
        other.DrawString("Text", 10, 60);
        other.End();
    }
    EXPECT_TRUE(glIsTexture(texture_));
    EXPECT_TRUE(lit().empty()) << "without a table nothing is drawn";
}

TEST_F(FontDrawingTest, WithoutATextureNothingIsDrawn) {
    for (const int texture : {-1, 0}) {
        GLFont other;
        other.Create(reinterpret_cast<const char*>(data_), size_, texture);
        EXPECT_EQ(other.GetCharWidth('A'), font_.GetCharWidth('A'));
        other.Begin();
        other.DrawString("Text", 10, 60);
        other.End();
    }
    EXPECT_TRUE(lit().empty());
}

TEST_F(FontDrawingTest, TheDefaultFontDrawsTheCompiledInOne) {
    create_default_font();
    default_font.Begin();
    default_font.DrawString("Default", 10, 60);
    int texture = 0;
    __real_glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
    default_font.End();
    EXPECT_GT(texture, 0);
    EXPECT_NE(texture, static_cast<int>(texture_));
    EXPECT_LE(largest_difference(window(), expected("Default", 1, 10, 60), 3), rounding);
    const auto name = static_cast<GLuint>(texture);
    glDeleteTextures(1, &name);
    default_font.Destroy();
}

}  // namespace
