// SPDX-License-Identifier: MIT
#pragma once

#include "support/png_picture.h"

#include <string>

/// Two limits for components of 0 to 255.
struct PictureLimits {
    int largest;
    double mean;
};

/// Compares with the picture kept as `name`.png in `folder` and fails the test where it differs by
/// more. What was found and where it differs is left as failed-`name`.png then. With
/// VYX_WRITE_GOLDEN set the picture is kept instead.
void expect_golden(const std::string& name, const PngPicture& found, PictureLimits limits,
                   const std::string& folder = GOLDEN_FOLDER);

/// The name of the driver where it is not the one that kept pictures are made with (llvmpipe), else
/// empty. Lines on the border of two pixels light either of them. Needs a GL context.
std::string foreign_driver();
