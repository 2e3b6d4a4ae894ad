#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The previous picture carried along by the vector of the block and by those halfway to its four
// neighbours', blended by windows over the block; faded into the current picture. Where the
// prediction is far from the current picture, the previous texel stands in for it.
//
// In each half of a block only the nearer neighbour has a weight, so only that one is read.
//
// Target:  the size of the pictures, 16-bit float.
// Unit 0:  texLP, the previous picture, nearest.
// Unit 1:  texCP, the current picture, nearest.
// Unit 2:  motionVect, a texel per block of the source, nearest, in source texels: rg its vector,
//          ba that of the next block below on the right. So the texel above holds the vectors above
//          and to the right, the texel to the left those to the left and below.
// Taps:    17.
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

#include "bilinear.glsl"
#include "overlapping_blocks_four.glsl"

void main()
{
    gl_FragColor = overlapping_blocks(gl_TexCoord[0].st);
}
