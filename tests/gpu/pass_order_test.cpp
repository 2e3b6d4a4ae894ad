// SPDX-License-Identifier: MIT
#include "gpu/spatial_denoising.h"
#include "gpu/spatial_sr.h"
#include "gpu/temporal_upscaling.h"
#include "gpu/texture_cache.h"

#include "support/pass_recorder.h"
#include "support/pass_test.h"

namespace {

using Names = std::vector<std::string>;

class PassOrderTest : public PassTest {
  protected:
    void make_pair(int f) {
        make_picture(cur_, 24, 18, f);
        make_picture(ref_, 24, 18, f);
        put(cur_.rgb, film_like_image(24, 18));
        put(ref_.rgb, film_like_image(24, 18, 1.0F));
        put(ref_.enhanced, film_like_image(24 * f, 18 * f, 1.0F));
        ref_.is_enhanced = true;
    }

    // The names with the folder before them, `times` over.
    static void add(Names& to, const std::string& folder, const Names& names, int times = 1) {
        for (int i = 0; i < times; ++i) {
            for (const std::string& name : names)
                to.push_back(folder + "/" + name);
        }
    }

    VideoPicture cur_;
    VideoPicture ref_;
};

TEST_F(PassOrderTest, SuperResolution) {
    for (int f = 2; f <= 4; ++f) {
        make_pair(f);
        for (const bool with_reference : {false, true}) {
            const PassRecorder recorder;
            spatial_sr(&cur_, with_reference ? &ref_ : nullptr, f);
            Names expected;
            add(expected, "spatial_sr", {with_reference ? "code_frag_Ib" : "code_frag_Ia"});
            add(expected, "spatial_sr", {"code_frag_II"});
            add(expected, "spatial_sr",
                {"code_frag_III", "code_frag_IVa", "code_frag_Va", "code_frag_VI"}, 5);
            add(expected, "spatial_sr", {"code_frag_VII"});
            EXPECT_EQ(recorder.passes(), expected);
        }
    }
}

TEST_F(PassOrderTest, SuperResolutionByOneIsOnePass) {
    make_pair(1);
    const PassRecorder recorder;
    spatial_sr(&cur_, &ref_, 1);
    EXPECT_EQ(recorder.passes(), Names{"spatial_sr/code_frag_Ia"});
}

TEST_F(PassOrderTest, Denoising) {
    for (int f = 1; f <= 4; ++f) {
        make_pair(f);
        const std::string size = f > 2 ? "a" : "b";
        for (const bool with_reference : {false, true}) {
            for (const float sharpening : {0.0F, 0.5F}) {
                const PassRecorder recorder;
                spatial_deblocking_and_denoising(&cur_, with_reference ? &ref_ : nullptr, f, 20,
                                                 sharpening, 1);
                Names expected;
                add(expected, with_reference ? "spatial_denoising" : "spatial_sr",
                    {with_reference ? "code_frag_Ib" : "code_frag_Ia"});
                if (sharpening > 0.0F)
                    add(expected, "spatial_denoising", {"hor_filter", "ver_filter"});
                add(expected, "spatial_denoising", {"code_frag_II"});
                add(expected, "spatial_denoising",
                    {"code_frag_III", "code_frag_IV" + size, "code_frag_V" + size, "code_frag_VI"},
                    12);
                add(expected, "spatial_denoising", {"code_frag_VII"});
                EXPECT_EQ(recorder.passes(), expected);
            }
        }
    }
}

TEST_F(PassOrderTest, InterpolationIsOnePass) {
    make_pair(1);
    const auto out = target(24, 18, 0);
    const PassRecorder recorder;
    temporal_upscaling_off(out, &cur_);
    temporal_upscaling_blend(out, &cur_, &ref_, 1, 2);
    temporal_upscaling_motioncompensated(out, &cur_, &ref_, 1, 2);
    temporal_upscaling_motioncompensated_overlapping_blocks_4nb(out, &cur_, &ref_, 1, 2);
    temporal_upscaling_motioncompensated_overlapping_blocks_8nb(out, &cur_, &ref_, 1, 2);
    const Names expected{"temporal_upscaling/code_frag_off", "temporal_upscaling/code_frag_blend",
                         "temporal_upscaling/code_frag_motioncompensated",
                         "temporal_upscaling/code_frag_overlapping_blocks_4nb",
                         "temporal_upscaling/code_frag_overlapping_blocks_8nb"};
    EXPECT_EQ(recorder.passes(), expected);
}

TEST_F(PassOrderTest, StableSizesMakeNoTextures) {
    for (int f = 1; f <= 4; ++f) {
        make_pair(f);
        const auto all = [&] {
            spatial_sr(&cur_, nullptr, f);
            spatial_sr(&cur_, &ref_, f);
        };
        const auto denoise = [&] {
            spatial_deblocking_and_denoising(&cur_, &ref_, f, 20, 0.4F, 1);
            spatial_deblocking_and_denoising(&cur_, nullptr, f, 20, 0.0F, 1);
        };
        for (const std::function<void()>& pictures :
             {std::function<void()>(all), std::function<void()>(denoise)}) {
            clear_texture_cache();
            pictures();
            pictures();
            const long before = textures_made();
            for (int i = 0; i < 3; ++i)
                pictures();
            EXPECT_EQ(textures_made(), before) << "factor " << f;
        }
    }
}

}  // namespace
