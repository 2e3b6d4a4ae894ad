#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// First estimate from the previous picture: its enhanced texels, carried along by the vector of the
// block, where they agree with the enlarged new picture; the new picture elsewhere.
//
// Target:  W x f, H x f, 16-bit float.
// Unit 0:  texLP, the previous picture enhanced, W x f, H x f, nearest.
// Unit 1:  texVP0, the current picture, W x H, nearest.
// Unit 2:  motionVect, a texel per block, vectors in source texels, nearest.
// Taps:    18.
// Neutral: recThreshold = 0.
uniform sampler2DRect texLP;
uniform sampler2DRect texVP0;
uniform sampler2DRect motionVect;
uniform float constU;        // f, 1 to 4
uniform vec2 mb_size;        // block, in source texels
uniform float recThreshold;  // of the sum of the differences in r, g and b

#include "catmull_rom.glsl"

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec2 source = st / constU;
    vec2 mv = texture2DRect(motionVect, floor(source / mb_size) + 0.5).st;
    vec4 mc = texture2DRect(texLP, st + constU * mv);
    vec4 current = catmull_rom(texVP0, source);
    float change = dot(abs(current.rgb - mc.rgb), vec3(1.0));
    gl_FragColor = change > recThreshold ? current : mc + 0.01 * (current - mc);
}
