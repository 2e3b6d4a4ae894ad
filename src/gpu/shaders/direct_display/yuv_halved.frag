#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// A picture of half its size in both directions, as Y, U, V in a texel, straight to the window, with
// contrast and brightness: yuv420p_planes for a window that is no larger than that.
//
// Target:  the window.
// Unit 0:  texYUV, W/2 x H/2, linear.
// Taps:    1.
// Neutral: c = 1, b = 0.
uniform sampler2DRect texYUV;
uniform float c;  // contrast, a factor
uniform float b;  // brightness, added

void main()
{
    vec4 yuv = texture2DRect(texYUV, gl_TexCoord[0].st) - vec4(0.03125, 0.5, 0.5, 0.0);
    float y = yuv.r;
    float u = yuv.g;
    float v = yuv.b;
    gl_FragColor = vec4(y + 1.5960 * v, y - 0.3918 * u - 0.8130 * v, y + 2.0172 * u, 0.0) * c + b;
}
