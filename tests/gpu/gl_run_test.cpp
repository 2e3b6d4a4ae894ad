// SPDX-License-Identifier: MIT
// Drawing with a program: targets, coordinates, what stays bound.

#include "gpu/gl_bindings.h"
#include "gpu/gl_shader.h"
#include "gpu/gl_texture.h"
#include "support/gl_fixture.h"
#include "support/without_extension.h"

namespace {

using GlRunTest = GlTest;

// Writes the coordinates it is given: unit 0 in the first two channels, unit 1 in the others.
const char coordinates_program[] = R"(
#extension GL_ARB_texture_rectangle : enable
uniform sampler2DRect first;
uniform sampler2DRect second;
uniform float factor;
void main() { gl_FragColor = vec4(gl_TexCoord[0].st, gl_TexCoord[1].st) * factor; }
)";

// Runs the program that writes coordinates, with one input on each of two units.
Image run_coordinates(gl_texture_resource* out, gl_texture_resource* first,
                      gl_texture_resource* second, const SDL_Rect* r) {
    gl_shader_resource* program = compile_shader(coordinates_program, true);
    set_rendertarget(0, out);
    if (first) set_texture(0, first, GL_NEAREST);
    if (second) set_texture(1, second, GL_NEAREST);
    program->begin();
    program->setValue("first", 0);
    program->setValue("second", 1);
    program->setValue("factor", 1.0F);
    r ? program->run(*r) : program->run();
    program->end();
    Image image(out->width(), out->height());
    glBindTexture(out->target(), out->name());
    glGetTexImage(out->target(), 0, GL_RGBA, GL_FLOAT, image.texels().data());
    return image;
}

TEST_F(GlRunTest, InputsAreSampledInProportionToTheirSize) {
    const object_ref<gl_texture_resource> out(
        new gl_texture_resource(8, 16, GL_RGBA32F_ARB, nullptr));
    const object_ref<gl_texture_resource> same(new gl_texture_resource(8, 16, 0, nullptr));
    const object_ref<gl_texture_resource> half(new gl_texture_resource(4, 8, 0, nullptr));
    const Image image = run_coordinates(out, same, half, nullptr);
    for (const auto& [x, y] : {std::pair{0, 0}, {15, 0}, {0, 7}, {15, 7}, {5, 3}}) {
        const Rgba& c = image.at(x, y);
        EXPECT_FLOAT_EQ(c.r, static_cast<float>(x) + 0.5F);
        EXPECT_FLOAT_EQ(c.g, static_cast<float>(y) + 0.5F);
        EXPECT_FLOAT_EQ(c.b, (static_cast<float>(x) + 0.5F) / 2);
        EXPECT_FLOAT_EQ(c.a, (static_cast<float>(y) + 0.5F) / 2);
    }
}

TEST_F(GlRunTest, PartOfAPassStartsAtWholeTexels) {
    const object_ref<gl_texture_resource> out(
        new gl_texture_resource(8, 1280, GL_RGBA32F_ARB, nullptr));
    const object_ref<gl_texture_resource> half(new gl_texture_resource(8, 640, 0, nullptr));
    const SDL_Rect r{101, 2, 11, 3};
    const Image image = run_coordinates(out, half, nullptr, &r);
    // 101 x 640 / 1280 = 50 and 11 x 640 / 1280 = 5, both cut.
    EXPECT_NEAR(image.at(101, 2).r, 50.0F + 5.0F * 0.5F / 11.0F, 1e-4F);
    EXPECT_NEAR(image.at(111, 2).r, 50.0F + 5.0F * 10.5F / 11.0F, 1e-4F);
    EXPECT_NEAR(image.at(105, 4).g, 4.5F, 1e-4F);
}

TEST_F(GlRunTest, OldTexturesAreAddressedFromZeroToOne) {
    const object_ref<gl_texture_resource> out(
        new gl_texture_resource(8, 16, GL_RGBA32F_ARB, nullptr));
    object_ref<gl_texture_resource> old;
    {
        const WithoutExtension no_rectangles(__GLEW_ARB_texture_rectangle);
        old = new gl_texture_resource(4, 4, 0, nullptr);
    }
    const Image image = run_coordinates(out, old, nullptr, nullptr);
    EXPECT_NEAR(image.at(0, 0).r, 0.5F / 16, 1e-5F);
    EXPECT_NEAR(image.at(15, 7).g, 7.5F / 8, 1e-5F);
}

TEST_F(GlRunTest, PassEmptiesItsBindingsAndKeepsTheMatrices) {
    const object_ref<gl_texture_resource> out(new gl_texture_resource(8, 16, 0, nullptr));
    const object_ref<gl_texture_resource> in(new gl_texture_resource(8, 16, 0, nullptr));
    GLfloat projection[16];
    GLfloat model[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    glGetFloatv(GL_MODELVIEW_MATRIX, model);
    run_coordinates(out, in, in, nullptr);
    for (int slot = 0; slot < binding_slots; ++slot) {
        EXPECT_EQ(textures[slot], nullptr);
        EXPECT_EQ(rendertargets[slot], nullptr);
    }
    GLfloat after[16];
    glGetFloatv(GL_PROJECTION_MATRIX, after);
    EXPECT_TRUE(std::equal(after, after + 16, projection));
    glGetFloatv(GL_MODELVIEW_MATRIX, after);
    EXPECT_TRUE(std::equal(after, after + 16, model));
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
    GLint program = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    EXPECT_EQ(program, 0);
}

TEST_F(GlRunTest, SlotOneStandsInForAnEmptySlotZero) {
    const object_ref<gl_texture_resource> out(
        new gl_texture_resource(6, 10, GL_RGBA32F_ARB, nullptr));
    gl_shader_resource* program = compile_shader(coordinates_program, true);
    set_rendertarget(1, out);
    program->begin();
    program->setValue("factor", 1.0F);
    program->run();
    program->end();
    EXPECT_EQ(rendertargets[1], nullptr);
    GLint buffer = 0;
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, fb[1]);
    glGetIntegerv(GL_DRAW_BUFFER, &buffer);
    EXPECT_EQ(buffer, GL_COLOR_ATTACHMENT1_EXT);
}

TEST_F(GlRunTest, TwoTargetsAskForTwoDrawBuffers) {
    const object_ref<gl_texture_resource> a(new gl_texture_resource(6, 10, 0, nullptr));
    const object_ref<gl_texture_resource> b(new gl_texture_resource(6, 10, 0, nullptr));
    gl_shader_resource* program = compile_shader(coordinates_program, true);
    set_rendertarget(1, b);
    set_rendertarget(0, a);
    program->begin();
    program->run();
    program->end();
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, fb[0]);
    GLint first = 0;
    GLint second = 0;
    glGetIntegerv(GL_DRAW_BUFFER0, &first);
    glGetIntegerv(GL_DRAW_BUFFER1, &second);
    EXPECT_EQ(first, GL_COLOR_ATTACHMENT0_EXT);
    EXPECT_EQ(second, GL_COLOR_ATTACHMENT1_EXT);
    glDrawBuffer(GL_COLOR_ATTACHMENT0_EXT);
    EXPECT_EQ(rendertargets[0], nullptr);
    EXPECT_EQ(rendertargets[1], nullptr);
}

TEST_F(GlRunTest, RunWithoutTargetDrawsNothing) {
    const object_ref<gl_texture_resource> in(new gl_texture_resource(4, 4, 0, nullptr));
    bind_window(window_width, window_height);
    glClear(GL_COLOR_BUFFER_BIT);
    const Image before = window();
    gl_shader_resource* program = compile_shader(coordinates_program, true);
    set_texture(0, in, GL_NEAREST);
    set_texture(5, in, GL_LINEAR);
    program->begin();
    program->setValue("factor", 1.0F);
    program->run();
    program->end();
    for (int slot = 0; slot < binding_slots; ++slot)
        EXPECT_EQ(textures[slot], nullptr) << slot;
    EXPECT_EQ(largest_difference(window(), before), 0.0F);
}

TEST_F(GlRunTest, InPlacePassReadsOnlyItsOwnTexel) {
    static const char text[] = R"(
#extension GL_ARB_texture_rectangle : enable
uniform sampler2DRect tex;
void main() { gl_FragColor = texture2DRect(tex, gl_TexCoord[0].st) * 0.5 + 0.25; }
)";
    Image image = random_image(37, 23, 3);
    const object_ref<gl_texture_resource> texture = upload(image, GL_RGBA32F_ARB);
    gl_shader_resource* program = compile_shader(text, true);
    set_rendertarget(0, texture);
    set_texture(0, texture, GL_NEAREST);
    program->begin();
    program->setValue("tex", 0);
    program->run();
    program->end();
    for (Rgba& t : image.texels()) {
        t = {t.r * 0.5F + 0.25F, t.g * 0.5F + 0.25F, t.b * 0.5F + 0.25F, t.a * 0.5F + 0.25F};
    }
    EXPECT_LE(largest_difference(download(texture), image), 1e-6F);
}

TEST_F(GlRunTest, WindowIsBoundPlainly) {
    const object_ref<gl_texture_resource> out(new gl_texture_resource(8, 16, 0, nullptr));
    run_coordinates(out, nullptr, nullptr, nullptr);
    bind_window(window_width, window_height);
    GLint framebuffer = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &framebuffer);
    EXPECT_EQ(framebuffer, 0);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], window_width);
    EXPECT_EQ(viewport[3], window_height);
}

TEST_F(GlRunTest, FramebuffersAreMadeAnew) {
    make_framebuffers();
    for (const GLuint name : fb)
        EXPECT_NE(name, 0U);
    const object_ref<gl_texture_resource> out(
        new gl_texture_resource(8, 16, GL_RGBA32F_ARB, nullptr));
    EXPECT_FLOAT_EQ(run_coordinates(out, out, nullptr, nullptr).at(3, 2).r, 3.5F);
}

}  // namespace
