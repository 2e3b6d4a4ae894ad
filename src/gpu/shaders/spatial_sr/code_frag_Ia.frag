#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// First estimate without a reference: the picture at its enhanced size. A copy at factor 1.
//
// Target:  W x f, H x f, 16-bit float.
// Unit 0:  texLowRes, the picture at its own size W x H, nearest. Its coordinates run over W x H.
// Taps:    16.
uniform sampler2DRect texLowRes;

#include "catmull_rom.glsl"

void main()
{
    gl_FragColor = catmull_rom(texLowRes, gl_TexCoord[0].st);
}
