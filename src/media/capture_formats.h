// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

struct AVInputFormat;

/// What the name of a camera begins with.
inline constexpr std::string_view camera_prefix = "cam:";

/// Whether a name stands for a camera. Any thread.
constexpr bool is_camera_name(std::string_view name) {
    return name.starts_with(camera_prefix);
}

/// The format that reads a camera: "dv1394" when `name` has "1394" in it, else the one of video for
/// Linux. Null when the installed libraries have none such. Loads the library of capture devices
/// at the first call. Any thread.
const AVInputFormat* camera_format(const char* name);

/// Loads the library of capture devices, so that its formats are known. Without the library nothing
/// happens. Any thread, any number of times.
void register_capture_formats();
