#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The vertical half of the mean over 5 x 5 texels.
//
// Target:  W x f, H x f, 8 bits. Not the input.
// Unit 0:  texDiff, nearest.
// Taps:    5.
uniform sampler2DRect texDiff;

void main()
{
    vec2 st = gl_TexCoord[0].st;
    gl_FragColor = 0.2 * (texture2DRect(texDiff, st + vec2(0.0, -2.0)) +
                          texture2DRect(texDiff, st + vec2(0.0, -1.0)) +
                          texture2DRect(texDiff, st) +
                          texture2DRect(texDiff, st + vec2(0.0, 1.0)) +
                          texture2DRect(texDiff, st + vec2(0.0, 2.0)));
}
