// SPDX-License-Identifier: MIT
#pragma once

/// Whether the driver draws on the processor. There one pass over a large texture can take seconds,
/// and everything asked of the driver meanwhile, the end of its context included, waits for it. Set
/// at start-up.
extern bool draws_on_processor;

/// Most texels of a piece, in whole rows, of which it has at least one. Measured with llvmpipe on
/// two busy cores: up to 50 ms each, and no more processor time than passes drawn whole.
inline constexpr int piece_texels = 1 << 18;

/// Has `unwanted` asked while passes are drawn: on such a driver they are drawn in pieces then, of
/// which no more than two are under way, and the pieces after `unwanted` said yes are left out. The
/// texels of the others are as ever. Null, as at the beginning: passes are drawn whole. [main]
void set_drawing_watch(bool (*unwanted)());

/// Whether pieces are being left out: what leads to them, large textures for instance, can be left
/// out as well. [main]
bool drawing_is_unwanted();

/// Calls `draw`, which draws over the render target of `width` x `height` texels, once for all of
/// it or for one piece after the other, the rest cut off. [main]
void draw_in_pieces(int width, int height, void (*draw)(const void*), const void* argument);

template <class Draw>
void draw_in_pieces(int width, int height, const Draw& draw) {
    draw_in_pieces(
        width, height, [](const void* argument) { (*static_cast<const Draw*>(argument))(); },
        &draw);
}
