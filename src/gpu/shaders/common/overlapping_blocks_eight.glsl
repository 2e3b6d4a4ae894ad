// SPDX-License-Identifier: MIT
// The picture between two others at a place in the current one; the programs say how.
vec2 vector_of(vec2 block)
{
    return texture2DRect(motionVect, block + 0.5).st;
}

vec4 overlapping_blocks(vec2 st)
{
    vec2 source = st / constU;
    vec2 block = floor(source / mb_size);
    vec2 position = source - block * mb_size;
    // Blocks have even sizes: the weight of the neighbours, y + z, is 1 - x.
    vec2 x = vec2(window_h[int(position.s)].x, window_v[int(position.t)].x);
    vec2 side = vec2(position.s < mb_half_size.s ? -1.0 : 1.0,
                     position.t < mb_half_size.t ? -1.0 : 1.0);
    vec2 own = vector_of(block);
    vec2 across = 0.5 * (own + vector_of(block + vec2(0.0, side.t)));
    vec2 beside = 0.5 * (own + vector_of(block + vec2(side.s, 0.0)));
    vec2 corner = 0.5 * (own + vector_of(block + side));
    vec2 neighbour = 1.0 - x;
    float reach = alpha * constU;
    vec4 mc = bilinear(texLP, st + reach * own) * (x.s * x.t) +
              bilinear(texLP, st + reach * across) * (x.s * neighbour.t) +
              bilinear(texLP, st + reach * beside) * (neighbour.s * x.t) +
              bilinear(texLP, st + reach * corner) * (neighbour.s * neighbour.t);
    vec4 current = texture2DRect(texCP, st);
    float e = dot(abs(mc.rgb - current.rgb), vec3(1.0));
    mc += smoothstep(0.02, 0.15, e) * (texture2DRect(texLP, st) - mc);
    return mc + alpha * (current - mc);
}
