// SPDX-License-Identifier: MIT
#pragma once

/// Copies the names of the capture devices in `folder` into buffers of `max_len` bytes each, at
/// most `*count` of them; none when `names` is null. `*count` becomes the number of devices. A
/// folder that cannot be opened is told on standard error and has none.
void copy_device_names(const char* folder, char** names, int* count, int max_len);
