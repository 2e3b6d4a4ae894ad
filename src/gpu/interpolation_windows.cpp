// SPDX-License-Identifier: MIT
#include "gpu/interpolation_windows.h"

#include <algorithm>

WindowTable window_table(int size) {
    WindowTable table{};
    size = std::clamp(size, 1, window_length);
    const auto row = [&table](int i) -> std::array<float, 4>& {
        return table[static_cast<std::size_t>(i)];
    };
    for (int i = 0; i < size / 2; ++i) {
        const float ramp = static_cast<float>(i + 1) / (static_cast<float>(size) * 0.5F);
        const int mirrored = size - 1 - i;
        row(i)[0] = row(mirrored)[0] = ramp;
        row(i)[1] = row(mirrored)[2] = 1.0F - ramp;
    }
    for (int i = 0; i < size; ++i)
        row(i)[3] = row(i)[0] + (row(i)[1] + row(i)[2]) * 0.5F;
    return table;
}

std::array<float, std::size_t{3} * window_length> three_columns(const WindowTable& table) {
    std::array<float, std::size_t{3} * window_length> values{};
    auto value = values.begin();
    for (const auto& row : table)
        value = std::copy(row.begin(), row.begin() + 3, value);
    return values;
}
