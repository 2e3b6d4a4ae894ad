#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// How far the estimate, displaced by d and by up to one texel more, is from the picture.
//
// Target:  W x f, H x f, 16-bit float: the squared distance of all four channels at d + (0, 0), (0,
//          1), (1, 0), (1, 1).
// Unit 0:  texLowRes, the picture, W x H, nearest.
// Unit 1:  texHighRes, the estimate, W x f, H x f, nearest.
// Taps:    8.
uniform sampler2DRect texLowRes;
uniform sampler2DRect texHighRes;
uniform vec2 d;        // in texels of the estimate
uniform float constU;  // f, 1 to 4

#include "bilinear.glsl"

float squared_distance(vec2 st, vec4 central)
{
    vec4 difference = texture2DRect(texHighRes, st) - central;
    return dot(difference, difference);
}

void main()
{
    vec2 p = gl_TexCoord[1].st;
    vec4 central = bilinear(texLowRes, p / constU);
    vec2 q = p + d;
    gl_FragColor = vec4(squared_distance(q, central), squared_distance(q + vec2(0.0, 1.0), central),
                        squared_distance(q + vec2(1.0, 0.0), central),
                        squared_distance(q + vec2(1.0, 1.0), central));
}
