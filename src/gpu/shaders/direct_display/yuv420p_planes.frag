#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Planar YUV 4:2:0 straight to the window, with contrast and brightness: shader_YUV420p_to_RGB and the
// enlargement in one, where nothing else wants the picture.
//
// Target:  the window.
// Unit 0:  texY, W x H, linear.
// Unit 1:  texUV, U as luminance and V as alpha, W/2 x H/2, linear.
// Taps:    2.
// Neutral: c = 1, b = 0.
uniform sampler2DRect texY;
uniform sampler2DRect texUV;
uniform float c;  // contrast, a factor
uniform float b;  // brightness, added

void main()
{
    vec2 st = gl_TexCoord[0].st;
    float y = texture2DRect(texY, st).r - 0.03125;
    vec4 chroma = texture2DRect(texUV, 0.5 * st) - 0.5;
    float u = chroma.r;
    float v = chroma.a;
    gl_FragColor = vec4(y + 1.5960 * v, y - 0.3918 * u - 0.8130 * v, y + 2.0172 * u, 0.0) * c + b;
}
