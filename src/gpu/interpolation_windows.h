// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

/// The largest block, in texels, that the windows of the interpolation serve.
inline constexpr int window_length = 16;

/// Weights along one side of a block, a row per texel; 0 beyond the block. Columns: the block's own
/// vector; the neighbour's before it; the neighbour's behind it; the own one and half of the
/// neighbours'.
using WindowTable = std::array<std::array<float, 4>, window_length>;

/// The windows over a block of `size` texels, even, 2 to 16: ramps that reach 1 in the middle.
WindowTable window_table(int size);

/// The first three columns in a row, as a program takes them.
std::array<float, std::size_t{3} * window_length> three_columns(const WindowTable& table);
