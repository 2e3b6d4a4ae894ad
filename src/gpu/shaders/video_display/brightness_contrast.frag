#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Contrast and brightness, alpha included.
//
// Target:  RGB, 8 bits. May be the input itself: only the own texel is read.
// Unit 0:  textureX, nearest.
// Taps:    1.
// Neutral: c = 1, b = 0.
uniform sampler2DRect textureX;
uniform float c;  // contrast, a factor
uniform float b;  // brightness, added

void main()
{
    gl_FragColor = texture2DRect(textureX, gl_TexCoord[0].st) * c + b;
}
