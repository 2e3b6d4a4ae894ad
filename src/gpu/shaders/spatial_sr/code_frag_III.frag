#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// How far the estimate, displaced by d and by up to one texel more, is from the picture.
//
// Target:  W x f, H x f, 8 bits: the sum over r, g, b of the differences at d + (0, 0), (0, 1), (1,
//          0), (1, 1).
// Unit 0:  texLowRes, the picture, W x H, nearest.
// Unit 1:  texHighRes, the estimate, W x f, H x f, nearest.
// Taps:    8.
uniform sampler2DRect texLowRes;
uniform sampler2DRect texHighRes;
uniform vec2 d;        // in texels of the estimate
uniform float constU;  // f, 2 to 4

#include "bilinear.glsl"

float difference(vec2 st, vec3 central)
{
    return dot(abs(texture2DRect(texHighRes, st).rgb - central), vec3(1.0));
}

void main()
{
    vec2 p = gl_TexCoord[1].st;
    vec3 central = bilinear(texLowRes, p / constU).rgb;
    vec2 q = p + d;
    gl_FragColor = vec4(difference(q, central), difference(q + vec2(0.0, 1.0), central),
                        difference(q + vec2(1.0, 0.0), central),
                        difference(q + vec2(1.0, 1.0), central));
}
