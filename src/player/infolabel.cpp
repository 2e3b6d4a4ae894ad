// SPDX-License-Identifier: MIT
#include "player/infolabel.h"

#include "player/clocks.h"

#include <utility>

namespace {

// Microseconds from the popup on.
constexpr std::int64_t fade_starts = 1500000;
constexpr std::int64_t fade_takes = 1000000;

}  // namespace

float infolabel_alpha = 0.0F;
std::int64_t infolabel_popup_time = 0;

void set_infolabel(std::string text) {
    infolabel_text = std::move(text);
    infolabel_alpha = 1.0F;
    infolabel_popup_time = wall_clock();
}

void fade_infolabel(std::int64_t now) {
    if (infolabel_text.empty()) return;
    const std::int64_t fading = now - infolabel_popup_time - fade_starts;
    if (fading > fade_takes) {
        infolabel_text.clear();
        infolabel_alpha = 0.0F;
    } else if (fading > 0) {
        infolabel_alpha = 1.0F - static_cast<float>(fading) / static_cast<float>(fade_takes);
    }
}
