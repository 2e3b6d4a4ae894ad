#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The previous picture carried along by the vector of the block and by those halfway to its eight
// neighbours', blended by windows over the block; faded into the current picture. Where the
// prediction is far from the current picture, the previous texel stands in for it.
//
// In each quarter of a block only the three nearest neighbours have a weight, so only those are
// read.
//
// Target:  the size of the pictures, 16-bit float.
// Unit 0:  texLP, the previous picture, nearest.
// Unit 1:  texCP, the current picture, nearest.
// Unit 2:  motionVect, a texel per block of the source, nearest: rg its vector in source texels.
// Taps:    22.
// Neutral: alpha = 1, the current picture.
uniform sampler2DRect texLP;
uniform sampler2DRect texCP;
uniform sampler2DRect motionVect;
uniform float alpha;        // phase, 0 to 1
uniform float constU;       // size of the pictures over that of the source, 1 to 4
uniform vec2 mb_size;       // block, in source texels, up to 16
uniform vec2 mb_half_size;  // half of it
uniform vec3 window_h[16];  // weights along a row: own, of which the others follow
uniform vec3 window_v[16];  // the same along a column

#include "bilinear.glsl"
#include "overlapping_blocks_eight.glsl"

void main()
{
    gl_FragColor = overlapping_blocks(gl_TexCoord[0].st);
}
