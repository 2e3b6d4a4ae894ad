// SPDX-License-Identifier: MIT
#include "audio/vol_pan_control.h"

#include "audio/instruments.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstddef>

namespace {

using Samples = std::vector<float>;

struct Pair {
    float left, right;
};

/// What becomes of one frame once the gains have settled.
Pair settled(float volume, float balance, float width, Pair in) {
    VolPanControl control;
    control.volume = volume;
    control.balance = balance;
    control.width = width;
    control.work(&in.left, &in.right, 1);
    return in;
}

TEST(VolPanControl, RecordHasItsOrderAndItsDefaults) {
    const VolPanControl fresh;
    const auto words = std::bit_cast<std::array<float, 10>>(fresh);
    const std::array<float, 10> expected = {
        1, 1, 1, 1, fresh.smoothing, std::bit_cast<float>(1), 0, 0, 0.1F, 0.5F};
    EXPECT_EQ(words, expected);
    EXPECT_EQ(offsetof(VolPanControl, balance), 24U);
    EXPECT_EQ(offsetof(VolPanControl, volume), 28U);
    EXPECT_EQ(offsetof(VolPanControl, left_gain), 0U);
    EXPECT_EQ(offsetof(VolPanControl, left_target), 8U);
}

TEST(VolPanControl, SmoothingCoefficient) {
    VolPanControl control;
    EXPECT_NEAR(control.smoothing, 0.001565, 1e-6);  // 0.00156516 measured
    control.smoothing_time = 0.05F;
    EXPECT_NEAR(VolPanControl(control).smoothing, 0.001565, 1e-6) << "picked up by update alone";
    control.update();
    EXPECT_NEAR(control.smoothing, 1.0 - std::exp(-6.90776 / (0.05 * 44100.0)), 1e-8);
    control.smoothing_time = 0.001F;
    control.update();
    EXPECT_EQ(control.smoothing, 0.1F);
    control.smoothing_time = 0.0F;
    control.update();
    EXPECT_EQ(control.smoothing, 1.0F);
}

TEST(VolPanControl, TenDecibelsAreAFactorOfTen) {
    EXPECT_FLOAT_EQ(settled(10.0F, 0.0F, 0.5F, {0.25F, -0.5F}).left, 2.5F);
    EXPECT_FLOAT_EQ(settled(10.0F, 0.0F, 0.5F, {0.25F, -0.5F}).right, -5.0F);
    EXPECT_FLOAT_EQ(settled(-40.0F, 0.0F, 0.5F, {1.0F, 1.0F}).left, 0.0001F);
    EXPECT_EQ(settled(0.0F, 0.0F, 0.5F, {0.3F, -0.7F}).left, 0.3F);
    EXPECT_EQ(settled(0.0F, 0.0F, 0.5F, {0.3F, -0.7F}).right, -0.7F);
}

TEST(VolPanControl, BalanceTurnsOneSideDownAndTheOtherUp) {
    EXPECT_EQ(settled(0.0F, 1.0F, 0.5F, {0.25F, 0.5F}).left, 0.0F);
    EXPECT_EQ(settled(0.0F, 1.0F, 0.5F, {0.25F, 0.5F}).right, 1.0F);
    EXPECT_EQ(settled(0.0F, -1.0F, 0.5F, {0.25F, 0.5F}).left, 0.5F);
    EXPECT_EQ(settled(0.0F, -1.0F, 0.5F, {0.25F, 0.5F}).right, 0.0F);
    EXPECT_EQ(settled(0.0F, 0.25F, 0.5F, {1.0F, 1.0F}).left, 0.75F);
    EXPECT_EQ(settled(0.0F, 0.25F, 0.5F, {1.0F, 1.0F}).right, 1.25F);
}

/// The matrix from (L, R) to (left, right) by width, for the fast way and, with a change of volume
/// under way, for the gliding one.
struct Matrix {
    float width, same, other;
};

constexpr Matrix matrices[] = {
    {0.0F, 0.5F, 0.5F}, {0.25F, 0.75F, 0.25F}, {0.5F, 1.0F, 0.0F}, {1.0F, 1.5F, -0.5F}};

TEST(VolPanControl, WidthMixesMiddleAndSide) {
    for (const Matrix& m : matrices) {
        const Pair out = settled(0.0F, 0.0F, m.width, {1.0F, 0.0F});
        EXPECT_EQ(out.left, m.same);
        EXPECT_EQ(out.right, m.other);
        const Pair mirrored = settled(0.0F, 0.0F, m.width, {0.0F, 1.0F});
        EXPECT_EQ(mirrored.left, m.other);
        EXPECT_EQ(mirrored.right, m.same);
    }
}

TEST(VolPanControl, GlidingMixesAlike) {
    for (const Matrix& m : matrices) {
        VolPanControl control;
        Pair frame = {0.0F, 0.0F};
        control.work(&frame.left, &frame.right, 1);
        control.volume = 10.0F;
        control.balance = 0.5F;
        control.width = m.width;
        frame = {0.75F, -0.25F};
        control.work(&frame.left, &frame.right, 1);
        ASSERT_NE(control.left_gain, control.left_target);
        const float l = m.same * 0.75F + m.other * -0.25F;
        const float r = m.other * 0.75F + m.same * -0.25F;
        EXPECT_NEAR(frame.left, l * control.left_gain, 1e-7);
        EXPECT_NEAR(frame.right, r * control.right_gain, 1e-7);
    }
}

TEST(VolPanControl, FirstBlockTakesItsTargetsAtOnce) {
    VolPanControl control;
    control.volume = -10.0F;
    Samples left(10, 1.0F);
    Samples right(10, 1.0F);
    control.work(left.data(), right.data(), 10);
    for (const float x : left)
        EXPECT_FLOAT_EQ(x, 0.1F);
    EXPECT_EQ(control.left_gain, control.left_target);
    EXPECT_EQ(control.first_block, 0);
}

TEST(VolPanControl, ChangeOfVolumeIsApproachedSampleBySample) {
    constexpr std::size_t count = 8192;
    VolPanControl control;
    Samples left(count, 1.0F);
    Samples right(count, 1.0F);
    control.work(left.data(), right.data(), 128);
    left.assign(count, 1.0F);
    right.assign(count, 1.0F);
    control.volume = -10.0F;
    // In blocks of different lengths: where a block ends makes no difference.
    control.work(left.data(), right.data(), 1000);
    control.work(left.data() + 1000, right.data() + 1000, count - 1000);
    const double c = 1.0 - std::exp(-6.90776 / 4410.0);
    for (std::size_t i = 0; i < count; ++i) {
        const double expected = 0.1 + 0.9 * std::pow(1.0 - c, double(i + 1));
        ASSERT_NEAR(left[i], expected, 2e-6) << i;  // 3.7e-7 measured
        ASSERT_EQ(left[i], right[i]);
    }
    EXPECT_NEAR(left[4409], 0.1 + 0.9 / 1000.0, 5e-6) << "60 dB of the way in a tenth of a second";
}

TEST(VolPanControl, GainSettlesWithinAMillionth) {
    VolPanControl control;
    Samples left(16384, 1.0F);
    Samples right(16384, 1.0F);
    control.work(left.data(), right.data(), 1);
    control.balance = 1.0F;
    control.work(left.data(), right.data(), 4410);
    EXPECT_NEAR(control.left_gain, 0.001, 1e-5);
    control.work(left.data(), right.data(), 4000);
    EXPECT_GT(control.left_gain, 1e-6F);
    control.work(left.data(), right.data(), 1000);
    EXPECT_EQ(control.left_gain, 0.0F);
}

// The step c × distance rounds to nothing before the distance is down to a millionth.
TEST(VolPanControl, GainNearOneComesToRestShortOfItsTarget) {
    VolPanControl control;
    control.volume = -40.0F;
    Samples left(16384, 1.0F);
    Samples right(16384, 1.0F);
    control.work(left.data(), right.data(), 1);
    control.volume = 0.0F;
    for (int i = 0; i < 20; ++i)
        control.work(left.data(), right.data(), 16384);
    const double distance = double(control.left_target) - double(control.left_gain);
    EXPECT_EQ(control.left_target, 1.0F);
    EXPECT_GT(distance, 1e-6);
    EXPECT_LT(distance, 2e-5);  // 1.90e-5 measured
}

TEST(VolPanControl, BothWaysEqualTheirPlainTwinBitForBit) {
    VolPanControl control;
    float current_left = 1.0F;
    float current_right = 1.0F;
    int gliding = 0;
    for (const float volume : {0.0F, 0.0F, -40.0F, -40.0F, -39.0F, -39.0F}) {
        Samples left = instruments::noise(1, 10000, 0.3);
        Samples right = instruments::noise(2, 10000, 0.3);
        const Samples l = left;
        const Samples r = right;
        control.volume = volume;
        control.balance = -0.3F;
        control.width = 0.8F;
        control.work(left.data(), right.data(), static_cast<int>(l.size()));

        const auto g = static_cast<float>(std::pow(10.0, double(volume * 0.1F)));
        const float tl = (1.0F - -0.3F) * g;
        const float tr = (1.0F + -0.3F) * g;
        if (current_left == 1.0F) current_left = tl, current_right = tr;  // the first block
        const bool glides = current_left != tl || current_right != tr;
        gliding += glides;
        for (std::size_t i = 0; i < l.size(); ++i) {
            float expected_left = (0.8F + 0.5F) * tl * l[i] + (0.5F - 0.8F) * tl * r[i];
            float expected_right = (0.5F - 0.8F) * tr * l[i] + (0.8F + 0.5F) * tr * r[i];
            if (glides) {
                current_left += control.smoothing * (tl - current_left);
                current_right += control.smoothing * (tr - current_right);
                const float d = 0.8F * (l[i] - r[i]);
                expected_left = ((l[i] + r[i]) * 0.5F + d) * current_left;
                expected_right = ((l[i] + r[i]) * 0.5F - d) * current_right;
            }
            ASSERT_EQ(left[i], expected_left) << volume << " dB, " << i;
            ASSERT_EQ(right[i], expected_right) << volume << " dB, " << i;
        }
        if (std::fabs(current_left - tl) < 1e-6F) current_left = tl;
        if (std::fabs(current_right - tr) < 1e-6F) current_right = tr;
        EXPECT_EQ(control.left_gain, current_left);
        EXPECT_EQ(control.right_gain, current_right);
    }
    EXPECT_EQ(gliding, 2) << "the glides to −40 and to −39 dB; the blocks after them are settled";
}

TEST(VolPanControl, NeitherWayTouchesAnEmptyBlock) {
    VolPanControl control;
    control.work(nullptr, nullptr, 0);
    control.volume = 3.0F;
    control.work(nullptr, nullptr, 0);
    EXPECT_EQ(control.left_gain, 1.0F);
}

}  // namespace
