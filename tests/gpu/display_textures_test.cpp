// SPDX-License-Identifier: MIT
// What a redraw of the window uploads and keeps.

#include "gpu/enhancement_chain.h"
#include "support/display_fixture.h"

namespace {

TEST_F(VideoDisplayTest, VectorsAreUploadedWithTheirNeighbours) {
    VideoPicture& pic = queue(0, 120);
    pic.motion_vectors.allocate(7, 9);
    for (int r = 0; r < 7; ++r) {
        for (int c = 0; c < 9; ++c)
            pic.motion_vectors[r][c] = {10 * r + c, -(10 * r + c)};
    }
    master_settings.temporal_upscaling_factor.setValue(1);
    display(0, 1);
    ASSERT_FALSE(pic.motion.IsNull());
    EXPECT_EQ(pic.motion->width(), 8);
    EXPECT_EQ(pic.motion->height(), 6);
    const Image texels = download(pic.motion);
    for (const auto& [c, r] : {std::pair{0, 0}, {7, 5}, {3, 4}}) {
        EXPECT_EQ(texels.at(c, r).r, static_cast<float>(10 * r + c));
        EXPECT_EQ(texels.at(c, r).g, -static_cast<float>(10 * r + c));
        EXPECT_EQ(texels.at(c, r).b, static_cast<float>(10 * (r + 1) + c + 1));
        EXPECT_EQ(texels.at(c, r).a, -static_cast<float>(10 * (r + 1) + c + 1));
    }
}

TEST_F(VideoDisplayTest, SizesThatStayMakeNoNewTextures) {
    master_settings.temporal_upscaling_factor.setValue(4);
    for (int i = 0; i < 8; ++i) {
        queue(i % 4, 50 + i);
        display(i % 4, 1);
    }
    const int textures_then = live_textures();
    for (int i = 0; i < 20; ++i) {
        queue(i % 4, 50 + i);
        display(i % 4, 1);
    }
    EXPECT_EQ(live_textures(), textures_then);
}

// Texture counts of the slots after a redraw of each of 20 pictures.
struct Held {
    long rgb = 0;
    long enhanced = 0;
};
Held held_by(const std::array<VideoPicture, picture_slots>& slots) {
    const auto count = [&slots](auto member) {
        return std::count_if(slots.begin(), slots.end(),
                             [member](const VideoPicture& p) { return !(p.*member).IsNull(); });
    };
    return {count(&VideoPicture::rgb), count(&VideoPicture::enhanced)};
}

TEST_F(VideoDisplayTest, TwoPicturesHaveTextures) {
    master_settings.temporal_upscaling_factor.setValue(4);
    const int before = live_textures();
    for (int i = 0; i < 20; ++i) {
        queue(i % 4, 50 + i).number = i;
        display(i % 4, 1);
        EXPECT_LE(held_by(slots_).rgb, 2) << i;
        EXPECT_EQ(held_by(slots_).enhanced, 0) << "nothing enlarges " << i;
    }
    // Two pictures, their vectors, the output and the packed YUV.
    EXPECT_LE(live_textures() - before, 6);

    master_settings.spatial_upscaling_factor.setValue(1);
    for (int i = 20; i < 40; ++i) {
        queue(i % 4, 50 + i).number = i;
        display(i % 4, 1);
        EXPECT_LE(held_by(slots_).rgb, 2) << i;
        EXPECT_LE(held_by(slots_).enhanced, 2) << i;
    }
    EXPECT_EQ(held_by(slots_).enhanced, 2);

    master_settings.spatial_upscaling_factor.setValue(0);
    for (int i = 40; i < 44; ++i) {
        queue(i % 4, 50 + i).number = i;
        display(i % 4, 1);
    }
    EXPECT_EQ(held_by(slots_).enhanced, 0) << "given back once nothing enlarges any more";
}

TEST_F(VideoDisplayTest, SizeChangeMakesNewOnes) {
    master_settings.temporal_upscaling_factor.setValue(1);
    queue(0, 50);
    display(0, 1);
    VideoPicture& pic = slots_[1];
    pic.width = 33;
    pic.height = 17;
    make_pixel_buffer(pic);
    pic.block_width = pic.block_height = 8;
    pic.grid_width = 6;
    pic.grid_height = 4;
    pic.pts = 90;
    pic.ready = true;
    display(1, 1);
    EXPECT_EQ(pic.rgb->width(), 33);
    EXPECT_NEAR(middle(), 90, 2);
}

TEST_F(VideoDisplayTest, SurfacesAreShownToo) {
    // 5 x 3: the surface's rows are padded.
    VideoPicture& pic = slots_[0];
    pic.width = 5;
    pic.height = 3;
    pic.surface.reset(SDL_CreateRGBSurface(SDL_SWSURFACE, 5, 3, 24, 0xFF, 0xFF00, 0xFF0000, 0));
    ASSERT_NE(pic.surface->pitch, 15);
    for (int y = 0; y < 3; ++y) {
        auto* row = static_cast<std::uint8_t*>(pic.surface->pixels) + y * pic.surface->pitch;
        for (int x = 0; x < 5; ++x) {
            row[3 * x] = static_cast<std::uint8_t>(40 * x);
            row[3 * x + 1] = static_cast<std::uint8_t>(80 * y);
            row[3 * x + 2] = 200;
        }
    }
    pic.ready = true;
    object_ref<gl_texture_resource> staging;
    upload_picture(pic, {false, false, staging});
    const Image image = download(pic.rgb);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            EXPECT_NEAR(image.at(x, y).r * 255, 40 * x, 0.1F);
            EXPECT_NEAR(image.at(x, y).g * 255, 80 * y, 0.1F);
            EXPECT_NEAR(image.at(x, y).b * 255, 200, 0.1F);
        }
    }
}

TEST_F(VideoDisplayTest, FactorsFitTheTextures) {
    const int kept = max_texture_size;
    max_texture_size = 4096;
    master_settings.spatial_upscaling_factor.setValue(3);
    EXPECT_EQ(enhancement_factors(640, 360).spatial, 4);
    EXPECT_EQ(enhancement_factors(1920, 1080).spatial, 2);
    EXPECT_EQ(enhancement_factors(1080, 1920).spatial, 2);
    EXPECT_EQ(enhancement_factors(4000, 100).spatial, 1);
    EXPECT_EQ(enhancement_factors(640, 360).temporal, 1);
    max_texture_size = kept;
}

}  // namespace
