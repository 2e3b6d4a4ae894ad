// SPDX-License-Identifier: MIT
#include "gpu/spatial_denoising.h"

#include "gpu/block_textures.h"
#include "gpu/cpu_twins.h"
#include "gpu/spatial_denoising_passes.h"
#include "gpu/spatial_sr_passes.h"
#include "gpu/work_texture.h"

#include "support/pass_test.h"

#include <cmath>

namespace {

using DenoisingPassTest = PassTest;

TEST_F(DenoisingPassTest, FallOffFollowsLevelAndFactor) {
    EXPECT_FLOAT_EQ(denoising::fall_off(0, 4), 32.5125F);
    EXPECT_FLOAT_EQ(denoising::fall_off(0, 1), 32.5125F * 16);
    EXPECT_FLOAT_EQ(denoising::fall_off(20, 2), 32.5125F * 4 * 100);
    EXPECT_FLOAT_EQ(denoising::perfect_weight, std::exp(denoising::hmax));
}

TEST_F(DenoisingPassTest, RecursiveEstimate) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        const Held rgb = hold(content(size.width, size.height, seed), GL_RGBA);
        const Held ref = hold(content(size.width * f, size.height * f, seed + 2), 0);
        const auto out = target(size.width * f, size.height * f, 0);
        VideoPicture cur;
        make_picture(cur, size.width, size.height, 1);
        randomise_vectors(cur, 12, seed);
        const WorkTexture vectors(block_rows(cur), block_columns(cur), 0);
        upload_block_vectors(cur, vectors);
        for (const float threshold : {0.0137F, 0.513F, 0.937F}) {
            denoising::recursive_estimate(out, rgb.texture,
                                          {ref.texture, vectors, block_size(cur), threshold}, f);
            expect_16_bits(
                "denoise_Ib", out,
                twins::denoise_Ib(rgb.image, ref.image, cur, f, static_cast<double>(threshold)));
        }
    });
}

TEST_F(DenoisingPassTest, SumStartsWithTheTexelItself) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        const Held source = hold(content(size.width * f, size.height * f, seed), 0);
        const auto out = target(size.width * f, size.height * f, 0);
        denoising::start_sum(out, source.texture);
        expect_16_bits("denoise_II", out, twins::denoise_II(source.image));
    });
}

TEST_F(DenoisingPassTest, Distances) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        const Held rgb = hold(content(size.width, size.height, seed), GL_RGBA);
        const Held estimate = hold(content(size.width * f, size.height * f, seed + 1), 0);
        const auto out = target(size.width * f, size.height * f, 0);
        for (const denoising::Displacement d : denoising::displacements) {
            denoising::distances(out, rgb.texture, estimate.texture, d, f);
            expect_16_bits("denoise_III", out,
                           twins::denoise_III(rgb.image, estimate.image, static_cast<int>(d.x),
                                              static_cast<int>(d.y), f));
        }
    });
}

TEST_F(DenoisingPassTest, RowSums) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        const Held in = hold(content(size.width * f, size.height * f, seed), 0);
        const auto out = target(size.width * f, size.height * f, 0);
        denoising::sum_rows(out, in.texture, f);
        expect_16_bits(f > 2 ? "denoise_IVa" : "denoise_IVb", out, twins::denoise_IV(in.image, f));
    });
}

TEST_F(DenoisingPassTest, Weights) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        // Distances of similar patches, so that the weights differ; extreme ones give 0.
        Image distances = content(size.width * f, size.height * f, seed);
        for (Rgba& t : distances.texels())
            t = {t.r * 0.05F, t.g * 0.05F, t.b * 0.3F, t.a * 3.0F};
        const Held in = hold(distances, 0);
        const auto out = target(size.width * f, size.height * f, 0);
        VideoPicture cur;
        make_picture(cur, size.width, size.height, 1);
        randomise_quantisers(cur, 0, 127, seed);
        const WorkTexture quantisers(block_rows(cur), block_columns(cur), 0);
        upload_block_quantisers(cur, quantisers);
        for (const float level : {0.0F, 20.0F, 60.0F}) {
            for (const denoising::Displacement d :
                 {denoising::displacements[0], denoising::displacements[7]}) {
                denoising::weights(out, in.texture,
                                   {quantisers, block_size(cur), denoising::fall_off(level, f)}, d,
                                   f);
                const Image expected =
                    twins::denoise_V(in.image, cur, static_cast<double>(level),
                                     static_cast<int>(d.x), static_cast<int>(d.y), f);
                const Image found = download(out);
                // Relative to the largest weight, e^4 (measured 0.00077).
                const Difference absolute = difference(found, expected);
                EXPECT_LE(absolute.largest / denoising::perfect_weight, 0.0015F)
                    << "level " << level;
                // And to each weight that counts for anything beside it: the quantiser is kept in
                // half precision, which its square and an exponent of up to 7 make 14 times as
                // much (measured 0.0063).
                const Difference relative = relative_difference(found, expected, 4, 0.05F);
                EXPECT_LE(relative.largest, 0.008F) << "level " << level;
            }
        }
    });
}

TEST_F(DenoisingPassTest, WeightedSum) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        const int width = size.width * f;
        const int height = size.height * f;
        const Held source = hold(content(width, height, seed), 0);
        Image weight_image = content(width, height, seed + 1);
        for (Rgba& t : weight_image.texels())
            t = {t.r * 54.0F, t.g * 54.0F, t.b * 54.0F, t.a * 54.0F};
        const Held weights = hold(weight_image, 0);
        const Held sum = hold(twins::denoise_II(source.image), 0);
        const auto out = target(width, height, 0);
        for (const denoising::Displacement d : denoising::displacements) {
            denoising::add_weighted(out, source.texture, sum.texture, weights.texture, d);
            expect_16_bits("denoise_VI", out,
                           twins::denoise_VI(source.image, sum.image, weights.image,
                                             static_cast<int>(d.x), static_cast<int>(d.y)));
        }
    });
}

TEST_F(DenoisingPassTest, WeightedMean) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        Image sums = content(size.width * f, size.height * f, seed);
        for (Rgba& t : sums.texels())
            t = {t.r * 600.0F, t.g * 600.0F, t.b * 600.0F, 55.0F + t.a * 1000.0F};
        const Held sum = hold(sums, 0);
        const auto out = target(size.width * f, size.height * f, 0);
        denoising::weighted_mean(out, sum.texture);
        expect_16_bits("denoise_VII", out, twins::denoise_VII(sum.image));
    });
}

// The quantiser texture

TEST_F(DenoisingPassTest, QuantisersBecomePartsOf127) {
    VideoPicture pic;
    make_picture(pic, 64, 48, 1);
    randomise_quantisers(pic, 0, 127, 4);
    const WorkTexture texture(block_rows(pic), block_columns(pic), 0);
    upload_block_quantisers(pic, texture);
    const Image image = download(texture);
    for (int r = 0; r < pic.grid_height; ++r) {
        for (int c = 0; c < pic.grid_width; ++c) {
            const float expected = static_cast<float>(pic.quantization_table[r][c]) / 127.0F;
            // Half precision (measured 0.00024).
            EXPECT_NEAR(image.at(c, r).r, expected, 0.0005F);
            EXPECT_EQ(image.at(c, r).g, image.at(c, r).r);
            EXPECT_EQ(image.at(c, r).b, image.at(c, r).r);
        }
    }
}

TEST_F(DenoisingPassTest, PictureWithoutGridsHasQuantiserOneAndNoMotion) {
    VideoPicture pic;
    pic.width = 20;
    pic.height = 10;
    ASSERT_EQ(block_rows(pic), 1);
    ASSERT_EQ(block_columns(pic), 1);
    const WorkTexture texture(1, 1, 0);
    upload_block_quantisers(pic, texture);
    EXPECT_NEAR(download(texture).at(0, 0).r, 1.0F / 127.0F, 0.00001F);
    upload_block_vectors(pic, texture);
    EXPECT_EQ(download(texture).at(0, 0).r, 0.0F);
    EXPECT_EQ(download(texture).at(0, 0).g, 0.0F);
}

// The whole filter

struct Levels {
    float denoising;
    float sharpening;
    float threshold;
};

// The filter from its programs' twins, textures rounding between them as the GPU's do.
class WholeDenoiserTest : public PassTest {
  protected:
    Image half(const Image& image) { return hold(image, 0).image; }

    Image twin(const VideoPicture& cur, const VideoPicture* ref, int f, const Levels& levels) {
        const Image rgb = download(cur.rgb);
        const Image estimate =
            half(ref ? twins::denoise_Ib(rgb, download(ref->enhanced), cur, f,
                                         static_cast<double>(levels.threshold) * 0.025)
                     : twins::sr_Ia(rgb, f));
        Image source = estimate;
        if (levels.sharpening > 0.0F) {
            source = half(twins::ver_filter(half(twins::hor_filter(estimate)), estimate,
                                            static_cast<double>(levels.sharpening)));
        }
        Image sum = half(twins::denoise_II(source));
        for (const denoising::Displacement d : denoising::displacements) {
            const int dx = static_cast<int>(d.x);
            const int dy = static_cast<int>(d.y);
            const Image distances = half(twins::denoise_III(rgb, estimate, dx, dy, f));
            const Image weights =
                half(twins::denoise_V(half(twins::denoise_IV(distances, f)), cur,
                                      static_cast<double>(levels.denoising), dx, dy, f));
            sum = half(twins::denoise_VI(source, sum, weights, dx, dy));
        }
        return twins::denoise_VII(sum);
    }
};

TEST_F(WholeDenoiserTest, FollowsItsTwins) {
    for (int f = 1; f <= 4; ++f) {
        for (const Levels levels : {Levels{20, 0, 1}, Levels{5, 0.4F, 1}, Levels{30, 1, 0}}) {
            for (const bool with_reference : {false, true}) {
                VideoPicture cur;
                VideoPicture ref;
                make_picture(cur, 17, 9, f);
                make_picture(ref, 17, 9, f);
                put(cur.rgb, film_like_image(17, 9));
                put(ref.enhanced, film_like_image(17 * f, 9 * f, 0.4F));
                ref.is_enhanced = true;
                randomise_vectors(cur, 3, 7);
                randomise_quantisers(cur, 1, 31, 8);
                const VideoPicture* reference = with_reference ? &ref : nullptr;
                spatial_deblocking_and_denoising(&cur, reference, f, levels.denoising,
                                                 levels.sharpening, levels.threshold);
                const Difference d =
                    difference(download(cur.enhanced), twin(cur, reference, f, levels), 4);
                SCOPED_TRACE(::testing::Message() << "factor " << f << " level " << levels.denoising
                                                  << " reference " << with_reference);
                // Half precision cuts, some 40 times in a row (measured 0.0018 and 0.00017).
                EXPECT_LE(d.largest, 0.004F);
                EXPECT_LE(d.mean, 0.0004F);
            }
        }
    }
}

TEST_F(DenoisingPassTest, ConstantPicturesStayConstant) {
    const Rgba grey{0.4F, 0.2F, 0.8F, 1.0F};
    for (int f = 1; f <= 4; ++f) {
        VideoPicture cur;
        VideoPicture ref;
        make_picture(cur, 21, 13, f);
        make_picture(ref, 21, 13, f);
        put(cur.rgb, constant_image(21, 13, grey));
        put(ref.rgb, constant_image(21, 13, grey));
        put(ref.enhanced, constant_image(21 * f, 13 * f, grey));
        ref.is_enhanced = true;
        randomise_vectors(cur, 30, 3);
        randomise_quantisers(cur, 0, 127, 3);
        for (const VideoPicture* reference :
             {static_cast<const VideoPicture*>(nullptr), static_cast<const VideoPicture*>(&ref)}) {
            spatial_deblocking_and_denoising(&cur, reference, f, 20, 0, 1);
            // Half precision cuts at each of 13 additions (measured 0.0031).
            EXPECT_LE(
                largest_difference(download(cur.enhanced), constant_image(21 * f, 13 * f, grey)),
                0.0045F)
                << f;
        }
    }
}

TEST_F(DenoisingPassTest, PerfectMatchWeighsAsMuchAsTheTexelItself) {
    const auto row_sums = upload(constant_image(8, 8, {0, 0, 0, 0}));
    VideoPicture cur;
    make_picture(cur, 8, 8, 1);
    cur.quantization_table.fill(127);
    const WorkTexture quantisers(block_rows(cur), block_columns(cur), 0);
    upload_block_quantisers(cur, quantisers);
    for (const int f : {1, 3}) {
        const auto out = target(8, 8, 0);
        denoising::weights(out, row_sums, {quantisers, block_size(cur), denoising::fall_off(60, f)},
                           denoising::displacements[0], f);
        // Half precision (measured 0.0044).
        EXPECT_NEAR(download(out).at(4, 4).r, std::exp(4.0F), 0.04F);
    }
}

// Standard deviation from the mean in the red of the middle.
double noise_of(const Image& image) {
    double sum = 0.0;
    double squares = 0.0;
    int count = 0;
    for (int y = 8; y < image.height() - 8; ++y) {
        for (int x = 8; x < image.width() - 8; ++x, ++count) {
            const auto v = static_cast<double>(image.at(x, y).r);
            sum += v;
            squares += v * v;
        }
    }
    return std::sqrt(squares / count - (sum / count) * (sum / count));
}

TEST_F(DenoisingPassTest, CoarserQuantisersAndHigherLevelsSmoothLess) {
    const auto noise_after = [this](float level, int quantiser) {
        VideoPicture cur;
        make_picture(cur, 64, 48, 1);
        put(cur.rgb, random_image(64, 48, 2, 0.4F, 0.6F));
        cur.quantization_table.fill(static_cast<std::uint8_t>(quantiser));
        spatial_deblocking_and_denoising(&cur, nullptr, 1, level, 0, 1);
        return noise_of(download(cur.enhanced));
    };
    // Measured: 0.0570 before, then 0.0055, 0.0185, 0.0570, 0.0570 and 0.0570.
    EXPECT_LT(noise_after(5, 1), 0.008);
    EXPECT_LT(noise_after(5, 1) * 1.2, noise_after(5, 12));
    EXPECT_LT(noise_after(5, 12) * 1.2, noise_after(5, 31));
    EXPECT_LT(noise_after(5, 12) * 1.2, noise_after(20, 12));
    EXPECT_GT(noise_after(60, 127), 0.055);
}

TEST_F(DenoisingPassTest, ThresholdDecidesHowMuchOfThePastStays) {
    VideoPicture cur;
    VideoPicture ref;
    make_picture(cur, 16, 16, 1);
    make_picture(ref, 16, 16, 1);
    put(cur.rgb, constant_image(16, 16, {0.5F, 0.5F, 0.5F, 1}));
    put(ref.enhanced, constant_image(16, 16, {0.6F, 0.6F, 0.6F, 1}));
    ref.is_enhanced = true;
    const auto result = [&](float threshold) {
        spatial_deblocking_and_denoising(&cur, &ref, 1, 20, 0, threshold);
        return download(cur.enhanced).at(8, 8).r;
    };
    // The pictures differ by 0.3 in sum, 12 times 0.025. Half precision (measured 0.0015).
    EXPECT_NEAR(result(0), 0.5F, 0.003F) << "no recursion";
    EXPECT_NEAR(result(11), 0.5F, 0.003F);
    EXPECT_NEAR(result(13), 0.599F, 0.003F);
    EXPECT_NEAR(result(40), 0.599F, 0.003F);
    ref.is_enhanced = false;
    EXPECT_NEAR(result(40), 0.5F, 0.003F) << "no reference that is not enhanced";
}

// Sharpening

TEST_F(DenoisingPassTest, SharpeningPasses) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        const int width = size.width * f;
        const int height = size.height * f;
        const Held in = hold(content(width, height, seed), 0);
        const auto rows = target(width, height, 0);
        denoising::sharpen_rows(rows, in.texture);
        expect_16_bits("hor_filter", rows, twins::hor_filter(in.image));
        const Image held_rows = download(rows);
        for (const float level : {0.0F, 0.3F, 1.0F}) {
            const auto out = target(width, height, 0);
            denoising::sharpen_columns(out, rows, in.texture, level * 2.5F);
            expect_16_bits("ver_filter", out,
                           twins::ver_filter(held_rows, in.image, static_cast<double>(level)));
        }
    });
}

TEST_F(DenoisingPassTest, SharpeningInPlaceAndElsewhereAreTheSame) {
    for (const Size size : awkward_sizes) {
        const Held in = hold(random_image(size.width, size.height, 3), 0);
        const auto elsewhere = target(size.width, size.height, 0);
        sharpening_filter(in.texture, elsewhere, 0.7F);
        const Image expected = download(elsewhere);
        const auto in_place = upload(in.image);
        sharpening_filter(in_place, in_place, 0.7F);
        EXPECT_EQ(largest_difference(download(in_place), expected), 0.0F);

        // A driver that cannot order the two passes.
        const GLboolean arb = std::exchange(__GLEW_ARB_texture_barrier, GL_FALSE);
        const GLboolean nv = std::exchange(__GLEW_NV_texture_barrier, GL_FALSE);
        const auto copied = upload(in.image);
        sharpening_filter(copied, copied, 0.7F);
        __GLEW_ARB_texture_barrier = arb;
        __GLEW_NV_texture_barrier = nv;
        EXPECT_EQ(largest_difference(download(copied), expected), 0.0F);
    }
}

TEST_F(DenoisingPassTest, SharpeningLevelZeroChangesNothing) {
    const Held in = hold(random_image(31, 17, 9, -0.2F, 1.2F), 0);
    const auto out = target(31, 17, 0);
    sharpening_filter(in.texture, out, 0.0F);
    EXPECT_EQ(largest_difference(download(out), in.image), 0.0F);
}

TEST_F(DenoisingPassTest, SharpeningKernelsHaveTheirOwnTaps) {
    Image point(15, 15);
    point.at(7, 7) = {1, 1, 1, 1};
    const auto in = upload(point);
    const auto rows = target(15, 15, 0);
    denoising::sharpen_rows(rows, in);
    const Image row = download(rows);
    const float horizontal[] = {0.0363F, -0.1849F, -0.2817F, 2.3739F, -0.2817F, -0.1849F, 0.0363F};
    for (int k = -3; k <= 3; ++k)
        EXPECT_NEAR(row.at(7 + k, 7).r, horizontal[k + 3], 0.002F) << k;
    EXPECT_EQ(row.at(7, 6).r, 0.0F);
    const auto out = target(15, 15, 0);
    denoising::sharpen_columns(out, in, in, 1.0F);
    const Image column = download(out);
    const float vertical[] = {0.018611F, -0.08674F, -0.134F, 1.09828F,
                              -0.134F,   -0.08674F, 0.01861F};
    for (int k = -3; k <= 3; ++k)
        EXPECT_NEAR(column.at(7, 7 + k).r, vertical[k + 3], 0.002F) << k;
    EXPECT_EQ(column.at(6, 7).r, 0.0F);
}

TEST_F(DenoisingPassTest, FullSharpeningGoesBeyondTheFilteredPicture) {
    const Held in = hold(film_like_image(33, 21), 0);
    const auto rows = target(33, 21, 0);
    denoising::sharpen_rows(rows, in.texture);
    const auto filtered = target(33, 21, 0);
    denoising::sharpen_columns(filtered, rows, in.texture, 1.0F);
    const auto full = target(33, 21, 0);
    sharpening_filter(in.texture, full, 1.0F);
    const Rgba a = in.image.at(16, 10);
    const Rgba b = download(filtered).at(16, 10);
    EXPECT_NEAR(download(full).at(16, 10).r, a.r + 2.5F * (b.r - a.r), 0.005F);
}

TEST(DenoisingDisplacements, AreTheseInThisOrder) {
    const float expected[][2] = {{2, 0}, {4, 0},  {-4, 2}, {-2, 2}, {0, 2}, {2, 2},
                                 {4, 2}, {-4, 4}, {-2, 4}, {0, 4},  {2, 4}, {4, 4}};
    ASSERT_EQ(std::size(denoising::displacements), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(denoising::displacements[i].x, expected[i][0]) << i;
        EXPECT_EQ(denoising::displacements[i].y, expected[i][1]) << i;
    }
}

}  // namespace
