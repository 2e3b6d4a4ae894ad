// SPDX-License-Identifier: MIT
// The picture between two others at a place in the current one; the programs say how.
vec4 overlapping_blocks(vec2 st)
{
    vec2 source = st / constU;
    vec2 block = floor(source / mb_size);
    vec2 position = source - block * mb_size;
    // Blocks have even sizes: the weight of the neighbours, y + z, is 1 - x, and w lies halfway
    // between x and 1. Reading one column of a table is faster than reading four.
    vec2 x = vec2(window_h[int(position.s)].x, window_v[int(position.t)].x);
    vec2 neighbour = 1.0 - x;
    vec2 both = 0.5 * (1.0 + x);
    vec2 own = texture2DRect(motionVect, block + 0.5).st;
    vec4 m1 = texture2DRect(motionVect, block + vec2(0.5, -0.5));
    vec4 m2 = texture2DRect(motionVect, block + vec2(-0.5, 0.5));
    vec2 beside = 0.5 * (own + (position.s < mb_half_size.s ? m2.st : m1.pq));
    vec2 across = 0.5 * (own + (position.t < mb_half_size.t ? m1.st : m2.pq));
    float reach = alpha * constU;
    vec4 mc = bilinear(texLP, st + reach * own) * (x.s * x.t) +
              bilinear(texLP, st + reach * across) * (both.s * neighbour.t) +
              bilinear(texLP, st + reach * beside) * (neighbour.s * both.t);
    vec4 current = texture2DRect(texCP, st);
    float e = dot(abs(mc.rgb - current.rgb), vec3(1.0));
    mc += smoothstep(0.02, 0.15, e) * (texture2DRect(texLP, st) - mc);
    return mc + alpha * (current - mc);
}
