// SPDX-License-Identifier: MIT
#pragma once

#include "support/png_picture.h"

#include <string>

/// Two limits for components of 0 to 255.
struct PictureLimits {
    int largest;
    double mean;
};

/// Compares with the picture kept as golden/`name`.png and fails the test where it differs by more.
/// What was found and where it differs is left as failed-`name`.png then. With VYX_WRITE_GOLDEN set
/// the picture is kept instead.
void expect_golden(const std::string& name, const PngPicture& found, PictureLimits limits);
