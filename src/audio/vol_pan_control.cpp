// SPDX-License-Identifier: MIT
#include "audio/vol_pan_control.h"

#include <cmath>

namespace {

void mix_settled(const VolPanControl& control, float* left, float* right, int n) {
    const float same = control.width + 0.5F;
    const float other = 0.5F - control.width;
    const float ll = same * control.left_target;
    const float lr = other * control.left_target;
    const float rl = other * control.right_target;
    const float rr = same * control.right_target;
    for (int i = 0; i < n; ++i) {
        const float l = left[i];
        const float r = right[i];
        left[i] = ll * l + lr * r;
        right[i] = rl * l + rr * r;
    }
}

/// The same mix with gains that move towards their targets; leaves them where they end.
void mix_gliding(VolPanControl& control, float* left, float* right, int n) {
    float left_gain = control.left_gain;
    float right_gain = control.right_gain;
    const float left_target = control.left_target;
    const float right_target = control.right_target;
    const float c = control.smoothing;
    const float width = control.width;
    for (int i = 0; i < n; ++i) {
        left_gain += c * (left_target - left_gain);
        right_gain += c * (right_target - right_gain);
        const float middle = (left[i] + right[i]) * 0.5F;
        const float side = width * (left[i] - right[i]);
        left[i] = (middle + side) * left_gain;
        right[i] = (middle - side) * right_gain;
    }
    control.left_gain = left_gain;
    control.right_gain = right_gain;
}

void settle(float& gain, float target) {
    if (std::fabs(gain - target) < 1e-6F) gain = target;
}

}  // namespace

VolPanControl::VolPanControl() {
    update();
}

void VolPanControl::update() {
    if (smoothing_time == 0.0F) {
        smoothing = 1.0F;
        return;
    }
    constexpr double ln1000 = 6.90776;  // 60 dB
    const double samples = static_cast<double>(smoothing_time * 44100.0F);
    const auto c = static_cast<float>(1.0 - std::exp(-ln1000 / samples));
    smoothing = c > 0.1F ? 0.1F : c;
}

void VolPanControl::work(float* left, float* right, int n) {
    const auto gain = static_cast<float>(std::pow(10.0, static_cast<double>(volume * 0.1F)));
    left_target = (1.0F - balance) * gain;
    right_target = (1.0F + balance) * gain;
    if (first_block) {
        left_gain = left_target;
        right_gain = right_target;
        first_block = 0;
    }
    if (left_gain == left_target && right_gain == right_target) {
        mix_settled(*this, left, right, n);
        return;
    }
    mix_gliding(*this, left, right, n);
    settle(left_gain, left_target);
    settle(right_gain, right_target);
}
