// SPDX-License-Identifier: MIT
// Programs as objects: compiling, keeping, uniforms.

#include "gpu/gl_shader.h"

#include "gpu/gl_bindings.h"
#include "support/gl_fixture.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

namespace {

using GlShaderTest = GlTest;

const char plain_program[] = R"(
uniform float factor;
void main() { gl_FragColor = vec4(factor); }
)";

const char broken_program[] = "void main() { this is no program; }";

TEST_F(GlShaderTest, ProgramsAreCompiledOnceAndKept) {
    gl_shader_resource* program = compile_shader(plain_program, true);
    EXPECT_EQ(compile_shader(plain_program, true), program);
    EXPECT_EQ(compile_shader(plain_program, false), program);
    EXPECT_EQ(program->references(), 1) << "the memory of it";
}

TEST_F(GlShaderTest, UnkeptProgramBelongsToTheCaller) {
    static const char text[] = "void main() { gl_FragColor = vec4(1.0); }";
    object_ref<gl_shader_resource> first(compile_shader(text, false));
    object_ref<gl_shader_resource> second(compile_shader(text, false));
    EXPECT_NE(static_cast<gl_shader_resource*>(first), static_cast<gl_shader_resource*>(second));
    EXPECT_EQ(first->references(), 1);
}

TEST_F(GlShaderTest, UnknownUniformIsHarmless) {
    gl_shader_resource* program = compile_shader(plain_program, true);
    program->begin();
    EXPECT_EQ(program->getToken("nothing"), -1);
    program->setValue("nothing", 1.0F);
    program->setValue("nothing", paravec2<float>{1, 2});
    EXPECT_GE(program->getToken("factor"), 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    program->end();
}

TEST_F(GlShaderTest, UniformsOfEveryKindReachTheProgram) {
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

// The driver tells of its errors too, in numbers of its own.
class BrokenProgram : public GlShaderTest {
  protected:
    void TearDown() override {
        ignore_gl_errors();
        GlShaderTest::TearDown();
    }
    std::string log() const {
        std::stringstream text;
        text << std::ifstream(folder_.path("GLShader.log")).rdbuf();
        return text.str();
    }

  private:
    TemporaryFolder folder_;
    WorkingFolder inside_{folder_};
};

TEST_F(BrokenProgram, IsReturnedAndLoggedEachTime) {
    const object_ref<gl_shader_resource> first(compile_shader(broken_program, true));
    const object_ref<gl_shader_resource> second(compile_shader(broken_program, true));
    EXPECT_FALSE(first.IsNull());
    EXPECT_NE(static_cast<gl_shader_resource*>(first), static_cast<gl_shader_resource*>(second))
        << "it is not remembered";
    const std::string heading = "Shader info log\n===============\n";
    const std::string text = log();
    EXPECT_EQ(text.find(heading), 0U);
    EXPECT_NE(text.find(heading, 1), std::string::npos) << "appended, not replaced";
    EXPECT_GT(text.size(), 2 * heading.size() + 2);
}

TEST_F(BrokenProgram, DoesNotPileUp) {
    static const char text[] = "void main() { also not a program; }";
    std::set<GLuint> names;
    for (int i = 0; i < 20; ++i)
        names.insert(compile_shader(text, true)->program());
    EXPECT_FALSE(names.contains(0));
    EXPECT_LE(std::count_if(names.begin(), names.end(), [](GLuint n) { return glIsProgram(n); }),
              1);
}

}  // namespace
