// SPDX-License-Identifier: MIT
#include "audio/eq3band.h"

#include <algorithm>
#include <cmath>

namespace {

// At a corner on or above half the sample rate the sections stop being stable: they would fill the
// memories with not-a-number for good. Streams above 17,952 Hz never meet these two limits.
constexpr float highest_angle = 2.8F;  // a little below π
constexpr double widest_alpha = 1e4;

// Functions are evaluated in double and stored as float; everything else is float arithmetic.
float root(float x) {
    return static_cast<float>(std::sqrt(static_cast<double>(x)));
}
float cosine(float x) {
    return static_cast<float>(std::cos(static_cast<double>(x)));
}
float sine(float x) {
    return static_cast<float>(std::sin(static_cast<double>(x)));
}

void normalise(Eq3Band::Section& section) {
    const float g = 1.0F / section.a0;
    section.b0 *= g;
    section.b1 *= g;
    section.b2 *= g;
    section.a1 *= -g;
    section.a2 *= -g;
    section.a0 = 1.0F;
}

void set_low_shelf(Eq3Band::Section& section, float w0, float gain) {
    const float a = root(gain);
    const float c = cosine(w0);
    const float k = root(2.0F * a) * sine(w0);
    section.b0 = a * ((a + 1.0F) - (a - 1.0F) * c + k);
    section.b1 = 2.0F * a * ((a - 1.0F) - (a + 1.0F) * c);
    section.b2 = a * ((a + 1.0F) - (a - 1.0F) * c - k);
    section.a0 = (a + 1.0F) + (a - 1.0F) * c + k;
    section.a1 = -2.0F * ((a - 1.0F) + (a + 1.0F) * c);
    section.a2 = (a + 1.0F) + (a - 1.0F) * c - k;
    normalise(section);
}

void set_high_shelf(Eq3Band::Section& section, float w0, float gain) {
    const float a = root(gain);
    const float c = cosine(w0);
    const float k = root(2.0F * a) * sine(w0);
    section.b0 = a * ((a + 1.0F) + (a - 1.0F) * c + k);
    section.b1 = -2.0F * a * ((a - 1.0F) + (a + 1.0F) * c);
    section.b2 = a * ((a + 1.0F) + (a - 1.0F) * c - k);
    section.a0 = (a + 1.0F) - (a - 1.0F) * c + k;
    section.a1 = 2.0F * ((a - 1.0F) - (a + 1.0F) * c);
    section.a2 = (a + 1.0F) - (a - 1.0F) * c - k;
    normalise(section);
}

// The bandwidth in octaves is twice the width parameter as an angle, so it depends on the sample
// rate: about 0.57 at 44100 Hz, 0.52 at 48000 Hz.
void set_peak(Eq3Band::Section& section, float w0, float octaves, float gain) {
    constexpr double half_ln2 = 0.3465735903;
    const float a = root(gain);
    const float c = cosine(w0);
    const float s = sine(w0);
    const double angle = half_ln2 * static_cast<double>(octaves) * static_cast<double>(w0);
    const double ratio = angle / static_cast<double>(s);
    const auto alpha =
        static_cast<float>(std::min(static_cast<double>(s) * std::sinh(ratio), widest_alpha));
    section.b0 = 1.0F + alpha * a;
    section.b1 = -2.0F * c;
    section.b2 = 1.0F - alpha * a;
    section.a0 = 1.0F + alpha / a;
    section.a1 = -2.0F * c;
    section.a2 = 1.0F - alpha / a;
    normalise(section);
}

bool is_flat(float gain) {
    const double g = static_cast<double>(gain);
    return g > 0.9999 && g < 1.0001;
}

/// One output of a section whose inputs are `x`, and `x1`, `x2` before it.
float filter(const Eq3Band::Section& s, float x, float x1, float x2) {
    return s.b0 * x + s.b1 * x1 + s.b2 * x2 + s.a1 * s.y1 + s.a2 * s.y2;
}

/// In silence the offset keeps the recursion out of denormal numbers, which are slow.
void remember(Eq3Band::Section& section, float y, double offset) {
    section.y2 = section.y1;
    section.y1 = static_cast<float>(static_cast<double>(y) + offset);
}

}  // namespace

void Eq3Band::update(float sample_rate) {
    const auto w = static_cast<float>(6.283185307179586 / static_cast<double>(sample_rate));
    const auto angle = [w](float frequency) { return std::min(frequency * w, highest_angle); };
    set_low_shelf(low_shelf, angle(low_frequency), low_gain);
    set_peak(peak, angle(peak_frequency), 2.0F * peak_width * w, mid_gain);
    set_high_shelf(high_shelf, angle(high_frequency), high_gain);
}

void Eq3Band::work(float* samples, int n) {
    if (is_flat(low_gain) && is_flat(mid_gain) && is_flat(high_gain)) return;

    // A copy of the state, so that it stays in registers although `samples` might alias it.
    Eq3Band f = *this;
    for (int i = 0; i < n; ++i) {
        const float x = samples[i];
        const float s1 = filter(f.low_shelf, x, f.x1, f.x2);
        const float s2 = filter(f.peak, s1, f.low_shelf.y1, f.low_shelf.y2);
        const float s3 = filter(f.high_shelf, s2, f.peak.y1, f.peak.y2);
        remember(f.low_shelf, s1, -1e-25);
        remember(f.peak, s2, 1e-25);
        remember(f.high_shelf, s3, -1e-25);
        f.x2 = f.x1;
        f.x1 = x;
        samples[i] = s3;
    }
    *this = f;
}
