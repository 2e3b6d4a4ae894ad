#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// The vertical half of the sharpening, blended with the original. The kernel is not that of the
// rows, and its ends differ a little.
//
// Target:  the size of the input, 16-bit float. May be texOrig itself: only the own texel is read
//          there.
// Unit 0:  texIn, the result of hor_filter, nearest.
// Unit 1:  texOrig, the picture to sharpen, nearest.
// Taps:    8.
// Neutral: alpha = 0.
uniform sampler2DRect texIn;
uniform sampler2DRect texOrig;
uniform float alpha;  // 0: the original, 1: the filtered picture, up to 2.5: beyond it

void main()
{
    vec2 st = gl_TexCoord[0].st;
    vec4 filtered = texture2DRect(texIn, st - vec2(0.0, 3.0)) * 0.01861 +
                    texture2DRect(texIn, st - vec2(0.0, 2.0)) * -0.08674 +
                    texture2DRect(texIn, st - vec2(0.0, 1.0)) * -0.13400 +
                    texture2DRect(texIn, st) * 1.09828 +
                    texture2DRect(texIn, st + vec2(0.0, 1.0)) * -0.1340 +
                    texture2DRect(texIn, st + vec2(0.0, 2.0)) * -0.08674 +
                    texture2DRect(texIn, st + vec2(0.0, 3.0)) * 0.018611;
    gl_FragColor = filtered * alpha + texture2DRect(texOrig, st) * (1.0 - alpha);
}
