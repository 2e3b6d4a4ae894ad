#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The current picture as it is.
//
// Target:  the enhanced size.
// Unit 0:  texCP, the current picture, nearest.
// Taps:    1.
uniform sampler2DRect texCP;

void main()
{
    gl_FragColor = texture2DRect(texCP, gl_TexCoord[0].st);
}
