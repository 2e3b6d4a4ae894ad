// SPDX-License-Identifier: MIT
#include "media/capture_formats.h"

extern "C" {
#include <libavdevice/version_major.h>
#include <libavformat/avformat.h>
}

#include <dlfcn.h>

#include <cstring>

namespace {

void load_and_register() {
    constexpr char library[] = "libavdevice.so." AV_STRINGIFY(LIBAVDEVICE_VERSION_MAJOR);
    void* handle = dlopen(library, RTLD_NOW);
    if (!handle) return;
    using Register = void (*)();
    if (const auto all = reinterpret_cast<Register>(dlsym(handle, "avdevice_register_all"))) all();
}

}  // namespace

// The library of capture devices brings dozens of others along, which films do without: 10 MB of
// memory and a part of the start.
void register_capture_formats() {
    [[maybe_unused]] static const bool once = (load_and_register(), true);
}

const AVInputFormat* camera_format(const char* name) {
    register_capture_formats();
    if (std::strstr(name, "1394")) return av_find_input_format("dv1394");
    const AVInputFormat* format = av_find_input_format("video4linux");
    return format ? format : av_find_input_format("video4linux2");
}
