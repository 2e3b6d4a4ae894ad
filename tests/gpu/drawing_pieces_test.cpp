// SPDX-License-Identifier: MIT
// Passes that are drawn piece by piece, and what becomes of one that nobody wants any more.

#include "gpu/drawing_pieces.h"

#include "gpu/gl_bindings.h"
#include "gpu/pass.h"
#include "support/gl_fixture.h"

namespace {

int asked = 0;
int wanted_pieces = 0;

bool after_some_pieces() {
    return asked++ >= wanted_pieces;
}

// Depends on everything that differs between pieces: coordinates and what lies around the texel.
const char mixing_program[] = R"(
#extension GL_ARB_texture_rectangle : enable
uniform sampler2DRect first;
uniform sampler2DRect second;
void main() {
    vec2 st = gl_TexCoord[0].st;
    gl_FragColor = texture2DRect(first, st + vec2(0.0, 1.0)) + texture2DRect(first, st - vec2(0.0, 2.0))
                 + texture2DRect(second, gl_TexCoord[1].st) + vec4(st, gl_TexCoord[1].st);
}
)";

class DrawingPiecesTest : public GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        on_processor_ = draws_on_processor;
        draws_on_processor = true;
        asked = 0;
        wanted_pieces = 1 << 30;
    }
    void TearDown() override {
        set_drawing_watch(nullptr);
        draws_on_processor = on_processor_;
        GlTest::TearDown();
    }

    object_ref<gl_texture_resource> target(int width, int height) {
        return upload(make_image(width, height,
                                 [](int, int) {
                                     return Rgba{0.5F, 0, 0, 0};
                                 }),
                      GL_RGBA32F_ARB);
    }

  private:
    bool on_processor_ = false;
};

TEST_F(DrawingPiecesTest, GiveTheTexelsOfAWholePass) {
    // The last piece has fewer rows, and the second input's rows do not divide into the pieces.
    constexpr int width = 1000;
    constexpr int height = 1001;
    const auto a = upload(random_image(width, height, 1), GL_RGBA32F_ARB);
    const auto b = upload(random_image(13, 37, 2), GL_RGBA32F_ARB);
    const auto out = target(width, height);
    Pass(mixing_program, out).input("first", a).input("second", b, GL_LINEAR).run();
    const Image whole = download(out);
    set_drawing_watch(after_some_pieces);
    const auto again = target(width, height);
    Pass(mixing_program, again).input("first", a).input("second", b, GL_LINEAR).run();
    EXPECT_EQ(asked, 4) << "pieces of 262 rows";
    EXPECT_EQ(largest_difference(download(again), whole), 0.0F);
}

TEST_F(DrawingPiecesTest, AreLeftOutOnceNobodyWantsThem) {
    constexpr int width = 1024;
    constexpr int height = 1024;
    const auto in = target(width, height);
    const auto out = target(width, height);
    set_drawing_watch(after_some_pieces);
    wanted_pieces = 2;
    Pass(mixing_program, out).input("first", in).input("second", in).run();
    const Image result = download(out);
    EXPECT_NE(result.at(5, 511).r, 0.5F);
    EXPECT_EQ(result.at(5, 512).r, 0.5F);
    EXPECT_EQ(result.at(1023, 1023).r, 0.5F);
    EXPECT_EQ(asked, 3) << "once said, it is not asked for the rest of the pass";
}

TEST_F(DrawingPiecesTest, LeaveBindingsAndScissorAsAWholePassDoes) {
    const auto out = target(600, 600);
    glScissor(1, 2, 3, 4);
    set_drawing_watch(after_some_pieces);
    wanted_pieces = 1;
    Pass(mixing_program, out).input("first", out).run();
    EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
    GLint box[4];
    glGetIntegerv(GL_SCISSOR_BOX, box);
    EXPECT_EQ(box[0], 1);
    EXPECT_EQ(box[3], 4);
    EXPECT_EQ(textures[0], nullptr);
    EXPECT_EQ(rendertargets[0], nullptr);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(DrawingPiecesTest, AreNotMadeWhereTheDriverHasAGraphicsProcessor) {
    draws_on_processor = false;
    set_drawing_watch(after_some_pieces);
    wanted_pieces = 0;
    const auto out = target(600, 600);
    Pass(mixing_program, out).run();
    EXPECT_EQ(asked, 0);
    EXPECT_NE(download(out).at(599, 599).r, 0.5F);
}

}  // namespace
