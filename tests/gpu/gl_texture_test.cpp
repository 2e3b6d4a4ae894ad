// SPDX-License-Identifier: MIT
#include "gpu/gl_texture.h"

#include "gpu/gl_bindings.h"
#include "support/gl_fixture.h"
#include "support/without_extension.h"

namespace {

using GlTextureTest = GlTest;

TEST_F(GlTextureTest, InternalFormatFollowsTheExtensions) {
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

TEST_F(GlTextureTest, TextureKnowsWhatItIs) {
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

TEST_F(GlTextureTest, TextureTakesItsFirstPicture) {
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

TEST_F(GlTextureTest, FloatsGoInAndOut) {
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

TEST_F(GlTextureTest, UploadGoesTheWaysThatAreOn) {
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

TEST_F(GlTextureTest, UploadByDrawing) {
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

TEST_F(GlTextureTest, SlotsOutsideTheRangeAreIgnored) {
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

TEST_F(GlTextureTest, BindingSetsFiltersAndClampedEdges) {
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

TEST_F(GlTextureTest, ErrorCheckReadsTheFlagOnce) {
    EXPECT_TRUE(check_glerror("here"));
    glEnable(0xFFFF);
    EXPECT_FALSE(check_glerror("here"));
    EXPECT_TRUE(check_glerror("here"));
    expect_gl_errors(1);
}

}  // namespace
