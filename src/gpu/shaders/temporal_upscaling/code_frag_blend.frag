#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// A cross-fade from the previous picture to the current one.
//
// Target:  the size of the inputs, 16-bit float.
// Unit 0:  texLP, the previous picture, nearest.
// Unit 1:  texCP, the current picture, nearest.
// Taps:    2.
// Neutral: alpha = 1, the current picture.
uniform sampler2DRect texLP;
uniform sampler2DRect texCP;
uniform float alpha;  // phase, 0 to 1

void main()
{
    vec4 old = texture2DRect(texLP, gl_TexCoord[0].st);
    vec4 current = texture2DRect(texCP, gl_TexCoord[1].st);
    gl_FragColor = old + alpha * (current - old);
}
