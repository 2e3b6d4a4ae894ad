// SPDX-License-Identifier: MIT
#include "gpu/enhancement_chain.h"

#include "gpu/cpu_twins.h"
#include "gpu/display_effects.h"
#include "gpu/spatial_denoising.h"
#include "gpu/spatial_sr.h"
#include "gpu/temporal_upscaling.h"
#include "gpu/texture_cache.h"

#include "support/chain_fixture.h"
#include "support/pass_recorder.h"

#include <algorithm>
#include <cmath>

namespace {

using EnhancementChainTest = ChainTest;
using Names = std::vector<std::string>;

constexpr int width = 40;
constexpr int height = 26;

Image film(float shift) {
    return film_like_image(width, height, shift, shift * 0.5F);
}

long count(const Names& passes, const std::string& name) {
    return std::count(passes.begin(), passes.end(), name);
}

const std::string sr_end = "spatial_sr/code_frag_VII";
const std::string sr_reference = "spatial_sr/code_frag_Ib";
const std::string denoise_end = "spatial_denoising/code_frag_VII";
const std::string denoise_reference = "spatial_denoising/code_frag_Ib";

TEST_F(EnhancementChainTest, NeutralSettingsShowThePictureItself) {
    queue(0, film(0));
    const PassRecorder recorder;
    const Image shown = show(0);
    EXPECT_LE(largest_difference(shown, as_8_bits(film(0)), 3), 1e-6F);
    EXPECT_TRUE(recorder.passes().empty()) << "no pass runs";
    EXPECT_EQ(static_cast<gl_texture_resource*>(shown_),
              static_cast<gl_texture_resource*>(slots_[0].rgb));
}

TEST_F(EnhancementChainTest, EveryFactorShowsTheWholePicture) {
    for (int f = 1; f <= 4; ++f) {
        for (const int algorithm : {0, 1}) {
            set(master_settings.spatial_upscaling_factor, f - 1);
            set(master_settings.upscaling_algorithm, algorithm);
            set(master_settings.denoising_level, 60);
            queue(0, film(0));
            const Image shown = show(0);
            ASSERT_EQ(shown.width(), width * f);
            ASSERT_EQ(shown.height(), height * f);
            // Where the filters find nothing to do the picture is its enlargement: none of it is
            // cut off or shifted (measured 0.0041 for super-resolution, 0.0005 for denoising).
            const Difference d = difference(shown, twins::sr_Ia(as_8_bits(film(0)), f), 3);
            EXPECT_LE(d.mean, 0.006F) << f << " " << algorithm;
        }
    }
}

TEST_F(EnhancementChainTest, PictureIsEnhancedOnceAndShownAgain) {
    set(master_settings.spatial_upscaling_factor, 1);
    queue(0, film(0));
    PassRecorder recorder;
    const Image first = show(0);
    EXPECT_EQ(count(recorder.passes(), sr_end), 1);
    recorder.clear();
    EXPECT_EQ(largest_difference(show(0), first), 0.0F);
    EXPECT_TRUE(recorder.passes().empty());
}

TEST_F(EnhancementChainTest, EnhancedPreviousPictureIsTheReference) {
    for (const int algorithm : {0, 1}) {
        set(master_settings.spatial_upscaling_factor, 1);
        set(master_settings.upscaling_algorithm, algorithm);
        queue(0, film(0));
        queue(1, film(1));
        show(0);
        const PassRecorder recorder;
        show(1);
        EXPECT_EQ(count(recorder.passes(), algorithm ? denoise_reference : sr_reference), 1);
        EXPECT_EQ(count(recorder.passes(), algorithm ? denoise_end : sr_end), 1);
    }
}

TEST_F(EnhancementChainTest, PreviousPictureShownWithoutTheFilterIsMadeUpFor) {
    queue(0, film(0));
    queue(1, film(1));
    show(0);
    set(master_settings.upscaling_algorithm, 1);
    const PassRecorder recorder;
    show(1);
    EXPECT_TRUE(slots_[0].is_enhanced);
    EXPECT_EQ(count(recorder.passes(), denoise_end), 2) << "both";
    EXPECT_EQ(recorder.passes().front(), "spatial_sr/code_frag_Ia")
        << "the first without a reference";
    EXPECT_EQ(count(recorder.passes(), denoise_reference), 1);
}

TEST_F(EnhancementChainTest, PictureThatWasNeverShownIsNoReference) {
    set(master_settings.spatial_upscaling_factor, 1);
    set(master_settings.temporal_upscaling_factor, 3);
    queue(0, film(0));
    show(0);
    queue(0, film(9));  // the slot's next picture is dropped
    queue(1, film(10));
    const PassRecorder recorder;
    show(1);
    EXPECT_FALSE(slots_[0].is_enhanced);
    EXPECT_EQ(count(recorder.passes(), sr_reference), 0);
    EXPECT_EQ(count(recorder.passes(), "temporal_upscaling/code_frag_overlapping_blocks_4nb"), 0);
}

TEST_F(EnhancementChainTest, PreviousPictureOfAnotherSizeIsNoReference) {
    set(master_settings.upscaling_algorithm, 1);
    set(master_settings.temporal_upscaling_factor, 3);
    queue(0, film_like_image(width + 16, height));
    queue(1, film(1));
    show(0);
    const PassRecorder recorder;
    show(1);
    EXPECT_EQ(count(recorder.passes(), denoise_reference), 0);
    EXPECT_EQ(recorder.passes().back(), denoise_end) << "and nothing to interpolate with";
}

// Methods

class MethodTest : public ChainTest {
  protected:
    // The passes of the second of two pictures.
    Names passes_of_second(Vectors first, Vectors second) {
        queue(0, film(0), first);
        queue(1, film(1), second);
        show(0);
        const PassRecorder recorder;
        phase_step_ = 1;
        show(1);
        return recorder.passes();
    }
    void interpolate(int temporal, int method) {
        set(master_settings.temporal_upscaling_factor, temporal - 1);
        set(master_settings.motion_interpolation_method, method);
    }
    const Names blend_{"temporal_upscaling/code_frag_blend"};
};

TEST_F(MethodTest, SettingDecides) {
    const Names expected[] = {blend_,
                              {"temporal_upscaling/code_frag_overlapping_blocks_4nb"},
                              {"temporal_upscaling/code_frag_overlapping_blocks_8nb"}};
    for (int method = 0; method < 3; ++method) {
        interpolate(2, method);
        EXPECT_EQ(passes_of_second(Vectors::random, Vectors::random),
                  expected[static_cast<std::size_t>(method)]);
    }
}

TEST_F(MethodTest, WithoutVectorsOnEitherSideItIsBlending) {
    for (const int method : {0, 1, 2}) {
        interpolate(2, method);
        EXPECT_EQ(passes_of_second(Vectors::none, Vectors::random), blend_);
        EXPECT_EQ(passes_of_second(Vectors::random, Vectors::none), blend_);
        EXPECT_EQ(passes_of_second(Vectors::none, Vectors::none), blend_);
    }
}

TEST_F(MethodTest, NothingIsInterpolatedWithOnePicturePerPicture) {
    interpolate(1, 1);
    EXPECT_TRUE(passes_of_second(Vectors::random, Vectors::random).empty());
}

TEST_F(MethodTest, NothingIsInterpolatedWhileScanning) {
    interpolate(4, 1);
    rewind_ = true;
    EXPECT_TRUE(passes_of_second(Vectors::random, Vectors::random).empty());
    rewind_ = false;
    fast_forward_ = true;
    EXPECT_TRUE(passes_of_second(Vectors::random, Vectors::random).empty());
}

TEST_F(MethodTest, PhaseIsStepAndFraction) {
    interpolate(5, 0);
    queue(0, film(0));
    queue(1, film(1));
    show(0);
    const Image prev = as_8_bits(film(0));
    const Image cur = as_8_bits(film(1));
    phase_step_ = 3;
    expect_16_bits("blend", (show(1), shown_), twins::blend(prev, cur, 3, 5));
    phase_step_ = 0;
    phase_fraction_ = 2.9F;
    expect_16_bits("blend", (show(1), shown_), twins::blend(prev, cur, 2, 5));
    interpolate(5, 1);
    const Image expected = twins::overlapping_4nb(prev, cur, slots_[1], 2.9F, 5, 1);
    expect_16_bits("4nb", (show(1), shown_), expected);
}

TEST_F(MethodTest, StepShowsThePictureItselfOnce) {
    interpolate(5, 1);
    queue(0, film(0));
    queue(1, film(1));
    show(0);
    step_ = true;
    phase_fraction_ = 0.25F;
    const Image shown = show(1);
    EXPECT_LE(largest_difference(shown, as_8_bits(film(1)), 3), 1e-6F);
    EXPECT_FALSE(step_);
    EXPECT_EQ(phase_fraction_, 1.0F);
    EXPECT_GT(largest_difference(show(1), as_8_bits(film(1)), 3), 0.01F) << "and then interpolates";
}

TEST_F(MethodTest, EnhancedPicturesAreInterpolatedAtTheirSize) {
    for (const int f : {2, 3}) {
        set(master_settings.spatial_upscaling_factor, f - 1);
        interpolate(2, 1);
        queue(0, film(0));
        queue(1, film(1));
        show(0);
        phase_step_ = 1;
        const Image shown = show(1);
        expect_16_bits("4nb", shown_,
                       twins::overlapping_4nb(download(slots_[0].enhanced),
                                              download(slots_[1].enhanced), slots_[1], 1, 2, f));
        EXPECT_EQ(shown.width(), width * f);
    }
}

// Sharpening and the demonstration

TEST_F(EnhancementChainTest, SharpeningComesAfterTheInterpolation) {
    set(master_settings.sharpening_level, 0.4);
    set(master_settings.temporal_upscaling_factor, 1);
    queue(0, film(0));
    queue(1, film(1));
    show(0);
    phase_step_ = 1;
    const PassRecorder recorder;
    show(1);
    const Names expected{"temporal_upscaling/code_frag_overlapping_blocks_4nb",
                         "spatial_denoising/hor_filter", "spatial_denoising/ver_filter"};
    EXPECT_EQ(recorder.passes(), expected);
    const Held interpolated =
        hold(twins::overlapping_4nb(as_8_bits(film(0)), as_8_bits(film(1)), slots_[1], 1, 2, 1), 0);
    const Image rows = hold(twins::hor_filter(interpolated.image), 0).image;
    // Half precision after each of three passes (measured 0.0010).
    const Difference d =
        difference(download(shown_), twins::ver_filter(rows, interpolated.image, 0.4F), 3);
    EXPECT_LE(d.largest, 0.002F);
}

TEST_F(EnhancementChainTest, DenoiserSharpensForItself) {
    set(master_settings.upscaling_algorithm, 1);
    set(master_settings.sharpening_level, 0.4);
    queue(0, film(0));
    const PassRecorder recorder;
    show(0);
    EXPECT_EQ(count(recorder.passes(), "spatial_denoising/ver_filter"), 1);
    EXPECT_EQ(recorder.passes().back(), denoise_end);
}

bool red(const Rgba& texel) {
    return texel.r == 1.0F && texel.g == 0.0F && texel.b == 0.0F;
}

TEST_F(EnhancementChainTest, DemoLineStandsInTheMiddleAtEveryFactor) {
    for (int f = 1; f <= 4; ++f) {
        for (const int w : {40, 41}) {
            set(master_settings.spatial_upscaling_factor, f - 1);
            set(master_settings.sharpening_level, 1);
            set(master_settings.demo_mode, 0);
            const Image image = film_like_image(w, height);
            queue(0, image);
            const Image enhanced = show(0);
            set(master_settings.demo_mode, 1);
            const Image split = show(0);
            const Image original = as_8_bits(image);
            const int line = w * f / 2;
            for (int y = 0; y < height * f; ++y) {
                ASSERT_TRUE(red(split.at(line, y))) << f;
                for (int x = 0; x < line; ++x) {
                    const Rgba expected =
                        original.linear((static_cast<float>(x) + 0.5F) / static_cast<float>(f),
                                        (static_cast<float>(y) + 0.5F) / static_cast<float>(f));
                    // Half precision (measured 0.0005).
                    ASSERT_NEAR(split.at(x, y).g, expected.g, 0.001F) << x << "," << y;
                }
                for (int x = line + 1; x < w * f; ++x)
                    ASSERT_EQ(split.at(x, y).g, enhanced.at(x, y).g) << x << "," << y;
            }
        }
    }
}

TEST_F(EnhancementChainTest, ShowOriginalCoversEverything) {
    set(master_settings.show_original, 1);
    set(master_settings.sharpening_level, 1);
    queue(0, film(0));
    const Image shown = show(0);
    // Half precision of 8-bit values (measured 0.00049).
    EXPECT_LE(largest_difference(shown, as_8_bits(film(0)), 3), 0.0005F);
}

TEST_F(EnhancementChainTest, SplitIsTheSameWithoutTextureBarriers) {
    set(master_settings.demo_mode, 1);
    set(master_settings.sharpening_level, 0.6);
    set(master_settings.spatial_upscaling_factor, 1);
    queue(0, film(0));
    const Image expected = show(0);
    const GLboolean arb = std::exchange(__GLEW_ARB_texture_barrier, GL_FALSE);
    const GLboolean nv = std::exchange(__GLEW_NV_texture_barrier, GL_FALSE);
    queue(0, film(0));
    const Image found = show(0);
    __GLEW_ARB_texture_barrier = arb;
    __GLEW_NV_texture_barrier = nv;
    EXPECT_EQ(largest_difference(found, expected), 0.0F);
}

// The hook

std::vector<PostprocessingInfo> hooked;

TEST_F(EnhancementChainTest, HookSeesEveryPictureOnceAndMayChangeIt) {
    hooked.clear();
    hook_ = [](PostprocessingInfo* info) {
        hooked.push_back(*info);
        const std::vector<float> white(static_cast<std::size_t>(width * height * 4), 1.0F);
        glBindTexture(info->target, info->texture);
        glTexSubImage2D(info->target, 0, 0, 0, width, height, GL_RGBA, GL_FLOAT, white.data());
        glBindTexture(info->target, 0);
    };
    set(master_settings.temporal_upscaling_factor, 3);
    queue(0, film(0));
    queue(1, film(1));
    show(0);
    phase_step_ = 1;
    show(1);
    const Image shown = show(1);
    ASSERT_EQ(hooked.size(), 2U);
    const PostprocessingInfo& info = hooked[1];
    EXPECT_EQ(info.size, 80U);
    EXPECT_EQ(info.texture, slots_[1].enhanced->name());
    EXPECT_EQ(info.target, slots_[1].enhanced->target());
    EXPECT_EQ(info.internal_format, static_cast<std::uint32_t>(GL_RGBA16F_ARB));
    EXPECT_EQ(info.pixel_format, static_cast<std::uint32_t>(GL_RGBA));
    EXPECT_EQ(info.width, width);
    EXPECT_EQ(info.height, height);
    EXPECT_EQ(info.spatial_factor, 1);
    EXPECT_EQ(info.temporal_factor, 4);
    EXPECT_EQ(info.block_width, 8);
    EXPECT_EQ(info.block_height, 8);
    EXPECT_EQ(info.playback_speed_index, 4);
    EXPECT_EQ(info.pts, 1.0);
    EXPECT_EQ(info.phase, 0.25);
    EXPECT_EQ(info.video_clock, 12.5);
    EXPECT_EQ(info.master_clock, 13.5);
    EXPECT_EQ(shown.at(5, 5).g, 1.0F) << "what the hook wrote is shown";
}

TEST_F(EnhancementChainTest, PreviousPictureIsMadeUpForAndHookedFirst) {
    hooked.clear();
    queue(0, film(0));
    queue(1, film(1));
    show(0);
    hook_ = [](PostprocessingInfo* info) { hooked.push_back(*info); };
    show(1);
    ASSERT_EQ(hooked.size(), 2U);
    EXPECT_EQ(hooked[0].pts, 0.0);
    EXPECT_EQ(hooked[1].pts, 1.0);
    show(1);
    EXPECT_EQ(hooked.size(), 2U) << "once each";
}

TEST_F(EnhancementChainTest, LastPhaseIsThePictureItselfWithoutAPass) {
    set(master_settings.temporal_upscaling_factor, 4);
    queue(0, film(0));
    queue(1, film(1));
    show(0);
    phase_step_ = 4;
    phase_fraction_ = 0.9F;
    {
        const PassRecorder recorder;
        show(1);
        EXPECT_EQ(recorder.passes().size(), 1U) << "in between it is made";
    }
    phase_step_ = 5;
    phase_fraction_ = 0.0F;
    const PassRecorder recorder;
    EXPECT_LT(largest_difference(show(1), as_8_bits(film(1)), 3), 1e-6F);
    EXPECT_TRUE(recorder.passes().empty());
}

TEST_F(EnhancementChainTest, HookAloneCopiesThePicture) {
    hook_ = [](PostprocessingInfo*) {};
    queue(0, film(0));
    const PassRecorder recorder;
    const Image shown = show(0);
    EXPECT_EQ(recorder.passes(), Names{"spatial_sr/code_frag_Ia"});
    // Half precision of 8-bit values (measured 0.00049).
    EXPECT_LE(largest_difference(shown, as_8_bits(film(0)), 3), 0.0005F);
}

// Factors and textures

TEST_F(EnhancementChainTest, FactorIsTheLargestThatFits) {
    const int kept = std::exchange(max_texture_size, 100);
    set(master_settings.spatial_upscaling_factor, 3);
    EXPECT_EQ(enhancement_factors(25, 10).spatial, 4);
    EXPECT_EQ(enhancement_factors(26, 10).spatial, 3);
    EXPECT_EQ(enhancement_factors(10, 50).spatial, 2);
    EXPECT_EQ(enhancement_factors(400, 10).spatial, 1);
    set(master_settings.spatial_upscaling_factor, 1.4);
    EXPECT_EQ(enhancement_factors(10, 10).spatial, 2) << "on the way between two options";
    max_texture_size = kept;
}

TEST_F(EnhancementChainTest, StableSettingsMakeNoTextures) {
    for (const int algorithm : {0, 1}) {
        for (int f = 1; f <= 3; ++f) {
            for (const double sharpening : {0.0, 0.5}) {
                set(master_settings.upscaling_algorithm, algorithm);
                set(master_settings.spatial_upscaling_factor, f - 1);
                set(master_settings.sharpening_level, sharpening);
                set(master_settings.temporal_upscaling_factor, 1);
                set(master_settings.demo_mode, 1);
                clear_texture_cache();
                long before = 0;
                for (int i = 0; i < 16; ++i) {
                    if (i == 8) before = textures_made();
                    queue(i % picture_slots, film(static_cast<float>(i)));
                    for (phase_step_ = 0; phase_step_ < 2; ++phase_step_)
                        show(i % picture_slots);
                }
                EXPECT_EQ(textures_made(), before)
                    << "algorithm " << algorithm << " factor " << f << " sharpening " << sharpening;
            }
        }
    }
}

TEST_F(EnhancementChainTest, SwitchingWhilePicturesAreQueuedDrawsEveryTime) {
    // From one refresh to the next anything may be switched; sizes then differ between pictures.
    int i = 0;
    for (const int algorithm : {0, 1, 0}) {
        for (const int f : {1, 3, 2, 4, 1}) {
            set(master_settings.upscaling_algorithm, algorithm);
            set(master_settings.spatial_upscaling_factor, f - 1);
            set(master_settings.temporal_upscaling_factor, i % 3);
            queue(i % picture_slots, film(static_cast<float>(i) * 0.2F));
            const Image shown = show(i % picture_slots);
            EXPECT_EQ(shown.width(), width * f);
            // The mean of the film (measured 0.4917 to 0.4930).
            double sum = 0.0;
            for (const Rgba& texel : shown.texels())
                sum += static_cast<double>(texel.g);
            EXPECT_NEAR(sum / static_cast<double>(shown.texels().size()), 0.4925, 0.004);
            ++i;
        }
    }
}

}  // namespace
