// SPDX-License-Identifier: MIT
#include "media/thumbnail_database.h"

#include "media/ffmpeg_handles.h"
#include "media/film_maker.h"
#include "media/thumbnail_maker.h"
#include "support/gl_fixture.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

std::string numbered(int number) {
    char name[16];
    std::snprintf(name, sizeof name, "film%04d", number);
    return name;
}

Thumbnail named(const std::string& name) {
    Thumbnail thumbnail;
    thumbnail.name = name;
    return thumbnail;
}

// A picture of one colour per column.
Thumbnail with_picture(const std::string& name, int width, int height) {
    OwnPixelsPtr picture(av_frame_alloc());
    picture->data[0] = static_cast<std::uint8_t*>(
        av_malloc(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3));
    picture->linesize[0] = width * 3;
    picture->width = width;
    picture->height = height;
    for (int i = 0; i < width * height * 3; ++i)
        picture->data[0][i] = static_cast<std::uint8_t>(i * 7);
    Thumbnail thumbnail = named(name);
    thumbnail.picture = picture.release();
    return thumbnail;
}

// The cache without its worker, and a clock of its own.
class ThumbnailCache : public ::testing::Test {
  protected:
    void SetUp() override { clock_ms = 1; }
    void TearDown() override {
        ThumbnailDatabase::Clear();
        clock_ms = -1;
    }

    static bool has(const std::string& name) {
        return ThumbnailDatabase::Lookup(name, false).name == name;
    }
    static void fill(int count) {
        for (int i = 0; i < count; ++i)
            ThumbnailDatabase::Add(named(numbered(i)));
    }
};

TEST_F(ThumbnailCache, UnknownFilmGivesAnEmptyThumbnail) {
    clock_ms = 1234;
    const Thumbnail found = ThumbnailDatabase::Lookup("nothing", false);
    EXPECT_EQ(found.name, "");
    EXPECT_EQ(found.picture, nullptr);
    EXPECT_EQ(found.texture, nullptr);
    EXPECT_EQ(found.last_use, 1234U);
    EXPECT_EQ(found.flat, 0);
}

TEST_F(ThumbnailCache, EntryWithoutPictureIsFoundAsItIs) {
    Thumbnail flat = named("broken");
    flat.flat = 1;
    ThumbnailDatabase::Add(flat);
    clock_ms = 99;
    const Thumbnail found = ThumbnailDatabase::Lookup("broken", true);
    EXPECT_EQ(found.name, "broken");
    EXPECT_EQ(found.picture, nullptr);
    EXPECT_EQ(found.texture, nullptr);
    EXPECT_EQ(found.flat, 1);
    EXPECT_EQ(found.last_use, 99U);
}

TEST_F(ThumbnailCache, HoldsFiveHundredAndThirteen) {
    fill(513);
    for (int i = 0; i < 513; ++i)
        EXPECT_TRUE(has(numbered(i))) << i;
}

TEST_F(ThumbnailCache, NextOneEvictsTheOneUsedLongestAgo) {
    fill(513);
    for (int i = 0; i < 513; ++i) {
        clock_ms = i == 300 ? 10 : 1000 - i;
        ThumbnailDatabase::Lookup(numbered(i), false);
    }
    ThumbnailDatabase::Add(named("new"));
    int gone = 0;
    for (int i = 0; i < 513; ++i)
        gone += !has(numbered(i));
    EXPECT_EQ(gone, 1);
    EXPECT_FALSE(has(numbered(300)));
    EXPECT_TRUE(has("new"));
}

TEST_F(ThumbnailCache, NeverLookedUpGoesFirst) {
    fill(513);
    for (int i = 0; i < 513; ++i) {
        if (i != 512) ThumbnailDatabase::Lookup(numbered(i), false);
    }
    ThumbnailDatabase::Add(named("new"));
    EXPECT_FALSE(has(numbered(512)));
    EXPECT_TRUE(has(numbered(0)));
}

TEST_F(ThumbnailCache, AmongEqualsTheFirstByNameGoes) {
    fill(513);
    ThumbnailDatabase::Add(named("a"));  // evicts film0000
    EXPECT_FALSE(has(numbered(0)));
    EXPECT_TRUE(has(numbered(1)));
    clock_ms = 2;
    EXPECT_TRUE(has("a"));
    ThumbnailDatabase::Add(named("b"));
    EXPECT_FALSE(has(numbered(2))) << "never looked up; film0001 was";
    EXPECT_TRUE(has(numbered(1)));
}

TEST_F(ThumbnailCache, ClearForgetsAll) {
    ThumbnailDatabase::Add(with_picture("film", 4, 4));  // a leak here ends a sanitized run
    ThumbnailDatabase::Add(named("other"));
    EXPECT_TRUE(has("other"));
    ThumbnailDatabase::Clear();
    EXPECT_FALSE(has("film"));
    EXPECT_FALSE(has("other"));
}

TEST_F(ThumbnailCache, DeleteFreesAndForgets) {
    Thumbnail made = with_picture("film", 4, 4);
    ThumbnailDatabase::Delete(made);
    EXPECT_EQ(made.picture, nullptr);
    EXPECT_EQ(made.texture, nullptr);
    ThumbnailDatabase::Delete(made);
    EXPECT_EQ(made.name, "film");
}

class ThumbnailTextures : public GlTest {
  protected:
    void TearDown() override {
        ThumbnailDatabase::Clear();
        ThumbnailDatabase::Lookup("", false);
        GlTest::TearDown();
    }
};

TEST_F(ThumbnailTextures, FirstLookUpMakesTheTexture) {
    // 145 pixels of three bytes: no row ends where a word does.
    const Thumbnail added = with_picture("film", 145, 144);
    ThumbnailDatabase::Add(added);
    const int before = live_textures();
    const Thumbnail found = ThumbnailDatabase::Lookup("film", true);
    ASSERT_NE(found.texture, nullptr);
    EXPECT_EQ(live_textures(), before + 1);
    EXPECT_EQ(found.texture->width(), 145);
    EXPECT_EQ(found.texture->height(), 144);
    EXPECT_EQ(found.texture->internal_format(), GL_RGB8);
    EXPECT_EQ(found.texture->references(), 1);
    EXPECT_EQ(found.picture, added.picture);
    const Image texels = download(found.texture);
    const std::uint8_t* bytes = added.picture->data[0];
    const Image wanted = make_image(145, 144, [&](int x, int y) {
        const std::uint8_t* p = bytes + (y * 145 + x) * 3;
        const auto value = [](int v) { return static_cast<float>(v) / 255.0F; };
        return Rgba{value(p[0]), value(p[1]), value(p[2]), 1.0F};
    });
    EXPECT_LT(largest_difference(texels, wanted), 1e-6F);  // measured: 0
}

TEST_F(ThumbnailTextures, EntryOfThatNameStays) {
    Thumbnail first = with_picture("film", 4, 4);
    first.flat = 1;
    ThumbnailDatabase::Add(first);
    ThumbnailDatabase::Add(with_picture("film", 8, 8));  // a leak here ends a sanitized run
    ThumbnailDatabase::Add(first);                       // the same picture again
    const Thumbnail found = ThumbnailDatabase::Lookup("film", false);
    EXPECT_EQ(found.picture, first.picture);
    EXPECT_EQ(found.flat, 1);
    ASSERT_NE(found.texture, nullptr);
    EXPECT_EQ(found.texture->width(), 4);
    ThumbnailDatabase::Clear();
    EXPECT_EQ(ThumbnailDatabase::Lookup("film", false).name, "");
}

TEST_F(ThumbnailTextures, NextLookUpFindsIt) {
    ThumbnailDatabase::Add(with_picture("film", 16, 9));
    const Thumbnail first = ThumbnailDatabase::Lookup("film", true);
    const int before = live_textures();
    const Thumbnail second = ThumbnailDatabase::Lookup("film", true);
    EXPECT_EQ(second.texture, first.texture);
    EXPECT_EQ(second.texture->references(), 1) << "copies take none";
    EXPECT_EQ(live_textures(), before);
}

TEST_F(ThumbnailTextures, TextureOfAnEvictedFilmLivesUntilTheNextLookUp) {
    ThumbnailDatabase::Add(with_picture("film", 16, 9));
    const Thumbnail drawn = ThumbnailDatabase::Lookup("film", true);
    const int before = live_textures();
    ThumbnailDatabase::Clear();
    EXPECT_EQ(live_textures(), before);
    EXPECT_EQ(drawn.texture->width(), 16) << "still drawn";
    EXPECT_EQ(glIsTexture(drawn.texture->name()), GL_TRUE);
    ThumbnailDatabase::Lookup("film", false);
    EXPECT_EQ(live_textures(), before - 1);
}

TEST_F(ThumbnailTextures, RealThumbnailIsTheTexture) {
    ThumbnailDatabase::Add(create_thumbnail(clip("h264.mp4").c_str()));
    const Thumbnail found = ThumbnailDatabase::Lookup(clip("h264.mp4"), true);
    ASSERT_NE(found.texture, nullptr);
    EXPECT_EQ(found.texture->width(), 192);
    EXPECT_EQ(found.texture->height(), 108);
}

}  // namespace
