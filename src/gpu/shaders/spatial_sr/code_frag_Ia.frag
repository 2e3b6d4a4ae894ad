#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The picture at its enhanced size, without a search for detail.
//
// Target:  W x f, H x f.
// Unit 0:  texLowRes, the picture at its own size W x H, linear. Its coordinates run over W x H.
// Taps:    1.
uniform sampler2DRect texLowRes;

void main()
{
    gl_FragColor = texture2DRect(texLowRes, gl_TexCoord[0].st);
}
