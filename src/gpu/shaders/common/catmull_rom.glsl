// SPDX-License-Identifier: MIT
// Sampling by the bicubic of Catmull and Rom (a = -0.5), which passes through the texels: at the
// centre of a texel it is that texel. 16 plain reads: drivers filter 8-bit textures with weights of
// 8 bits, and the outer weights would magnify that error.
vec4 catmull_rom_row(sampler2DRect tex, vec2 st, vec4 w)
{
    return w.x * texture2DRect(tex, st - vec2(1.0, 0.0)) + w.y * texture2DRect(tex, st) +
           w.z * texture2DRect(tex, st + vec2(1.0, 0.0)) +
           w.w * texture2DRect(tex, st + vec2(2.0, 0.0));
}

vec4 catmull_rom_weights(float f)
{
    return vec4(((-0.5 * f + 1.0) * f - 0.5) * f, (1.5 * f - 2.5) * f * f + 1.0,
                ((-1.5 * f + 2.0) * f + 0.5) * f, (0.5 * f - 0.5) * f * f);
}

vec4 catmull_rom(sampler2DRect tex, vec2 st)
{
    vec2 corner = floor(st - 0.5) + 0.5;
    vec2 f = st - corner;
    vec4 w = catmull_rom_weights(f.s);
    vec4 v = catmull_rom_weights(f.t);
    return v.x * catmull_rom_row(tex, corner - vec2(0.0, 1.0), w) +
           v.y * catmull_rom_row(tex, corner, w) +
           v.z * catmull_rom_row(tex, corner + vec2(0.0, 1.0), w) +
           v.w * catmull_rom_row(tex, corner + vec2(0.0, 2.0), w);
}
