// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A capture device and what it is told.
struct CameraName {
    std::string device;
    std::vector<std::pair<std::string, std::string>> options;  ///< key and value, in order
};

/// Takes apart the name of a camera: after "cam:" a device, in double quotes when it has commas,
/// and options of the form key=value after commas. Returns false when nothing follows the double
/// quote.
bool parse_camera_name(std::string_view name, CameraName& camera);
