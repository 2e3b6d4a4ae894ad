// SPDX-License-Identifier: MIT
#include "videoio/device_names.h"

#include "platform/capture_devices.h"
#include "vyx/video.h"

#include <algorithm>
#include <cstdio>
#include <memory>

void copy_device_names(const char* folder, char** names, int* count, int max_len) {
    char** devices = nullptr;
    const int found = list_video_inputs(&devices, folder);
    const auto free_devices = [found](char** list) { free_list(list, found); };
    const std::unique_ptr<char*, decltype(free_devices)> owner(devices, free_devices);
    const int copied = names && max_len > 0 ? std::clamp(*count, 0, found) : 0;
    for (int i = 0; i < copied; ++i) {
        const char* name = devices[i] ? devices[i] : "";
        if (names[i]) std::snprintf(names[i], static_cast<std::size_t>(max_len), "%s", name);
    }
    *count = found;
}
