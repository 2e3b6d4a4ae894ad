#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// code_frag_overlapping_blocks_4nb and the reduction to the window in one.
//
// Target:  the window.
// Unit 0:  texLP, the previous picture, linear.
// Unit 1:  texCP, the current picture, linear.
// Unit 2:  motionVect, a texel per block of the source, nearest, in source texels: rg its vector,
//          ba that of the next block below on the right.
// Taps:    8.
// Neutral: alpha = 1, the current picture.
uniform sampler2DRect texLP;
uniform sampler2DRect texCP;
uniform sampler2DRect motionVect;
uniform float alpha;        // phase, 0 to 1
uniform float constU;       // size of the pictures over that of the source, 1 to 4
uniform vec2 mb_size;       // block, in source texels, up to 16
uniform vec2 mb_half_size;  // half of it
uniform vec4 window_h[16];  // weights along a row: own, of which the others follow
uniform vec4 window_v[16];  // the same along a column

#include "filtered.glsl"
#include "overlapping_blocks_four.glsl"

void main()
{
    gl_FragColor = overlapping_blocks(gl_TexCoord[0].st);
}
