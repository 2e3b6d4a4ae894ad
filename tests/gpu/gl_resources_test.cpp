// SPDX-License-Identifier: MIT
#include "gpu/gl_bindings.h"
#include "gpu/gl_shader.h"
#include "gpu/gl_texture.h"

#include "support/gl_fixture.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using GlResourcesTest = GlTest;

// Writes the coordinates it is given: unit 0 in the first two channels, unit 1 in the others.
const char coordinates_program[] = R"(
#extension GL_ARB_texture_rectangle : enable
uniform sampler2DRect first;
uniform sampler2DRect second;
uniform float factor;
void main() { gl_FragColor = vec4(gl_TexCoord[0].st, gl_TexCoord[1].st) * factor; }
)";

const char broken_program[] = "void main() { this is no program; }";

// Puts an extension flag back when the scope ends.
class WithoutExtension {
  public:
    explicit WithoutExtension(GLboolean& flag) : flag_(flag), kept_(flag) { flag_ = GL_FALSE; }
    ~WithoutExtension() { flag_ = kept_; }
    WithoutExtension(const WithoutExtension&) = delete;
    WithoutExtension& operator=(const WithoutExtension&) = delete;

  private:
    GLboolean& flag_;
    GLboolean kept_;
};

TEST_F(GlResourcesTest, InternalFormatFollowsTheExtensions) {
    EXPECT_EQ(gl_texture_resource::get_internal_format(GL_RGB8), GL_RGB8);
    EXPECT_EQ(gl_texture_resource::get_internal_format(0), GL_RGBA16F_ARB);
    {
        const WithoutExtension no_floats(__GLEW_ARB_texture_float);
        EXPECT_EQ(gl_texture_resource::get_internal_format(0), GL_RGBA8);
    }
    const WithoutExtension no_rectangles(__GLEW_ARB_texture_rectangle);
    EXPECT_EQ(gl_texture_resource::get_internal_format(0), GL_RGBA8) << "although floats exist";
    EXPECT_EQ(gl_texture_resource::get_internal_format(GL_RGB8), GL_RGB8);
}

TEST_F(GlResourcesTest, TextureKnowsWhatItIs) {
    const object_ref<gl_texture_resource> plain(new gl_texture_resource(3, 5, 0, nullptr));
    EXPECT_EQ(plain->height(), 3);
    EXPECT_EQ(plain->width(), 5);
    EXPECT_EQ(plain->target(), static_cast<GLenum>(GL_TEXTURE_RECTANGLE_ARB));
    EXPECT_EQ(plain->internal_format(), GL_RGBA16F_ARB);
    EXPECT_EQ(plain->pixel_format(), static_cast<GLenum>(GL_RGBA));
    const object_ref<gl_texture_resource> asked(new gl_texture_resource(3, 5, GL_RGBA8, nullptr));
    EXPECT_EQ(asked->pixel_format(), static_cast<GLenum>(GL_RGB)) << "also with an alpha channel";
    const WithoutExtension no_rectangles(__GLEW_ARB_texture_rectangle);
    const object_ref<gl_texture_resource> old(new gl_texture_resource(4, 4, 0, nullptr));
    EXPECT_EQ(old->target(), static_cast<GLenum>(GL_TEXTURE_2D));
    EXPECT_EQ(old->internal_format(), GL_RGBA8);
}

TEST_F(GlResourcesTest, TextureTakesItsFirstPicture) {
    const unsigned char pixels[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 51, 102, 153};
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    const object_ref<gl_texture_resource> texture(new gl_texture_resource(2, 2, GL_RGB8, pixels));
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    const Image image = download(texture);
    EXPECT_EQ(image.at(0, 0).r, 1.0F);
    EXPECT_EQ(image.at(1, 0).g, 1.0F);
    EXPECT_EQ(image.at(0, 1).b, 1.0F);
    EXPECT_FLOAT_EQ(image.at(1, 1).r, 0.2F);
}

TEST_F(GlResourcesTest, FloatsGoInAndOut) {
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 5}, {17, 9}}) {
        const object_ref<gl_texture_resource> texture(
            new gl_texture_resource(height, width, 0, nullptr));
        const Image image = random_image(width, height, 7, -4.0F, 4.0F);
        texture->transfer_to_texture(image.texels().data());
        Image back(width, height);
        texture->transfer_from_texture(back.texels().data());
        EXPECT_EQ(rendertargets[0], static_cast<gl_texture_resource*>(texture));
        // Half precision has 11 bits: 4 / 2048 (measured 0.00098).
        EXPECT_LE(largest_difference(image, back), 0.002F);

        const SDL_Rect last{static_cast<Sint16>(width - 1), static_cast<Sint16>(height - 1), 1, 1};
        Rgba texel;
        texture->transfer_from_texture(&texel, last);
        EXPECT_EQ(texel.g, back.at(width - 1, height - 1).g);
        set_rendertarget(0, nullptr);
    }
}

TEST_F(GlResourcesTest, UploadGoesTheWaysThatAreOn) {
    const object_ref<gl_texture_resource> texture(new gl_texture_resource(4, 4, 0, nullptr));
    const Image black(4, 4);
    const Image grey = make_image(4, 4, [](int, int) { return Rgba{0.5F, 0.5F, 0.5F, 0.5F}; });
    texture->transfer_to_texture(black.texels().data());
    hwaccelerated_nvidia = false;
    texture->transfer_to_texture(grey.texels().data());
    EXPECT_EQ(largest_difference(download(texture), black), 0.0F) << "no way is on";
    hwaccelerated_nvidia = true;
    texture->transfer_to_texture(grey.texels().data());
    EXPECT_EQ(largest_difference(download(texture), grey), 0.0F);
}

TEST_F(GlResourcesTest, UploadByDrawing) {
    const object_ref<gl_texture_resource> texture(new gl_texture_resource(4, 4, 0, nullptr));
    const Image image = make_image(4, 4, [](int x, int y) {
        return Rgba{static_cast<float>(x) / 4, static_cast<float>(y) / 4, 0, 1};
    });
    hwaccelerated_nvidia = false;
    hwaccelerated_ati = true;
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, fb[0]);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, 4, 0, 4, -1, 1);
    glViewport(0, 0, 4, 4);
    texture->transfer_to_texture(image.texels().data());
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    hwaccelerated_nvidia = true;
    hwaccelerated_ati = false;
    EXPECT_EQ(largest_difference(download(texture), image), 0.0F);
}

TEST_F(GlResourcesTest, SlotsOutsideTheRangeAreIgnored) {
    const object_ref<gl_texture_resource> texture(new gl_texture_resource(4, 4, 0, nullptr));
    for (const int slot : {-1, 8, 1000}) {
        set_texture(slot, texture, GL_NEAREST);
        set_rendertarget(slot, texture);
    }
    for (int slot = 0; slot < binding_slots; ++slot) {
        EXPECT_EQ(textures[slot], nullptr);
        EXPECT_EQ(rendertargets[slot], nullptr);
    }
}

TEST_F(GlResourcesTest, BindingSetsFiltersAndClampedEdges) {
    const object_ref<gl_texture_resource> texture(new gl_texture_resource(4, 4, 0, nullptr));
    for (const GLint filter : {GL_LINEAR, GL_NEAREST}) {
        set_texture(3, texture, filter);
        EXPECT_EQ(textures[3], static_cast<gl_texture_resource*>(texture));
        GLint active = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        EXPECT_EQ(active, GL_TEXTURE3);
        const auto parameter = [&](GLenum name) {
            GLint value = 0;
            glGetTexParameteriv(texture->target(), name, &value);
            return value;
        };
        EXPECT_EQ(parameter(GL_TEXTURE_MIN_FILTER), filter);
        EXPECT_EQ(parameter(GL_TEXTURE_MAG_FILTER), filter);
        EXPECT_EQ(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
        EXPECT_EQ(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
    }
    textures[3] = nullptr;
    glBindTexture(texture->target(), 0);
}

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

TEST_F(GlResourcesTest, InputsAreSampledInProportionToTheirSize) {
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

TEST_F(GlResourcesTest, PartOfAPassStartsAtWholeTexels) {
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

TEST_F(GlResourcesTest, OldTexturesAreAddressedFromZeroToOne) {
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

TEST_F(GlResourcesTest, PassEmptiesItsBindingsAndKeepsTheMatrices) {
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

TEST_F(GlResourcesTest, SlotOneStandsInForAnEmptySlotZero) {
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

TEST_F(GlResourcesTest, TwoTargetsAskForTwoDrawBuffers) {
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

TEST_F(GlResourcesTest, RunWithoutTargetDrawsNothing) {
    gl_shader_resource* program = compile_shader(coordinates_program, true);
    program->begin();
    program->run();
    program->end();
}

TEST_F(GlResourcesTest, ProgramsAreCompiledOnceAndKept) {
    gl_shader_resource* program = compile_shader(coordinates_program, true);
    EXPECT_EQ(compile_shader(coordinates_program, true), program);
    EXPECT_EQ(compile_shader(coordinates_program, false), program);
    EXPECT_GE(program->references(), 1);
}

TEST_F(GlResourcesTest, UnkeptProgramBelongsToTheCaller) {
    static const char text[] = "void main() { gl_FragColor = vec4(1.0); }";
    object_ref<gl_shader_resource> first(compile_shader(text, false));
    object_ref<gl_shader_resource> second(compile_shader(text, false));
    EXPECT_NE(static_cast<gl_shader_resource*>(first), static_cast<gl_shader_resource*>(second));
    EXPECT_EQ(first->references(), 1);
}

TEST_F(GlResourcesTest, UnknownUniformIsHarmless) {
    gl_shader_resource* program = compile_shader(coordinates_program, true);
    program->begin();
    EXPECT_EQ(program->getToken("nothing"), -1);
    program->setValue("nothing", 1.0F);
    program->setValue("nothing", paravec2<float>{1, 2});
    EXPECT_GE(program->getToken("factor"), 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    program->end();
}

TEST_F(GlResourcesTest, UniformsOfEveryKindReachTheProgram) {
    static const char text[] = R"(
uniform int i; uniform float f; uniform vec2 two; uniform vec4 four; uniform float list[3];
uniform vec3 threes[2]; uniform vec4 fours[2];
void main() {
    gl_FragColor = vec4(float(i) + f, two.x + 10.0 * two.y, dot(four, vec4(1.0, 10.0, 100.0, 1000.0)),
                        list[0] + list[1] + list[2] + threes[1].z + fours[1].w);
})";
    const object_ref<gl_texture_resource> out(
        new gl_texture_resource(1, 1, GL_RGBA32F_ARB, nullptr));
    gl_shader_resource* program = compile_shader(text, true);
    const float list[] = {1, 2, 3};
    const float threes[] = {0, 0, 0, 0, 0, 20};
    const float fours[] = {0, 0, 0, 0, 0, 0, 0, 300};
    set_rendertarget(0, out);
    program->begin();
    program->setValue("i", 3);
    program->setValue("f", 0.5F);
    program->setValue("two", paravec2<float>{1, 2});
    program->setValue("four", paravec4<float>{1, 2, 3, 4});
    program->setValue("list", list, 3);
    program->setVectors3("threes", threes, 2);
    program->setVectors4("fours", fours, 2);
    program->run();
    program->end();
    const Rgba texel = download(out).at(0, 0);
    EXPECT_EQ(texel.r, 3.5F);
    EXPECT_EQ(texel.g, 21.0F);
    EXPECT_EQ(texel.b, 4321.0F);
    EXPECT_EQ(texel.a, 326.0F);
}

TEST_F(GlResourcesTest, BrokenProgramIsReturnedAndLoggedEachTime) {
    const auto folder = std::filesystem::temp_directory_path() / "vyx_shader_log_test";
    std::filesystem::create_directories(folder);
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    std::filesystem::remove("GLShader.log");

    object_ref<gl_shader_resource> first(compile_shader(broken_program, true));
    object_ref<gl_shader_resource> second(compile_shader(broken_program, true));
    EXPECT_FALSE(first.IsNull());
    EXPECT_NE(static_cast<gl_shader_resource*>(first), static_cast<gl_shader_resource*>(second))
        << "it is not remembered";
    std::stringstream log;
    log << std::ifstream("GLShader.log").rdbuf();
    std::filesystem::current_path(before);

    const std::string text = log.str();
    const std::string heading = "Shader info log\n===============\n";
    EXPECT_EQ(text.find(heading), 0U);
    EXPECT_NE(text.find(heading, 1), std::string::npos) << "appended, not replaced";
    EXPECT_GT(text.size(), 2 * heading.size() + 2);
    expect_gl_errors(4);
}

TEST_F(GlResourcesTest, ErrorCheckReadsTheFlagOnce) {
    EXPECT_TRUE(check_glerror("here"));
    glEnable(0xFFFF);
    EXPECT_FALSE(check_glerror("here"));
    EXPECT_TRUE(check_glerror("here"));
    expect_gl_errors(1);
}

TEST_F(GlResourcesTest, InPlacePassReadsOnlyItsOwnTexel) {
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

TEST_F(GlResourcesTest, WindowIsBoundPlainly) {
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

TEST_F(GlResourcesTest, FramebuffersAreMadeAnew) {
    make_framebuffers();
    for (const GLuint name : fb)
        EXPECT_NE(name, 0U);
    const object_ref<gl_texture_resource> out(
        new gl_texture_resource(8, 16, GL_RGBA32F_ARB, nullptr));
    EXPECT_FLOAT_EQ(run_coordinates(out, out, nullptr, nullptr).at(3, 2).r, 3.5F);
}

}  // namespace
