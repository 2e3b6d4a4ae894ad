// SPDX-License-Identifier: MIT
#include "gpu/spatial_denoising_passes.h"

#include "gpu/pass.h"

#include <shaders/spatial_denoising.h>

#include <cmath>

namespace denoising {

namespace {

constexpr int largest_factor_of_small_patches = 2;

}  // namespace

float fall_off(float level, int factor) {
    const float scale = static_cast<float>(factor) * 0.25F;
    return 32.5125F / (scale * scale) * std::pow(10.0F, level * 0.1F);
}

void recursive_estimate(gl_texture_resource* out, gl_texture_resource* rgb, const Reference& ref,
                        int factor) {
    Pass(code_frag_Ib, out)
        .input("texLP", ref.enhanced)
        .input("texVP0", rgb)
        .input("motionVect", ref.vectors)
        .set("constU", static_cast<float>(factor))
        .set("mb_size", ref.block)
        .set("recThreshold", ref.threshold)
        .run();
}

void start_sum(gl_texture_resource* out, gl_texture_resource* source) {
    Pass(code_frag_II, out).input("texHighRes", source).set("weight", perfect_weight).run();
}

void distances(gl_texture_resource* out, gl_texture_resource* rgb, gl_texture_resource* estimate,
               Displacement d, int factor) {
    Pass(code_frag_III, out)
        .input("texLowRes", rgb)
        .input("texHighRes", estimate)
        .set("d", paravec2<float>{d.x, d.y})
        .set("constU", static_cast<float>(factor))
        .run();
}

void sum_rows(gl_texture_resource* out, gl_texture_resource* distances, int factor) {
    const bool small = factor <= largest_factor_of_small_patches;
    Pass(small ? code_frag_IVb : code_frag_IVa, out).input("texDiff", distances).run();
}

void weights(gl_texture_resource* out, gl_texture_resource* row_sums, const Steering& steering,
             Displacement d, int factor) {
    const bool small = factor <= largest_factor_of_small_patches;
    Pass(small ? code_frag_Vb : code_frag_Va, out)
        .input("texDiff", row_sums)
        .input("texQTable", steering.quantisers)
        .set("h", steering.fall_off)
        .set("hmax", hmax)
        .set("mb_size", steering.block)
        .set("d", paravec2<float>{d.x, d.y})
        .set("constU", static_cast<float>(factor))
        .run();
}

void add_weighted(gl_texture_resource* out, gl_texture_resource* source, gl_texture_resource* sum,
                  gl_texture_resource* weights, Displacement d) {
    Pass(code_frag_VI, out)
        .input("texHighRes", source)
        .input("texResult", sum)
        .input("texWeight", weights)
        .set("d", paravec2<float>{d.x, d.y})
        .run();
}

void weighted_mean(gl_texture_resource* out, gl_texture_resource* sum) {
    Pass(code_frag_VII, out).input("texResult", sum).run();
}

void sharpen_rows(gl_texture_resource* out, gl_texture_resource* in) {
    Pass(hor_filter, out).input("texIn", in).run();
}

void sharpen_columns(gl_texture_resource* out, gl_texture_resource* rows, gl_texture_resource* in,
                     float alpha) {
    Pass(ver_filter, out).input("texIn", rows).input("texOrig", in).set("alpha", alpha).run();
}

}  // namespace denoising
