// SPDX-License-Identifier: MIT
// Redraws of the window with pictures that the test makes up.

#include "gpu/video_display.h"

#include "core/settings.h"
#include "gpu/display_geometry.h"
#include "gpu/enhancement_chain.h"
#include "gpu/gl_bindings.h"
#include "gpu/gl_context.h"
#include "gpu/video_overlays.h"
#include "platform/window.h"
#include "support/gl_fixture.h"

#include <array>
#include <cmath>
#include <vector>

namespace {

// Pictures of one colour, told apart by their time stamps.
class MadeUpPictures : public PictureSource {
  public:
    void fill_picture(const VideoPicture& pic, std::uint8_t* destination,
                      BufferForm form) override {
        fills.push_back({pic.pts, form});
        const auto grey = static_cast<std::uint8_t>(pic.pts);
        if (form != BufferForm::rgb) {
            const auto luma =
                static_cast<std::size_t>(pic.width) * static_cast<std::size_t>(pic.height);
            std::fill_n(destination, luma, grey);
            std::fill_n(destination + luma, luma / 2, std::uint8_t{128});
        } else {
            std::fill_n(destination, pic.width * 3 * pic.height, grey);
        }
    }
    double video_clock() override { return 12.5; }
    double master_clock() override { return 13.5; }

    struct Fill {
        double pts;
        BufferForm form;
    };
    std::vector<Fill> fills;
};

PostprocessingInfo hooked;
int hook_calls = 0;
void note_hook(PostprocessingInfo* info) {
    hooked = *info;
    ++hook_calls;
}

class VideoDisplayTest : public GlTest {
  protected:
    static constexpr int width = 64;
    static constexpr int height = 48;

    void SetUp() override {
        GlTest::SetUp();
        reset_video_scaling_animation();
        // Ordinary playback: no interpolation, nothing enhanced.
        master_settings.temporal_upscaling_factor.setValue(0);
        hook_calls = 0;
    }
    void TearDown() override {
        Settings& s = master_settings;
        for (Value* value : {&s.temporal_upscaling_factor, &s.spatial_zoom, &s.offload_decoding,
                             &s.demo_mode, &s.upscaling_algorithm, &s.spatial_upscaling_factor,
                             &s.brightness, &s.show_original}) {
            value->setValue(value->default_value());
        }
        for (VideoPicture& slot : slots_)
            delete_pixel_buffer(slot);
        GlTest::TearDown();
    }

    // Puts a picture whose grey is `grey` into a slot.
    VideoPicture& queue(int slot, int grey, bool yuv = true) {
        VideoPicture& pic = slots_[static_cast<std::size_t>(slot)];
        if (!pic.pbo) {
            pic.width = width;
            pic.height = height;
            pic.block_width = pic.block_height = 8;
            pic.grid_width = 8;
            pic.grid_height = 6;
            make_pixel_buffer(pic);
        }
        pic.allocated = 1;
        pic.pts = grey;
        pic.number = slot;
        pic.yuv_direct = yuv;
        pic.clear_flags();
        pic.ready = true;
        return pic;
    }

    bool display(int read_index, int queued) {
        const DisplayView view{.screen_width = window_width,
                               .screen_height = window_height,
                               .slots = slots_.data(),
                               .read_index = read_index,
                               .queued = queued,
                               .shown_index = shown_index_,
                               .paused = paused_,
                               .rewind = rewind_,
                               .fast_forward = false,
                               .step = step_,
                               .pixel_buffers = true,
                               .show_motion_vectors = show_vectors_,
                               .show_quantization = show_quantisers_,
                               .phase_step = 0,
                               .phase_fraction = phase_,
                               .hook = hook_,
                               .playback_speed_index = 4,
                               .source = source_,
                               .staging = staging_,
                               .output = output_,
                               .shown = shown_,
                               .planes = planes_};
        return display_picture(view);
    }

    // Red of the window's middle, 0 to 255.
    int middle() {
        return static_cast<int>(
            std::lrint(window().at(window_width / 2, window_height / 2).r * 255));
    }

    static constexpr int converted(int grey) { return grey - 8; }

    std::array<VideoPicture, picture_slots> slots_;
    MadeUpPictures source_;
    object_ref<gl_texture_resource> staging_, output_, shown_;
    DirectPlanes planes_;
    int shown_index_ = -1;
    bool paused_ = false;
    bool rewind_ = false;
    bool step_ = false;
    bool show_vectors_ = false;
    bool show_quantisers_ = false;
    float phase_ = 0.0F;
    PostprocessingCallback hook_ = nullptr;
};

TEST_F(VideoDisplayTest, NothingThereClearsTheWindow) {
    EXPECT_FALSE(display(0, 0));
    const Image image = window();
    EXPECT_NEAR(image.at(0, 0).r, 5.0F / 255.0F, 0.003F);
    EXPECT_NEAR(image.at(160, 120).b, 5.0F / 255.0F, 0.003F);
}

TEST_F(VideoDisplayTest, PictureLiesInTheMiddleOfTheWindow) {
    queue(0, 208);
    EXPECT_TRUE(display(0, 1));
    const Image image = window();
    // 4:3 in 320 x 240: the whole window.
    for (const auto& [x, y] : {std::pair{1, 1}, {318, 1}, {1, 238}, {318, 238}, {160, 120}}) {
        EXPECT_NEAR(image.at(x, y).g * 255, converted(208), 2.0F) << x << ", " << y;
    }
    reset_video_scaling_animation();
    master_settings.spatial_zoom.setValue(2);
    queue(0, 208);
    display(0, 1);
    const Image plain = window();
    EXPECT_NEAR(plain.at(127, 120).g * 255, 5, 1.0F);
    EXPECT_NEAR(plain.at(129, 120).g * 255, converted(208), 2.0F);
    EXPECT_NEAR(plain.at(190, 120).g * 255, converted(208), 2.0F);
    EXPECT_NEAR(plain.at(193, 120).g * 255, 5, 1.0F);
}

TEST_F(VideoDisplayTest, UntouchedPicturesNeedNoTexture) {
    VideoPicture& pic = queue(0, 100);
    display(0, 1);
    EXPECT_TRUE(pic.rgb.IsNull());
    EXPECT_TRUE(shown_.IsNull());
    EXPECT_TRUE(pic.seen);
    EXPECT_FALSE(pic.uploaded);
    EXPECT_NEAR(middle(), converted(100), 2);
}

TEST_F(VideoDisplayTest, BothRoadsShowTheSame) {
    for (const int grey : {16, 77, 180, 235}) {
        queue(0, grey);
        display(0, 1);
        const Image direct = window();
        master_settings.temporal_upscaling_factor.setValue(1);
        VideoPicture& pic = queue(0, grey);
        display(0, 1);
        EXPECT_TRUE(pic.uploaded);
        EXPECT_TRUE(pic.converted);
        EXPECT_LE(largest_difference(window(), direct, 3), 1.01F / 255.0F);
        master_settings.temporal_upscaling_factor.setValue(0);
    }
}

TEST_F(VideoDisplayTest, EveryPictureIsFilledOnceAndOnlyWhileQueued) {
    queue(0, 50);
    queue(1, 60);
    queue(2, 70);
    slots_[3].ready = false;
    display(0, 3);
    ASSERT_EQ(source_.fills.size(), 3U);
    EXPECT_EQ(source_.fills[0].form, BufferForm::interleaved);
    display(0, 3);
    EXPECT_EQ(source_.fills.size(), 3U);
    queue(3, 80);
    display(1, 2);
    EXPECT_EQ(source_.fills.size(), 3U) << "slot 3 is not queued: it may be being written";
    display(1, 3);
    EXPECT_EQ(source_.fills.size(), 4U);
}

TEST_F(VideoDisplayTest, UnfinishedSlotIsNotShown) {
    queue(0, 50);
    display(0, 1);
    queue(1, 90).ready = false;
    display(1, 1);
    EXPECT_NEAR(middle(), converted(50), 2);
    EXPECT_EQ(source_.fills.size(), 1U);
}

TEST_F(VideoDisplayTest, ChangeOfConversionRefillsWhatWaits) {
    queue(0, 50);
    queue(1, 60);
    display(0, 2);
    master_settings.offload_decoding.setValue(0);
    display(1, 1);
    ASSERT_EQ(source_.fills.size(), 3U);
    EXPECT_EQ(source_.fills[2].pts, 60);
    EXPECT_EQ(source_.fills[2].form, BufferForm::rgb);
    EXPECT_TRUE(slots_[1].uploaded);
    EXPECT_NEAR(middle(), 60, 2) << "plain RGB is shown as it is";
}

TEST_F(VideoDisplayTest, OtherFormatsAreConvertedByTheSource) {
    queue(0, 90, false);
    display(0, 1);
    ASSERT_EQ(source_.fills.size(), 1U);
    EXPECT_EQ(source_.fills[0].form, BufferForm::rgb);
    EXPECT_NEAR(middle(), 90, 2);
}

TEST_F(VideoDisplayTest, BrightnessReachesEveryRoad) {
    master_settings.brightness.setValue(0.2F);
    queue(0, 90, false);
    display(0, 1);
    EXPECT_NEAR(middle(), 90 + 51, 2);
    queue(0, 90);
    display(0, 1);
    EXPECT_NEAR(middle(), converted(90) + 51, 2);
}

TEST_F(VideoDisplayTest, PausedRedrawTouchesNoPicture) {
    queue(0, 50);
    display(0, 1);
    VideoPicture& next = queue(1, 90);
    paused_ = true;
    display(1, 1);
    EXPECT_NEAR(middle(), converted(50), 2);
    EXPECT_FALSE(next.seen || next.uploaded);
    EXPECT_EQ(shown_index_, 0);
    master_settings.demo_mode.setValue(1);
    display(1, 1);
    EXPECT_NEAR(middle(), converted(50), 2) << "also not when a setting changes";
}

TEST_F(VideoDisplayTest, StepShowsOnePictureAndIsUsedUp) {
    master_settings.temporal_upscaling_factor.setValue(4);
    queue(3, 40);
    display(3, 1);
    queue(0, 50);
    paused_ = true;
    step_ = true;
    phase_ = 3.25F;
    display(0, 1);
    EXPECT_FALSE(step_);
    EXPECT_EQ(phase_, 1.0F);
    EXPECT_NEAR(middle(), converted(50), 2) << "the picture itself, not one between two";
    queue(1, 90);
    display(1, 1);
    EXPECT_NEAR(middle(), converted(50), 2);
}

TEST_F(VideoDisplayTest, EmptyQueueKeepsTheLastPicture) {
    queue(0, 50);
    queue(1, 90);
    display(0, 2);
    EXPECT_TRUE(display(1, 0));
    EXPECT_NEAR(middle(), converted(50), 2) << "never a slot out of order";
}

TEST_F(VideoDisplayTest, DemoModeDrawsItsLine) {
    master_settings.demo_mode.setValue(1);
    queue(0, 120);
    display(0, 1);
    const Image image = window();
    // The line is texel 32 of 64, five pixels wide here.
    const Rgba& line = image.at(162, 100);
    EXPECT_GT(line.r, 0.9F);
    EXPECT_LT(line.g, 0.1F);
    EXPECT_NEAR(image.at(100, 100).g * 255, converted(120), 2.0F);
    EXPECT_NEAR(image.at(250, 100).g * 255, converted(120), 2.0F);
}

TEST_F(VideoDisplayTest, HookSeesEveryPictureOnce) {
    hook_ = note_hook;
    master_settings.temporal_upscaling_factor.setValue(1);
    VideoPicture& pic = queue(0, 120);
    phase_ = 1.0F;
    display(0, 1);
    display(0, 1);
    EXPECT_EQ(hook_calls, 1);
    EXPECT_TRUE(pic.is_enhanced);
    EXPECT_EQ(hooked.size, 80U);
    EXPECT_EQ(hooked.texture, pic.enhanced->name());
    EXPECT_EQ(hooked.target, pic.enhanced->target());
    EXPECT_EQ(hooked.internal_format, static_cast<unsigned>(GL_RGBA16F_ARB));
    EXPECT_EQ(hooked.pixel_format, static_cast<unsigned>(GL_RGBA));
    EXPECT_EQ(hooked.width, width);
    EXPECT_EQ(hooked.height, height);
    EXPECT_EQ(hooked.spatial_factor, 1);
    EXPECT_EQ(hooked.temporal_factor, 2);
    EXPECT_EQ(hooked.block_width, 8);
    EXPECT_EQ(hooked.block_height, 8);
    EXPECT_EQ(hooked.playback_speed_index, 4);
    EXPECT_EQ(hooked.pts, 120.0);
    EXPECT_EQ(hooked.phase, 0.5);
    EXPECT_EQ(hooked.video_clock, 12.5);
    EXPECT_EQ(hooked.master_clock, 13.5);
}

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

TEST_F(VideoDisplayTest, QuantisersTintTheirBlocks) {
    VideoPicture& pic = queue(0, 8);
    pic.quantization_table.allocate(6, 8);
    pic.quantization_table.fill(0);
    pic.quantization_table[1][2] = 50;
    pic.quantization_table[5][7] = 127;
    pic.quantization_table[0][0] = 25;
    show_quantisers_ = true;
    display(0, 1);
    const Image image = window();
    // A cell is 40 x 40 pixels here.
    EXPECT_NEAR(image.at(100, 60).r, 0.6F, 0.01F) << "full red at 60 percent";
    EXPECT_NEAR(image.at(300, 220).r, 0.6F, 0.01F) << "coarser ones count as 50";
    EXPECT_NEAR(image.at(20, 20).r, 0.6F * 0.0625F, 0.01F) << "the fourth power of a half";
    EXPECT_NEAR(image.at(60, 60).r, 0.0F, 0.01F);
    EXPECT_EQ(image.at(100, 60).g, image.at(60, 60).g);
}

TEST_F(VideoDisplayTest, VectorsAreDrawnInRed) {
    VideoPicture& pic = queue(0, 8);
    pic.motion_vectors.allocate(7, 9);
    pic.motion_vectors[3][4] = {12, 0};
    show_vectors_ = true;
    display(0, 1);
    const Image image = window();
    // The cell's middle is at (36, 28) in the picture, (180, 140) in the window; 12 pixels are 60
    // here.
    int red = 0;
    for (int x = 182; x < 238; ++x) {
        bool here = false;
        for (int y = 138; y <= 142; ++y)
            here |= image.at(x, y).r > 0.9F && image.at(x, y).g < 0.1F;
        red += here;
    }
    EXPECT_GE(red, 54) << "of 56 columns";
    EXPECT_LT(image.at(250, 140).r, 0.1F);
}

TEST(Overlays, StrokesOfAnArrow) {
    EXPECT_FLOAT_EQ(arrow_stroke_length({10, 0}), 2.0F) << "0.4 times 10, but not more than 2";
    EXPECT_FLOAT_EQ(arrow_stroke_length({6, 8}), 2.0F);
    EXPECT_FLOAT_EQ(arrow_stroke_length({3, 4}), 2.0F);
    EXPECT_FLOAT_EQ(arrow_stroke_length({0, -2}), 0.8F);
    EXPECT_FLOAT_EQ(arrow_stroke_length({0, 0}), 0.0F);
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
