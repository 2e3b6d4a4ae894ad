// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

/// The information label: a short text over the picture that fades by itself. [main]
extern std::string infolabel_text;

/// Opacity, 0 to 1.
extern float infolabel_alpha;

/// Wall-clock time in microseconds at which the text was set.
extern std::int64_t infolabel_popup_time;

/// Shows `text`, fully opaque, from now on. [main]
void set_infolabel(std::string text);

/// Brings the label to what it is at the wall-clock time `now`: it fades for a second after the
/// first 1.5, then the text is empty. [main]
void fade_infolabel(std::int64_t now);
