// SPDX-License-Identifier: MIT
// Sampling between texel centres, with the edges repeated. Four plain reads instead of a filtered
// one: drivers filter 8-bit textures with weights of 8 bits, which is coarser than what is computed
// here.
vec4 bilinear(sampler2DRect tex, vec2 st)
{
    vec2 corner = floor(st - 0.5) + 0.5;
    vec2 f = st - corner;
    vec4 lower = mix(texture2DRect(tex, corner), texture2DRect(tex, corner + vec2(1.0, 0.0)), f.s);
    vec4 upper = mix(texture2DRect(tex, corner + vec2(0.0, 1.0)),
                     texture2DRect(tex, corner + vec2(1.0, 1.0)), f.s);
    return mix(lower, upper, f.t);
}
