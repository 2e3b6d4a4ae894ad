// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

// Arithmetic on positions that may be anything at all.

/// `value` between `low` and `high`; `low` for not-a-number and where `high` is below `low`.
inline float limited(float value, float low, float high) {
    return std::max(low, std::isnan(value) ? low : std::min(value, high));
}

/// Cut towards zero; the nearest integer there is for what lies beyond, 0 for not-a-number.
inline int whole_number(double value) {
    if (std::isnan(value)) return 0;
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, lowest, highest));
}
