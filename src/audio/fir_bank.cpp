// SPDX-License-Identifier: MIT
#include "audio/fir_bank.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace {

// Vectors of the compiler rather than of one processor family: four floats are what the baseline of
// every 64-bit machine can add at once.
using float4 = float __attribute__((vector_size(16)));

float4 load(const float* from) {
    float4 v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

void store(float* to, float4 v) {
    std::memcpy(to, &v, sizeof v);
}

constexpr int rows = 8;  // inputs that are worked off together
constexpr int longest = 256;

/// The coefficients, with zeros around them, as the vectors that meet a vector of outputs: lane l
/// of group[k][s] is coefficient 4 k + l − s. Laid out afresh because loads that straddle cache
/// lines would cost an eighth of the speed.
struct CoefficientVectors {
    float4 group[longest / 4 + 1][4];

    CoefficientVectors(const float* coef, int taps) {
        float padded[4 + longest + 4] = {};
        std::copy_n(coef, taps, padded + 4);
        for (int k = 0; k <= taps / 4; ++k) {
            const float* first = &padded[4 + 4 * k];
            for (int s = 0; s < 4; ++s)
                group[k][s] = load(first - s);
        }
    }
};

/// One group of coefficient vectors meets inputs 4 … 7 in `high`, the sums of four outputs, and
/// inputs 0 … 3 in `low`, those of the four outputs before them.
inline void meet(float4& high, float4& low, const float4* x, const float4* coef) {
    high += coef[0] * x[4];
    low += coef[0] * x[0];
    high += coef[1] * x[5];
    low += coef[1] * x[1];
    high += coef[2] * x[6];
    low += coef[2] * x[2];
    high += coef[3] * x[7];
    low += coef[3] * x[3];
}

/// Adds the contributions of eight inputs, which reach taps + 7 outputs, from the last output down:
/// then an output meets its first four inputs before the other four.
void convolve_rows(const float* in, float* out, int taps, const CoefficientVectors& coef) {
    float4 x[rows];
    for (int r = 0; r < rows; ++r)
        x[r] = float4{in[r], in[r], in[r], in[r]};

    float* last = out + taps + 4;
    float4 high = {last[0], last[1], last[2], 0.0F};
    float4 low = load(out + taps);
    meet(high, low, x, coef.group[taps / 4]);
    for (int lane = 0; lane < 3; ++lane)
        last[lane] = high[lane];

    for (int q = taps - 16; q >= 0; q -= 16) {
        float* o = out + q;
        const auto* group = coef.group + q / 4;
        float4 a = load(o + 12);
        meet(low, a, x, group[3]);
        store(o + 16, low);
        float4 b = load(o + 8);
        meet(a, b, x, group[2]);
        store(o + 12, a);
        float4 c = load(o + 4);
        meet(b, c, x, group[1]);
        store(o + 8, b);
        low = load(o);
        meet(c, low, x, group[0]);
        store(o + 4, c);
    }
    store(out, low);
}

void convolve_row(float x, float* out, int taps, const float* coef) {
    for (int j = 0; j < taps; ++j)
        out[j] += coef[j] * x;
}

}  // namespace

// Taken literally, every product would load and store its output. Here the inputs go in groups of
// eight, so that an output is loaded and stored once for eight products. The order in which an
// output receives its products stays, and with it the rounding; the zeros around the coefficients
// add nothing to it.
void convolution(const float* in, float* out, int taps, int count, const float* coef) {
    assert(taps > 0 && taps % 16 == 0);
    int i = 0;
    if (taps <= longest) {
        const CoefficientVectors vectors(coef, taps);
        for (; i + rows <= count; i += rows)
            convolve_rows(in + i, out + i, taps, vectors);
    }
    for (; i < count; ++i)
        convolve_row(in[i], out + i, taps, coef);
}
