// SPDX-License-Identifier: MIT
#include "gpu/temporal_upscaling.h"

#include "gpu/cpu_twins.h"
#include "gpu/interpolation_windows.h"
#include "gpu/video_display.h"

#include "support/pass_test.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// The windows

TEST(InterpolationWindows, BlockOfSixteen) {
    const WindowTable table = window_table(16);
    const float own[] = {0.125F, 0.25F, 0.375F, 0.5F, 0.625F, 0.75F, 0.875F, 1.0F};
    for (std::size_t i = 0; i < 16; ++i) {
        const float x = own[i < 8 ? i : 15 - i];
        EXPECT_FLOAT_EQ(table[i][0], x) << i;
        EXPECT_FLOAT_EQ(table[i][1], i < 8 ? 1.0F - x : 0.0F) << i;
        EXPECT_FLOAT_EQ(table[i][2], i < 8 ? 0.0F : 1.0F - x) << i;
        EXPECT_FLOAT_EQ(table[i][3], x + (1.0F - x) * 0.5F) << i;
    }
}

TEST(InterpolationWindows, BlockOfEightLeavesTheRestZero) {
    const WindowTable table = window_table(8);
    const float own[] = {0.25F, 0.5F, 0.75F, 1.0F, 1.0F, 0.75F, 0.5F, 0.25F};
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_FLOAT_EQ(table[i][0], own[i]) << i;
    for (std::size_t i = 8; i < 16; ++i) {
        for (const float value : table[i])
            EXPECT_EQ(value, 0.0F) << i;
    }
}

TEST(InterpolationWindows, OddBlockHasAnEmptyMiddle) {
    const WindowTable table = window_table(5);
    EXPECT_FLOAT_EQ(table[0][0], 0.4F);
    EXPECT_FLOAT_EQ(table[1][0], 0.8F);
    EXPECT_EQ(table[2][0], 0.0F);
    EXPECT_FLOAT_EQ(table[3][0], 0.8F);
    EXPECT_FLOAT_EQ(table[4][2], 0.6F);
}

TEST(InterpolationWindows, ThreeColumnsLeaveOutTheFourth) {
    const WindowTable table = window_table(8);
    const auto columns = three_columns(table);
    for (std::size_t i = 0; i < 16; ++i) {
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_EQ(columns[i * 3 + c], table[i][c]);
    }
}

TEST(InterpolationWindows, WeightsOfAllNeighboursAddUpToOne) {
    for (const int size : {2, 4, 8, 16}) {
        const WindowTable table = window_table(size);
        for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i) {
            for (std::size_t j = 0; j < static_cast<std::size_t>(size); ++j) {
                const auto& w = table[i];
                const auto& v = table[j];
                const float four = w[0] * v[0] + w[3] * (v[1] + v[2]) + (w[1] + w[2]) * v[3];
                const float eight = (w[0] + w[1] + w[2]) * (v[0] + v[1] + v[2]);
                EXPECT_NEAR(four, 1.0F, 1e-6F);
                EXPECT_NEAR(eight, 1.0F, 1e-6F);
            }
        }
    }
}

// The passes

using Interpolation = void (*)(gl_texture_resource*, const VideoPicture*, const VideoPicture*,
                               float, int);
using Twin = Image (*)(const Image&, const Image&, const VideoPicture&, double, int, int);

struct Compensated {
    const char* name;
    Interpolation pass;
    Twin twin;
};
const Compensated compensated[] = {
    {"motioncompensated", temporal_upscaling_motioncompensated, twins::motioncompensated},
    {"4nb", temporal_upscaling_motioncompensated_overlapping_blocks_4nb, twins::overlapping_4nb},
    {"8nb", temporal_upscaling_motioncompensated_overlapping_blocks_8nb, twins::overlapping_8nb},
};

class InterpolationPassTest : public PassTest {
  protected:
    // Two pictures whose sources are f times as large as the films' pictures.
    void make_pair(Size size, int f, const Content& content, unsigned seed) {
        make(prev_, size, f, content, seed);
        make(cur_, size, f, content, seed + 1);
        randomise_vectors(cur_, 9, seed + 2);
        out_ = target(size.width * f, size.height * f, 0);
    }

    VideoPicture prev_;
    VideoPicture cur_;
    object_ref<gl_texture_resource> out_;

  private:
    static void make(VideoPicture& pic, Size size, int f, const Content& content, unsigned seed) {
        make_picture(pic, size.width, size.height, f);
        put(pic.rgb, content(size.width, size.height, seed));
        put(pic.enhanced, content(size.width * f, size.height * f, seed));
        pic.is_enhanced = f > 1;
    }
};

TEST_F(InterpolationPassTest, OffIsTheCurrentPicture) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        make_pair(size, f, content, seed);
        temporal_upscaling_off(out_, &cur_);
        expect_16_bits("off", out_, download(cur_.source()));
    });
}

TEST_F(InterpolationPassTest, BlendFades) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        make_pair(size, f, content, seed);
        for (int phase = 0; phase <= 5; ++phase) {
            temporal_upscaling_blend(out_, &cur_, &prev_, phase, 5);
            expect_16_bits(
                "blend", out_,
                twins::blend(download(prev_.source()), download(cur_.source()), phase, 5));
        }
    });
}

TEST_F(InterpolationPassTest, CompensatedMethodsFollowTheirTwins) {
    everywhere(1, [this](Size size, int f, const Content& content, unsigned seed) {
        make_pair(size, f, content, seed);
        const Image prev = download(prev_.source());
        const Image cur = download(cur_.source());
        for (const Compensated& method : compensated) {
            for (const float phase : {0.0F, 1.0F, 2.4F, 5.0F}) {
                method.pass(out_, &cur_, &prev_, phase, 5);
                expect_16_bits(method.name, out_,
                               method.twin(prev, cur, cur_, static_cast<double>(phase), 5, f));
            }
        }
    });
}

// The largest difference of three channels between what the window shows and a twin, where the
// picture lies in the window's corner, pixel by texel.
float difference_in_window(const Image& shown, const Image& twin) {
    float largest = 0.0F;
    for (int y = 0; y < twin.height(); ++y) {
        for (int x = 0; x < twin.width(); ++x) {
            const auto& [a, b] = std::pair{shown.at(x, y), twin.at(x, y)};
            for (const float d :
                 {a.r - std::clamp(b.r, 0.0F, 1.0F), a.g - std::clamp(b.g, 0.0F, 1.0F),
                  a.b - std::clamp(b.b, 0.0F, 1.0F)})
                largest = std::max(largest, std::abs(d));
        }
    }
    return largest;
}

// The driver weighs 8-bit textures with 8 bits (2.8 steps measured), those of factor 2 with more
// (0.5).
TEST_F(InterpolationPassTest, DrawingIntoTheWindowFollowsTheTwins) {
    const std::pair<int, Twin> methods[] = {{method_4_neighbours, twins::overlapping_4nb},
                                            {method_8_neighbours, twins::overlapping_8nb}};
    for (const int f : {1, 2}) {
        make_pair({72, 56}, f, film_like_content(), 1);
        const Image prev = download(prev_.source());
        const Image cur = download(cur_.source());
        const auto shown = [&](int method, float phase) {
            clear_window(window_width, window_height);
            draw_interpolated({method, &cur_, &prev_, phase, 5}, 72 * f, 56 * f);
            return window();
        };
        for (const float phase : {0.0F, 1.0F, 2.4F, 4.0F}) {
            for (const auto& [method, twin] : methods) {
                const Image expected = twin(prev, cur, cur_, static_cast<double>(phase), 5, f);
                EXPECT_LT(difference_in_window(shown(method, phase), expected),
                          (f == 1 ? 3.0F : 0.6F) * step)
                    << method << " at " << phase << ", factor " << f;
            }
            const Image faded = twins::blend(prev, cur, static_cast<int>(phase), 5);
            EXPECT_LT(difference_in_window(shown(method_blend, phase), faded), 0.6F * step)
                << phase;
        }
    }
}

TEST_F(InterpolationPassTest, LargerBlocksOfTheirOwnShape) {
    make_pair({48, 40}, 1, film_like_content(), 1);
    cur_.block_width = 16;
    cur_.block_height = 4;
    cur_.grid_width = 3;
    cur_.grid_height = 10;
    cur_.motion_vectors.allocate(11, 4);
    cur_.motion = new gl_texture_resource(10, 3, 0, nullptr);
    randomise_vectors(cur_, 6, 4);
    const Image prev = download(prev_.source());
    const Image cur = download(cur_.source());
    for (const Compensated& method : compensated) {
        method.pass(out_, &cur_, &prev_, 1.0F, 2);
        expect_16_bits(method.name, out_, method.twin(prev, cur, cur_, 1.0, 2, 1));
    }
}

TEST_F(InterpolationPassTest, LastPhaseIsTheCurrentPictureExactly) {
    for (const int f : {1, 2}) {
        make_pair({64, 48}, f, film_like_content(), 1);
        temporal_upscaling_off(out_, &cur_);
        const Image current = download(out_);
        temporal_upscaling_blend(out_, &cur_, &prev_, 5, 5);
        EXPECT_EQ(largest_difference(download(out_), current), 0.0F);
        for (const Compensated& method : compensated) {
            method.pass(out_, &cur_, &prev_, 5.0F, 5);
            EXPECT_EQ(largest_difference(download(out_), current), 0.0F) << method.name;
        }
    }
}

TEST_F(InterpolationPassTest, FirstPhaseIsThePreviousPicture) {
    for (const int f : {1, 2}) {
        make_pair({64, 48}, f, film_like_content(), 1);
        temporal_upscaling_off(out_, &prev_);
        const Image previous = download(out_);
        for (const Compensated& method : compensated) {
            method.pass(out_, &cur_, &prev_, 0.0F, 5);
            // The weights add up to 1 within single precision, which half precision may cut
            // to the step below (measured 0.00049).
            EXPECT_LE(largest_difference(download(out_), previous), 0.0005F) << method.name;
        }
    }
}

TEST_F(InterpolationPassTest, PhasesOutsideAreTheNearestInside) {
    make_pair({32, 24}, 1, film_like_content(), 1);
    for (const Compensated& method : compensated) {
        method.pass(out_, &cur_, &prev_, 0.0F, 3);
        const Image first = download(out_);
        method.pass(out_, &cur_, &prev_, -1.0F, 3);
        EXPECT_EQ(largest_difference(download(out_), first), 0.0F) << method.name;
        method.pass(out_, &cur_, &prev_, 3.0F, 3);
        const Image last = download(out_);
        method.pass(out_, &cur_, &prev_, 4.5F, 3);
        EXPECT_EQ(largest_difference(download(out_), last), 0.0F) << method.name;
    }
}

// A picture that moves as its vectors say is composed of texels of the previous one at the right
// places: inside, what is left of the current picture is its own share.
TEST_F(InterpolationPassTest, KnownMotionIsFollowed) {
    constexpr int dx = 4;
    constexpr int dy = -8;
    for (const int f : {1, 2}) {
        const auto moved = [&](float part) {
            return film_like_image(64 * f, 48 * f, part * dx * static_cast<float>(f),
                                   part * dy * static_cast<float>(f));
        };
        make_picture(prev_, 64, 48, f);
        make_picture(cur_, 64, 48, f);
        gl_texture_resource* const sources[] = {f > 1 ? prev_.enhanced : prev_.rgb,
                                                f > 1 ? cur_.enhanced : cur_.rgb};
        prev_.is_enhanced = cur_.is_enhanced = f > 1;
        put(sources[0], moved(0.0F));
        put(sources[1], moved(1.0F));
        for (int r = 0; r < cur_.motion_vectors.rows(); ++r) {
            for (int c = 0; c < cur_.motion_vectors.columns(); ++c)
                cur_.motion_vectors[r][c] = {dx, dy};
        }
        upload_motion(cur_);
        out_ = target(64 * f, 48 * f, 0);
        temporal_upscaling_motioncompensated(out_, &cur_, &prev_, 1.0F, 2);
        const Image found = download(out_);
        const Image half_way = moved(0.5F);
        const Image current = moved(1.0F);
        for (int y = 10 * f; y < 38 * f; ++y) {
            for (int x = 6 * f; x < 58 * f; ++x) {
                const float expected = 0.5F * half_way.at(x, y).r + 0.5F * current.at(x, y).r;
                // 8-bit sources and half precision (measured 0.0024).
                ASSERT_NEAR(found.at(x, y).r, expected, 0.004F) << x << "," << y;
            }
        }
    }
}

// A slope so gentle that no prediction is far from the current picture: with the same vector in
// every block all neighbours agree.
TEST_F(InterpolationPassTest, NeighboursFollowKnownMotion) {
    constexpr int f = 2;
    constexpr int dx = 4;
    const auto moved = [](float part) {
        return make_image(64 * f, 48 * f, [part](int x, int y) {
            const float v =
                0.001F * (static_cast<float>(x) + part * dx * f) + 0.0002F * static_cast<float>(y);
            return Rgba{v, v, v, 1.0F};
        });
    };
    make_picture(prev_, 64, 48, f);
    make_picture(cur_, 64, 48, f);
    prev_.is_enhanced = cur_.is_enhanced = true;
    put(prev_.enhanced, moved(0.0F));
    put(cur_.enhanced, moved(1.0F));
    for (int r = 0; r < cur_.motion_vectors.rows(); ++r) {
        for (int c = 0; c < cur_.motion_vectors.columns(); ++c)
            cur_.motion_vectors[r][c] = {dx, 0};
    }
    upload_motion(cur_);
    const Image half_way = moved(0.5F);
    const Image current = moved(1.0F);
    for (const auto method : {temporal_upscaling_motioncompensated_overlapping_blocks_4nb,
                              temporal_upscaling_motioncompensated_overlapping_blocks_8nb}) {
        out_ = target(64 * f, 48 * f, 0);
        method(out_, &cur_, &prev_, 1.0F, 2);
        const Image found = download(out_);
        float largest = 0.0F;
        for (int y = 20; y < 76; ++y) {
            for (int x = 24; x < 104; ++x) {
                const float expected = 0.5F * half_way.at(x, y).r + 0.5F * current.at(x, y).r;
                largest = std::max(largest, std::abs(found.at(x, y).r - expected));
            }
        }
        // Half precision (measured 0.0001); the other direction would be 0.004 off.
        EXPECT_LE(largest, 0.0003F);
    }
}

TEST_F(InterpolationPassTest, PredictionFarFromTheCurrentPictureGivesWay) {
    // The previous picture is black but for a white column that the vectors carry to the left half.
    make_picture(prev_, 32, 16, 1);
    make_picture(cur_, 32, 16, 1);
    put(prev_.rgb, make_image(32, 16, [](int x, int) {
            const float v = x >= 16 ? 1.0F : 0.0F;
            return Rgba{v, v, v, 1};
        }));
    put(cur_.rgb, constant_image(32, 16, {0, 0, 0, 1}));
    for (int r = 0; r < cur_.motion_vectors.rows(); ++r) {
        for (int c = 0; c < cur_.motion_vectors.columns(); ++c)
            cur_.motion_vectors[r][c] = {32, 0};
    }
    upload_motion(cur_);
    out_ = target(32, 16, 0);
    temporal_upscaling_motioncompensated(out_, &cur_, &prev_, 1.0F, 2);
    EXPECT_NEAR(download(out_).at(8, 8).r, 0.5F, 0.001F) << "unguarded: white fades in";
    temporal_upscaling_motioncompensated_overlapping_blocks_4nb(out_, &cur_, &prev_, 1.0F, 2);
    EXPECT_EQ(download(out_).at(8, 8).r, 0.0F) << "guarded: the previous texel is black";
    temporal_upscaling_motioncompensated_overlapping_blocks_8nb(out_, &cur_, &prev_, 1.0F, 2);
    EXPECT_EQ(download(out_).at(8, 8).r, 0.0F);
}

TEST_F(InterpolationPassTest, ConstantPicturesStayConstant) {
    const Rgba grey{0.4F, 0.2F, 0.8F, 1.0F};
    make_picture(prev_, 37, 21, 1);
    make_picture(cur_, 37, 21, 1);
    put(prev_.rgb, constant_image(37, 21, grey));
    put(cur_.rgb, constant_image(37, 21, grey));
    randomise_vectors(cur_, 50, 2);
    out_ = target(37, 21, 0);
    for (const Compensated& method : compensated) {
        method.pass(out_, &cur_, &prev_, 1.3F, 4);
        // Half precision of 8-bit values (measured 0.00049).
        EXPECT_LE(largest_difference(download(out_), download(cur_.rgb)), 0.0005F) << method.name;
    }
}

}  // namespace
