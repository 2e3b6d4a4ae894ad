#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// First estimate from the previous picture: its enhanced texels, carried along by the vector of the
// block and corrected by what changed, and halfway to the enlarged new picture. Texels that the
// source samples are taken from it.
//
// Target:  W x f, H x f, 16-bit float.
// Unit 0:  texLP, the previous picture enhanced, W x f, H x f, nearest.
// Unit 1:  texLP0, the previous picture, W x H, nearest.
// Unit 2:  texVP0, the current picture, W x H, nearest.
// Unit 3:  motionVect, a texel per block, vectors in source texels, nearest.
// Taps:    22.
uniform sampler2DRect texLP;
uniform sampler2DRect texLP0;
uniform sampler2DRect texVP0;
uniform sampler2DRect motionVect;
uniform float constU;  // f, 2 to 4
uniform vec2 mb_size;  // block, in source texels

#include "bilinear.glsl"
#include "catmull_rom.glsl"

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec2 source = st / constU;
    // Deliberately half a block on: from the middle of a block the vector is that of the next one.
    vec2 block = floor(vec2(0.5) + source / mb_size);
    vec2 mv = texture2DRect(motionVect, block + 0.5).st;
    vec4 mc = texture2DRect(texLP, st + constU * mv);
    vec4 current = catmull_rom(texVP0, source);
    // With residual = current - old, this is mc + residual + 0.5 * (current - mc - residual).
    vec4 estimate = current + 0.5 * (mc - bilinear(texLP0, source + mv));
    gl_FragColor = floor(mod(st, constU)) == vec2(0.0) ? current : estimate;
}
