#extension GL_ARB_texture_rectangle : enable
// SPDX-License-Identifier: MIT
// Waveforms drawn before fade and change their colour.
//
// Target:  RGBA, 16-bit float. May be the input itself: only the own texel is read.
// Unit 0:  texOutput, nearest. Its alpha is the level of a texel.
// Taps:    1.
// Neutral: none; gain 0 clears.
uniform sampler2DRect texOutput;
uniform float gain;  // of the level, 0 to 1

// The smallest half float that is not subnormal. Subnormal ones count as zero, as they do where the
// processor has none: where it has, rounding to the nearest would keep the last of them for ever.
const float least = 0.00006103515625;

void main()
{
    float lvl = texture2DRect(texOutput, gl_TexCoord[0].st).a * gain;
    if (lvl < least)
        gl_FragColor = vec4(0.0);
    else
        gl_FragColor = vec4((1.0 - lvl) * lvl, 1.0 - lvl, 1.0 - lvl, lvl);
}
