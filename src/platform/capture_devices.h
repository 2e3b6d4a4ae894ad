// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Whether a name in the device folder belongs to a capture device: it begins with "video",
/// "radio", "vbi" or "v4l-subdev".
bool is_v4l_dev(const char* name);

/// Sort key of a device path: video devices by number from 0, radio from 256, vbi from 512. Every
/// sub-device has the key 768.
int calc_node_val(const char* path);

/// Order of two device paths by `calc_node_val`.
bool sort_on_device_name(const std::string& first, const std::string& second);

/// Lists the capture devices in `folder`, aliases left out, sorted.
///
/// `*out` becomes an array of strings that the caller frees, each string and then the array, with
/// `free`; it is null when there are none. Returns the count. A folder that cannot be opened is
/// reported on standard error and counts as empty.
int list_video_inputs(char*** out, const char* folder = "/dev");
