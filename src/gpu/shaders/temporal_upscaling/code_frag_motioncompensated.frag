#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The previous picture carried along by the vector of each block, faded into the current one.
//
// Target:  the size of the pictures, 16-bit float.
// Unit 0:  texLP, the previous picture, nearest.
// Unit 1:  texCP, the current picture, nearest.
// Unit 2:  motionVect, a texel per block of the source, nearest: rg its vector in source texels.
// Taps:    6.
// Neutral: alpha = 1, the current picture.
uniform sampler2DRect texLP;
uniform sampler2DRect texCP;
uniform sampler2DRect motionVect;
uniform float alpha;   // phase, 0 to 1
uniform float constU;  // size of the pictures over that of the source, 1 to 4
uniform vec2 mb_size;  // block, in source texels

#include "bilinear.glsl"

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec2 block = floor(st / constU / mb_size);
    vec2 mv = texture2DRect(motionVect, block + 0.5).st;
    vec4 mc = bilinear(texLP, st + alpha * constU * mv);
    vec4 current = texture2DRect(texCP, st);
    gl_FragColor = mc + alpha * (current - mc);
}
