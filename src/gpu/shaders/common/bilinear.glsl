// SPDX-License-Identifier: MIT
// Sampling between texel centres, with the edges repeated. Four plain reads instead of a filtered
// one: drivers filter 8-bit textures with weights of 8 bits, which is coarser than what is computed
// here.
vec4 bilinear(sampler2DRect tex, vec2 st)
{
    vec2 corner = floor(st - 0.5) + 0.5;
    vec2 f = st - corner;
    vec4 a = texture2DRect(tex, corner);
    vec4 b = texture2DRect(tex, corner + vec2(1.0, 0.0));
    vec4 c = texture2DRect(tex, corner + vec2(0.0, 1.0));
    vec4 d = texture2DRect(tex, corner + vec2(1.0, 1.0));
    // Not mix(), which some drivers compute as two products.
    vec4 lower = a + f.s * (b - a);
    vec4 upper = c + f.s * (d - c);
    return lower + f.t * (upper - lower);
}
