#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Planar YUV 4:2:0 to RGB, with contrast and brightness.
//
// Target:  W x H, RGB, 8 bits.
// Unit 0:  texInput, one channel, W x 3H/2, nearest. Rows 0 to H - 1 hold Y; below them U in the left
//          half of the columns and V in the right half. Its coordinates run over W x H.
// Taps:    3.
// Neutral: c = 1, b = 0.
uniform sampler2DRect texInput;
uniform float halfWidth;  // W / 2
uniform float height;     // H
uniform float c;          // contrast, a factor
uniform float b;          // brightness, added

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec2 chroma = 0.5 * st;
    float y = texture2DRect(texInput, st).r - 0.03125;
    float u = texture2DRect(texInput, vec2(chroma.s, height + chroma.t)).r - 0.5;
    float v = texture2DRect(texInput, vec2(halfWidth + chroma.s, height + chroma.t)).r - 0.5;
    gl_FragColor = vec4(y + 1.5960 * v, y - 0.3918 * u - 0.8130 * v, y + 2.0172 * u, 0.0) * c + b;
}
