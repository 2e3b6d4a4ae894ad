// SPDX-License-Identifier: MIT
#include "player/infolabel.h"

#include "player/clocks.h"

#include <utility>

float infolabel_alpha = 0.0F;
std::int64_t infolabel_popup_time = 0;

void set_infolabel(std::string text) {
    infolabel_text = std::move(text);
    infolabel_alpha = 1.0F;
    infolabel_popup_time = wall_clock();
}
