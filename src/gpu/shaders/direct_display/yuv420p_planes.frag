#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Planar YUV 4:2:0 straight to the window, with contrast and brightness: shader_YUV420p_to_RGB and the
// enlargement in one, where nothing else wants the picture.
//
// Target:  the window.
// Unit 0:  texY, W x H, linear.
// Unit 1:  texU, W/2 x H/2, linear.
// Unit 2:  texV, W/2 x H/2, linear.
// Taps:    3.
// Neutral: c = 1, b = 0.
uniform sampler2DRect texY;
uniform sampler2DRect texU;
uniform sampler2DRect texV;
uniform float c;  // contrast, a factor
uniform float b;  // brightness, added

void main()
{
    float y = texture2DRect(texY, gl_TexCoord[0].st).r - 0.03125;
    float u = texture2DRect(texU, gl_TexCoord[1].st).r - 0.5;
    float v = texture2DRect(texV, gl_TexCoord[2].st).r - 0.5;
    gl_FragColor = vec4(y + 1.5960 * v, y - 0.3918 * u - 0.8130 * v, y + 2.0172 * u, 0.0) * c + b;
}
