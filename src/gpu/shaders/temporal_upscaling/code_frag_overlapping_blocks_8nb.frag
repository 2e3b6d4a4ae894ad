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
uniform vec3 window_h[16];  // weights along a row: own, left, right
uniform vec3 window_v[16];  // the same along a column

#include "bilinear.glsl"

vec2 vector_of(vec2 block)
{
    return texture2DRect(motionVect, block + 0.5).st;
}

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec2 source = st / constU;
    vec2 block = floor(source / mb_size);
    vec2 position = source - block * mb_size;
    vec3 w = window_h[int(position.s)];
    vec3 v = window_v[int(position.t)];
    vec2 side = vec2(position.s < mb_half_size.s ? -1.0 : 1.0,
                     position.t < mb_half_size.t ? -1.0 : 1.0);
    vec2 own = vector_of(block);
    vec2 across = 0.5 * (own + vector_of(block + vec2(0.0, side.t)));
    vec2 beside = 0.5 * (own + vector_of(block + vec2(side.s, 0.0)));
    vec2 corner = 0.5 * (own + vector_of(block + side));
    vec2 neighbour = vec2(w.y + w.z, v.y + v.z);
    float reach = alpha * constU;
    vec4 mc = bilinear(texLP, st + reach * own) * (w.x * v.x) +
              bilinear(texLP, st + reach * across) * (w.x * neighbour.t) +
              bilinear(texLP, st + reach * beside) * (neighbour.s * v.x) +
              bilinear(texLP, st + reach * corner) * (neighbour.s * neighbour.t);
    vec4 current = texture2DRect(texCP, st);
    float e = dot(abs(mc.rgb - current.rgb), vec3(1.0));
    mc += smoothstep(0.02, 0.15, e) * (texture2DRect(texLP, st) - mc);
    gl_FragColor = mc + alpha * (current - mc);
}
