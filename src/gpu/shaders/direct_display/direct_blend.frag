#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// code_frag_blend and the reduction to the window in one.
//
// Target:  the window.
// Unit 0:  texLP, the previous picture, linear.
// Unit 1:  texCP, the current picture, linear.
// Taps:    2.
// Neutral: alpha = 1, the current picture.
uniform sampler2DRect texLP;
uniform sampler2DRect texCP;
uniform float alpha;  // phase, 0 to 1

void main()
{
    vec4 old = texture2DRect(texLP, gl_TexCoord[0].st);
    vec4 current = texture2DRect(texCP, gl_TexCoord[0].st);
    gl_FragColor = old + alpha * (current - old);
}
