#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The vertical half of the sum over 3 x 3 texels, for factors up to 2, and the weights it gives.
//
// Target:  W x f, H x f, 16-bit float: a weight, up to exp(hmax), for each of the four
//          displacements.
// Unit 0:  texDiff, sums along rows, nearest.
// Unit 1:  texQTable, a texel per block, its quantiser / 127 in r, nearest.
// Taps:    5.
uniform sampler2DRect texDiff;
uniform sampler2DRect texQTable;
uniform float h;       // fall-off with the squared distance and the squared quantiser
uniform float hmax;    // logarithm of the weight of a perfect match
uniform vec2 mb_size;  // block, in source texels
uniform vec2 d;        // in texels of the target
uniform float constU;  // f, 1 to 2

float quantiser(vec2 st)
{
    return texture2DRect(texQTable, floor(st / constU / mb_size) + 0.5).r;
}

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec4 msd = texture2DRect(texDiff, st - vec2(0.0, 1.0)) + texture2DRect(texDiff, st) +
               texture2DRect(texDiff, st + vec2(0.0, 1.0));
    float q = 0.5 * (quantiser(st) + quantiser(st + d));
    gl_FragColor = exp(hmax - h * msd * (q * q));
}
