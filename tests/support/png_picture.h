// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A picture of 8-bit red, green and blue, top row first, no gaps.
struct PngPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
};

/// False where the file cannot be written.
bool write_png(const std::string& path, const PngPicture& picture);

/// A picture of size 0 where the file is no PNG picture of that kind.
PngPicture read_png(const std::string& path);
