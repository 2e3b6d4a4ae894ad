// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/temporal_upscaling.h"
#include "gpu/video_display.h"

/// The factors that the settings ask for, fitted to what textures can hold.
struct EnhancementFactors {
    int spatial;   ///< 1 to 4
    int temporal;  ///< 1 to 5
};
EnhancementFactors enhancement_factors(int width, int height);

/// Calls the hook, if there is one, for `pic`. `enhanced` must exist. [main]
void postprocessing_filter(const DisplayView& view, VideoPicture& pic,
                           const EnhancementFactors& factors);

/// Brings the current picture, and the previous one where it is needed, through every stage the
/// settings ask for; `view.shown` is the result. Where `direct` is given and interpolation is the
/// last stage, that is described there instead of being done, and `view.shown` is the current
/// picture. [main]
void prepare_picture(const DisplayView& view, VideoPicture& cur, VideoPicture& prev,
                     const EnhancementFactors& factors, DirectInterpolation* direct = nullptr);
