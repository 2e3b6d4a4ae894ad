#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The sum starts with the texel itself.
//
// Target:  W x f, H x f, 16-bit float: rgb the weighted sum, a the sum of the weights.
// Unit 0:  texHighRes, the source, nearest.
// Taps:    1.
uniform sampler2DRect texHighRes;
uniform float weight;  // of a perfect match

void main()
{
    gl_FragColor = vec4(weight * texture2DRect(texHighRes, gl_TexCoord[0].st).rgb, weight);
}
