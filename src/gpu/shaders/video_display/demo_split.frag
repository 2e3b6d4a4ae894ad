#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The original left of a red line of one texel, the enhanced picture right of it.
//
// Target:  the enhanced picture's size. May be texOutput itself: only the own texel is read there.
// Unit 0:  texOutput, the enhanced picture, nearest.
// Unit 1:  texOriginal, the picture at its own size, nearest.
// Taps:    5.
uniform sampler2DRect texOutput;
uniform sampler2DRect texOriginal;
uniform float halfWidth;  // column of the line, in texels of texOutput
uniform float scale;      // size of texOriginal over the size of texOutput

#include "bilinear.glsl"

void main()
{
    vec2 st = gl_TexCoord[0].st;
    if (st.s < halfWidth)
        gl_FragColor = bilinear(texOriginal, st * scale);
    else if (floor(st.s) == halfWidth)
        gl_FragColor = vec4(1.0, 0.0, 0.0, 0.0);
    else
        gl_FragColor = texture2DRect(texOutput, st);
}
