#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Every texel of the estimate is its own first candidate.
//
// Target:  W x f, H x f, 8 bits: rgb the candidate, a its error.
// Unit 0:  texHighRes, the estimate, nearest.
// Taps:    1.
uniform sampler2DRect texHighRes;
uniform float threshold;  // error from which on a candidate is no better than none

void main()
{
    gl_FragColor = vec4(texture2DRect(texHighRes, gl_TexCoord[0].st).rgb, threshold);
}
