// SPDX-License-Identifier: MIT
#include "gpu/texture_cache.h"

#include "support/gl_fixture.h"

#include <thread>

#include "platform/threads.h"

namespace {

class TextureCacheTest : public GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        clear_texture_cache();
        before_ = live_textures();
    }
    int made() const { return live_textures() - before_; }

  private:
    int before_ = 0;
};

TEST_F(TextureCacheTest, EmptyCacheFindsNothingAndStaysEmpty) {
    EXPECT_EQ(find_texture(8, 8, 0), nullptr);
    EXPECT_TRUE(cachedTextures.empty());
}

TEST_F(TextureCacheTest, MissEmptiesTheCacheAndReleasesEachTextureOnce) {
    gl_texture_resource* a = nullptr;
    gl_texture_resource* b = nullptr;
    alloc_texture(a, 8, 16, 0);
    alloc_texture(b, 8, 16, 0);
    object_ref<gl_texture_resource> keeper(a);
    release_texture(a);
    release_texture(b);
    ASSERT_EQ(cachedTextures.size(), 2U);
    EXPECT_EQ(keeper->references(), 2);

    EXPECT_EQ(find_texture(16, 8, 0), nullptr) << "height and width the other way round";
    EXPECT_TRUE(cachedTextures.empty());
    EXPECT_EQ(keeper->references(), 1);
    EXPECT_EQ(made(), 1) << "the other one is gone";
}

TEST_F(TextureCacheTest, MissOnTheFormatAlone) {
    gl_texture_resource* a = nullptr;
    alloc_texture(a, 8, 16, GL_RGBA8);
    release_texture(a);
    EXPECT_EQ(find_texture(8, 16, 0), nullptr);
    EXPECT_TRUE(cachedTextures.empty());
}

TEST_F(TextureCacheTest, HitHandsOverTheCachesReference) {
    gl_texture_resource* a = nullptr;
    EXPECT_TRUE(alloc_texture(a, 8, 16, 0));
    gl_texture_resource* const same = a;
    EXPECT_EQ(a->references(), 1);
    EXPECT_TRUE(release_texture(a));
    EXPECT_EQ(a, nullptr);

    gl_texture_resource* const found = find_texture(8, 16, GL_RGBA16F_ARB);
    EXPECT_EQ(found, same) << "0 stands for the default format";
    EXPECT_EQ(found->references(), 1);
    EXPECT_TRUE(cachedTextures.empty());
    found->release();
}

TEST_F(TextureCacheTest, OldestFitComesFirst) {
    gl_texture_resource* first = nullptr;
    gl_texture_resource* second = nullptr;
    alloc_texture(first, 4, 4, 0);
    alloc_texture(second, 4, 4, 0);
    gl_texture_resource* const oldest = first;
    release_texture(first);
    release_texture(second);
    gl_texture_resource* found = find_texture(4, 4, 0);
    EXPECT_EQ(found, oldest);
    found->release();
}

TEST_F(TextureCacheTest, AllocKeepsATextureOfTheRightSizeWhateverItsFormat) {
    gl_texture_resource* a = nullptr;
    alloc_texture(a, 8, 16, GL_RGBA8);
    gl_texture_resource* const same = a;
    EXPECT_FALSE(alloc_texture(a, 8, 16, 0));
    EXPECT_EQ(a, same);
    EXPECT_TRUE(alloc_texture(a, 8, 17, 0)) << "another size";
    EXPECT_EQ(a->width(), 17);
    EXPECT_EQ(made(), 1) << "the old texture is released, not cached";
    a->release();
}

TEST_F(TextureCacheTest, AllocForAnOwnerDoesNotTouchTheCache) {
    gl_texture_resource* a = nullptr;
    alloc_texture(a, 8, 16, 0);
    release_texture(a);
    object_ref<gl_texture_resource> owned;
    EXPECT_TRUE(alloc_texture(owned, 8, 16, 0));
    EXPECT_EQ(cachedTextures.size(), 1U);
    EXPECT_EQ(owned->references(), 1);
    EXPECT_FALSE(alloc_texture(owned, 8, 16, GL_RGBA8));
    EXPECT_TRUE(alloc_texture(owned, 9, 16, 0));
    EXPECT_EQ(made(), 2);
}

TEST_F(TextureCacheTest, StableSizesMakeNoNewTextures) {
    for (int picture = 0; picture < 5; ++picture) {
        gl_texture_resource* a = nullptr;
        gl_texture_resource* b = nullptr;
        alloc_texture(a, 8, 16, 0);
        alloc_texture(b, 8, 16, 0);
        release_texture(a);
        release_texture(b);
    }
    EXPECT_EQ(made(), 2);
}

TEST_F(TextureCacheTest, TextureDroppedByAnotherThreadIsDeletedAtTheNextLookUp) {
    object_ref<gl_texture_resource> texture(new gl_texture_resource(4, 4, 0, nullptr));
    const GLuint name = texture->name();
    std::thread([&] {
        set_thread_role(ThreadRole::thumbs);
        texture = nullptr;
    }).join();
    EXPECT_TRUE(glIsTexture(name)) << "only the thread with the context may delete it";
    find_texture(1, 1, 0);
    EXPECT_FALSE(glIsTexture(name));
}

}  // namespace
