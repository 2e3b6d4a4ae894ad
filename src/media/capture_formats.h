// SPDX-License-Identifier: MIT
#pragma once

struct AVInputFormat;

/// The format that reads a camera: "dv1394" when `name` has "1394" in it, else the one of video for
/// Linux. Null when the installed libraries have none such. Loads the library of capture devices
/// at the first call. Any thread.
const AVInputFormat* camera_format(const char* name);

/// Loads the library of capture devices, so that its formats are known. Without the library nothing
/// happens. Any thread, any number of times.
void register_capture_formats();
