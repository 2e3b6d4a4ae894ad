// SPDX-License-Identifier: MIT
#include "gpu/video_overlays.h"

#include "support/display_fixture.h"

namespace {

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

TEST_F(VideoDisplayTest, StrokesLeaveTheMiddleOfTheBlock) {
    for (const MotionVector v : {MotionVector{12, 0}, {0, -12}, {-12, 0}, {7, 7}}) {
        VideoPicture& pic = queue(0, 8);
        pic.motion_vectors.allocate(7, 9);
        pic.motion_vectors.fill({});
        pic.motion_vectors[3][4] = v;
        show_vectors_ = true;
        display(0, 1);
        const Image image = window();
        // The block's middle in the window, where a pixel of the picture is five.
        constexpr float x = 180;
        constexpr float y = 140;
        const float along = std::atan2(static_cast<float>(v.y), static_cast<float>(v.x));
        const auto red_at = [&](float angle, float distance) {
            const float px = x + distance * std::cos(angle);
            const float py = y + distance * std::sin(angle);
            bool red = false;
            for (const float dx : {-1.0F, 0.0F, 1.0F}) {
                for (const float dy : {-1.0F, 0.0F, 1.0F}) {
                    const Rgba& t = image.at(static_cast<int>(px + dx), static_cast<int>(py + dy));
                    red |= t.r > 0.9F && t.g < 0.1F;
                }
            }
            return red;
        };
        constexpr float sixth = 3.14159265F / 6;
        for (const float side : {-1.0F, 1.0F}) {
            // Two pixels of the picture long, ten in the window.
            EXPECT_TRUE(red_at(along + side * sixth, 8)) << v.x << ", " << v.y;
            EXPECT_FALSE(red_at(along + side * sixth, 14)) << "no longer than that";
            EXPECT_FALSE(red_at(along + side * 2 * sixth, 8)) << "and no wider";
        }
        EXPECT_FALSE(red_at(along + 6 * sixth, 8)) << "none backwards";
    }
}

TEST(Overlays, StrokesOfAnArrow) {
    EXPECT_FLOAT_EQ(arrow_stroke_length({10, 0}), 2.0F) << "0.4 times 10, but not more than 2";
    EXPECT_FLOAT_EQ(arrow_stroke_length({6, 8}), 2.0F);
    EXPECT_FLOAT_EQ(arrow_stroke_length({3, 4}), 2.0F);
    EXPECT_FLOAT_EQ(arrow_stroke_length({0, -2}), 0.8F);
    EXPECT_FLOAT_EQ(arrow_stroke_length({0, 0}), 0.0F);
}

}  // namespace
