#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The weighted mean; alpha becomes 1.
//
// Target:  W x f, H x f, 16-bit float.
// Unit 0:  texResult, rgb the weighted sum, a the sum of the weights, nearest.
// Taps:    1.
uniform sampler2DRect texResult;

void main()
{
    vec4 sum = texture2DRect(texResult, gl_TexCoord[0].st);
    gl_FragColor = sum / sum.a;
}
