// SPDX-License-Identifier: MIT
#pragma once

#include "core/grid.h"
#include "gpu/video_picture.h"

#include <cstdint>
#include <string>
#include <vector>

/// A picture as the codec library gives it, read by a loop that shares nothing with the player.
struct PlainPicture {
    int width = 0;
    int height = 0;
    char type = '?';   ///< I, P, B
    double dts = 0.0;  ///< of the packet that gave it, seconds; not-a-number when unset
    bool has_vectors = false;
    std::vector<std::vector<MotionVector>> vectors;  ///< [row][column], cells of 8 x 8
    std::vector<std::vector<int>> quantisers;
};

/// Decodes the whole file with one thread.
std::vector<PlainPicture> decode_plainly(const std::string& path);
