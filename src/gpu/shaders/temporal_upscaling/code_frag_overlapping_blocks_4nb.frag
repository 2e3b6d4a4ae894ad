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
uniform vec4 window_h[16];  // weights along a row: own, left, right, own and half of the neighbours
uniform vec4 window_v[16];  // the same along a column

#include "bilinear.glsl"

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec2 source = st / constU;
    vec2 block = floor(source / mb_size);
    vec2 position = source - block * mb_size;
    // The weight of the neighbours, y + z, is 2 (w - x): reading two columns of a table is faster
    // than reading four.
    vec2 w = window_h[int(position.s)].xw;
    vec2 v = window_v[int(position.t)].xw;
    vec2 neighbour = 2.0 * vec2(w.y - w.x, v.y - v.x);
    vec2 own = texture2DRect(motionVect, block + 0.5).st;
    vec4 m1 = texture2DRect(motionVect, block + vec2(0.5, -0.5));
    vec4 m2 = texture2DRect(motionVect, block + vec2(-0.5, 0.5));
    vec2 beside = 0.5 * (own + (position.s < mb_half_size.s ? m2.st : m1.pq));
    vec2 across = 0.5 * (own + (position.t < mb_half_size.t ? m1.st : m2.pq));
    float reach = alpha * constU;
    vec4 mc = bilinear(texLP, st + reach * own) * (w.x * v.x) +
              bilinear(texLP, st + reach * across) * (w.y * neighbour.t) +
              bilinear(texLP, st + reach * beside) * (neighbour.s * v.y);
    vec4 current = texture2DRect(texCP, st);
    float e = dot(abs(mc.rgb - current.rgb), vec3(1.0));
    mc += smoothstep(0.02, 0.15, e) * (texture2DRect(texLP, st) - mc);
    gl_FragColor = mc + alpha * (current - mc);
}
