#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The horizontal half of the sharpening.
//
// Target:  the size of the input, 16-bit float: values go below 0 and above 1.
// Unit 0:  texIn, nearest.
// Taps:    7.
uniform sampler2DRect texIn;

void main()
{
    vec2 st = gl_TexCoord[0].st;
    gl_FragColor = texture2DRect(texIn, st - vec2(3.0, 0.0)) * 0.0363 +
                   texture2DRect(texIn, st - vec2(2.0, 0.0)) * -0.1849 +
                   texture2DRect(texIn, st - vec2(1.0, 0.0)) * -0.2817 +
                   texture2DRect(texIn, st) * 2.3739 +
                   texture2DRect(texIn, st + vec2(1.0, 0.0)) * -0.2817 +
                   texture2DRect(texIn, st + vec2(2.0, 0.0)) * -0.1849 +
                   texture2DRect(texIn, st + vec2(3.0, 0.0)) * 0.0363;
}
