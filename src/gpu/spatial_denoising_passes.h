// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_shader.h"
#include "gpu/gl_texture.h"

/// The passes of the denoiser and of the sharpening, one program each, in the order they run. What
/// each reads and writes stands in its program's text. Displacements are in texels of the enhanced
/// picture. [main]
namespace denoising {

/// A displacement whose texels are averaged; it is used negated, too.
struct Displacement {
    float x, y;
};
inline constexpr Displacement displacements[] = {{2, 0}, {4, 0},  {-4, 2}, {-2, 2}, {0, 2}, {2, 2},
                                                 {4, 2}, {-4, 4}, {-2, 4}, {0, 4},  {2, 4}, {4, 4}};

/// Logarithm of the weight of a perfect match, and that weight.
inline constexpr float hmax = 4.0F;
inline constexpr float perfect_weight = 54.59815F;

/// How steeply weights fall with the distance at a denoising level of 0 to 60 and a factor.
float fall_off(float level, int factor);

/// What the estimate from the previous picture reads.
struct Reference {
    gl_texture_resource* enhanced;
    gl_texture_resource* vectors;
    paravec2<float> block;  ///< size in source texels
    float threshold;        ///< of the sum of the differences in r, g and b
};
/// code_frag_Ib
void recursive_estimate(gl_texture_resource* out, gl_texture_resource* rgb, const Reference& ref,
                        int factor);

/// code_frag_II
void start_sum(gl_texture_resource* out, gl_texture_resource* source);
/// code_frag_III
void distances(gl_texture_resource* out, gl_texture_resource* rgb, gl_texture_resource* estimate,
               Displacement d, int factor);
/// code_frag_IVb, from factor 3 on code_frag_IVa
void sum_rows(gl_texture_resource* out, gl_texture_resource* distances, int factor);

/// What decides the weights besides the distances.
struct Steering {
    gl_texture_resource* quantisers;
    paravec2<float> block;  ///< size in source texels
    float fall_off;
};
/// code_frag_Vb, from factor 3 on code_frag_Va
void weights(gl_texture_resource* out, gl_texture_resource* row_sums, const Steering& steering,
             Displacement d, int factor);
/// code_frag_VI
void add_weighted(gl_texture_resource* out, gl_texture_resource* source, gl_texture_resource* sum,
                  gl_texture_resource* weights, Displacement d);
/// code_frag_VII
void weighted_mean(gl_texture_resource* out, gl_texture_resource* sum);

/// hor_filter
void sharpen_rows(gl_texture_resource* out, gl_texture_resource* in);
/// ver_filter. `out` may be `in` after a `texture_barrier`.
void sharpen_columns(gl_texture_resource* out, gl_texture_resource* rows, gl_texture_resource* in,
                     float alpha);

}  // namespace denoising
