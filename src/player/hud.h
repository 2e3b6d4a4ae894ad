// SPDX-License-Identifier: MIT
#pragma once

#include "gui/overlay_text.h"
#include "media/subtitles.h"
#include "player/video_state.h"

#include <cstdint>
#include <string>
#include <vector>

/// What lies over the picture is decided here, from plain data, and drawn elsewhere.

/// Of the open film, for the line at the top right.
struct HudStatus {
    bool wanted = false;        ///< the setting "status"
    bool scanning = false;      ///< forwards or backwards
    std::int64_t position = 0;  ///< microseconds, as `playing_position` gives it
    double audio_ahead = 0.0;   ///< clock of the sound minus master clock, seconds
    double video_ahead = 0.0;   ///< clock of the pictures minus master clock, seconds
    int fps = 0;                ///< pictures shown per second
};

/// Everything that the texts over the picture depend on.
struct HudInput {
    float width = 0.0F;  ///< of the window, pixels
    float height = 0.0F;
    std::string label;  ///< as faded by now
    float label_alpha = 0.0F;
    HudStatus status;
    const Subtitle* subtitle = nullptr;
};

/// Where the newest video packet lies in the film, without video the newest audio packet, in
/// microseconds from the film's start; 0 without either, and instead of times before the start.
std::int64_t playing_position(const VideoState* is);

/// How many hours the status line tells for a position in microseconds: whole hours of the low 32
/// bits, taken as a signed number, divided as an unsigned one.
std::int32_t status_hours(std::int64_t position);

/// The status line; empty for none.
std::string status_line(const HudStatus& status);

/// The film as the status line tells of it. A clock of sound or pictures that the film does not
/// have is not ahead of anything. [main]
HudStatus hud_status(const VideoState* is, int fps);

/// Whether swaps shall wait for the display when that is left to the player: only where pictures
/// come as fast as it is.
bool vsync_is_wanted(int fps, int refresh_rate);

/// Opacity of a subtitle that ends at `end`: it fades over its last half second.
float subtitle_fade(std::uint64_t end, std::int64_t position);

/// The lines of a subtitle in a window, centred below each other. Those below its lower edge are
/// left out. Needs the font's measures.
std::vector<OverlayText> layout_subtitle(const Subtitle& subtitle, std::int64_t position,
                                         float width, float height);

/// All texts in the order in which they are drawn.
std::vector<OverlayText> hud_texts(const HudInput& input);

/// The subtitle to show now, null for none: none either while the film is on its way to another
/// place, since positions are still those of the old one. [main]
const Subtitle* current_subtitle(const VideoState* is);
