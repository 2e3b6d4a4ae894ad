#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The horizontal half of the sum over 3 x 3 texels, for factors up to 2.
//
// Target:  W x f, H x f, 16-bit float. Not the input.
// Unit 0:  texDiff, nearest.
// Taps:    3.
uniform sampler2DRect texDiff;

void main()
{
    vec2 st = gl_TexCoord[0].st;
    gl_FragColor = texture2DRect(texDiff, st - vec2(1.0, 0.0)) + texture2DRect(texDiff, st) +
                   texture2DRect(texDiff, st + vec2(1.0, 0.0));
}
