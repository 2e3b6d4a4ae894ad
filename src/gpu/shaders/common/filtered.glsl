// SPDX-License-Identifier: MIT
// Sampling between texel centres by the driver, with weights of 8 bits: enough where what is drawn has
// 8 bits itself. The textures need linear filters.
vec4 bilinear(sampler2DRect tex, vec2 st)
{
    return texture2DRect(tex, st);
}
