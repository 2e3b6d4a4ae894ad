// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/video_display.h"

/// The factors that the settings ask for, fitted to what textures can hold.
struct EnhancementFactors {
    int spatial;   ///< 1 to 4
    int temporal;  ///< 1 to 5
};
EnhancementFactors enhancement_factors(int width, int height);

/// Interpolation methods: the values of the setting, and none at all.
inline constexpr int method_blend = 0;
inline constexpr int method_4_neighbours = 1;
inline constexpr int method_8_neighbours = 2;
inline constexpr int method_off = 255;

/// Calls the hook, if there is one, for `pic`. `enhanced` must exist. [main]
void postprocessing_filter(const DisplayView& view, VideoPicture& pic,
                           const EnhancementFactors& factors);

/// Brings the current picture, and the previous one where it is needed, through every stage the
/// settings ask for; `view.shown` is the result. [main]
void prepare_picture(const DisplayView& view, VideoPicture& cur, VideoPicture& prev,
                     const EnhancementFactors& factors);
