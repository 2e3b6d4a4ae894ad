// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

/// What a post-processing hook is told about a picture whose enhanced texture it may change.
struct PostprocessingInfo {
    std::uint32_t size;             ///< of this record, 80
    std::uint32_t texture;          ///< GL name of the enhanced texture
    std::uint32_t target;           ///< its target
    std::uint32_t internal_format;  ///< its internal format
    std::uint32_t pixel_format;     ///< its pixel format
    std::int32_t width;             ///< of the picture, before the enhancement
    std::int32_t height;
    std::int32_t spatial_factor;   ///< 1 to 4
    std::int32_t temporal_factor;  ///< 1 to 5
    std::int32_t block_width;      ///< pixels per motion vector
    std::int32_t block_height;
    std::int32_t playback_speed_index;  ///< 0 to 9
    double pts;                         ///< the picture's time in seconds
    double phase;                       ///< interpolation phase over the temporal factor
    double video_clock;                 ///< seconds
    double master_clock;                ///< seconds
};
static_assert(sizeof(PostprocessingInfo) == 80);
static_assert(offsetof(PostprocessingInfo, playback_speed_index) == 44);
static_assert(offsetof(PostprocessingInfo, pts) == 48);
static_assert(offsetof(PostprocessingInfo, master_clock) == 72);

/// A hook, called on the main thread with the GL context current, once per decoded picture.
using PostprocessingCallback = void (*)(PostprocessingInfo* info);
