#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Adds the eight texels at d and -d, each by its weight. The weight from a texel back to another is
// the one that the other has for it.
//
// Target:  W x f, H x f, 16-bit float: rgb the weighted sum, a the sum of the weights. Not the
//          input.
// Unit 0:  texHighRes, the source, nearest.
// Unit 1:  texResult, the sum so far, nearest.
// Unit 2:  texWeight, the weights at d + (0, 0), (0, 1), (1, 0), (1, 1), nearest.
// Taps:    11.
uniform sampler2DRect texHighRes;
uniform sampler2DRect texResult;
uniform sampler2DRect texWeight;
uniform vec2 d;

vec3 texel(vec2 st)
{
    return texture2DRect(texHighRes, st).rgb;
}

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec4 w1 = texture2DRect(texWeight, st);
    vec4 w2 = texture2DRect(texWeight, st - d);
    vec3 c1 = texel(st + d) * w1.x + texel(st + d + vec2(0.0, 1.0)) * w1.y +
              texel(st + d + vec2(1.0, 0.0)) * w1.z + texel(st + d + vec2(1.0, 1.0)) * w1.w;
    vec3 c2 = texel(st - d) * w2.x + texel(st - d - vec2(0.0, 1.0)) * w2.y +
              texel(st - d - vec2(1.0, 0.0)) * w2.z + texel(st - d - vec2(1.0, 1.0)) * w2.w;
    gl_FragColor = texture2DRect(texResult, st) + vec4(c1, dot(w1, vec4(1.0))) +
                   vec4(c2, dot(w2, vec4(1.0)));
}
