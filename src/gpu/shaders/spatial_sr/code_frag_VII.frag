#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The candidates that won, without their errors.
//
// Target:  W x f, H x f, 16-bit float.
// Unit 0:  texResult, nearest.
// Taps:    1.
uniform sampler2DRect texResult;

void main()
{
    gl_FragColor = vec4(texture2DRect(texResult, gl_TexCoord[0].st).rgb, 0.0);
}
