// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_shader.h"
#include "gpu/gl_texture.h"

/// The passes of the super-resolution, one program each, in the order they run. What each reads and
/// writes stands in its program's text. Displacements are in texels of the enhanced picture. [main]
namespace sr {

/// A displacement of the search; it is used negated, too.
struct Displacement {
    float x, y;
};
inline constexpr Displacement displacements[] = {{2, 0}, {-4, 2}, {-2, 2}, {0, 2}, {2, 2}};

/// The error from which on a candidate is no better than none.
inline constexpr float threshold = 0.03137255F;

/// code_frag_Ia
void estimate(gl_texture_resource* out, gl_texture_resource* rgb);

/// What the estimate from the previous picture reads.
struct Reference {
    gl_texture_resource* enhanced;
    gl_texture_resource* rgb;
    gl_texture_resource* vectors;
    paravec2<float> block;  ///< size in source texels
};
/// code_frag_Ib
void compensated_estimate(gl_texture_resource* out, gl_texture_resource* rgb, const Reference& ref,
                          int factor);

/// code_frag_II
void first_candidates(gl_texture_resource* out, gl_texture_resource* estimate);
/// code_frag_III
void differences(gl_texture_resource* out, gl_texture_resource* rgb, gl_texture_resource* estimate,
                 Displacement d, int factor);
/// code_frag_IVa
void average_rows(gl_texture_resource* out, gl_texture_resource* differences);
/// code_frag_Va
void average_columns(gl_texture_resource* out, gl_texture_resource* averages);
/// code_frag_VI
void best_candidates(gl_texture_resource* out, gl_texture_resource* estimate,
                     gl_texture_resource* candidates, gl_texture_resource* errors, Displacement d);
/// code_frag_VII
void winners(gl_texture_resource* out, gl_texture_resource* candidates);

}  // namespace sr
