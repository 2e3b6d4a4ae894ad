// SPDX-License-Identifier: MIT
#include "videoio/self_test.h"

#include "media/capture_formats.h"
#include "vyx/video.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr char default_input[] = "selftest.mp4";
constexpr char default_output[] = "selftest-copy.avi";
constexpr int name_column = 28;
constexpr std::int32_t bit_rate = 4000000;
constexpr std::int32_t frames_per_group = 12;

void print_offset(const char* field, std::size_t offset) {
    std::printf("%-*s%d\n", name_column, (std::string(field) + " offset:").c_str(),
                static_cast<int>(offset));
}

#define PRINT_OFFSET(field) print_offset(#field, offsetof(VYX_OpenVideoArgs, field))

void print_offsets() {
    PRINT_OFFSET(videoFileName);
    PRINT_OFFSET(errorMsg);
    PRINT_OFFSET(handle);
    PRINT_OFFSET(cam_input);
    PRINT_OFFSET(frame_width);
    PRINT_OFFSET(frame_height);
    PRINT_OFFSET(frame_bytes);
    PRINT_OFFSET(bit_rate);
    PRINT_OFFSET(duration_sec);
    PRINT_OFFSET(frame_rate);
    PRINT_OFFSET(video_bit_rate);
    PRINT_OFFSET(pixel_aspect_ratio);
    PRINT_OFFSET(codec_name);
    PRINT_OFFSET(frame_count);
    PRINT_OFFSET(bits_per_color);
}

#undef PRINT_OFFSET

void save_like(const VYX_OpenVideoArgs& film, const char* path, VYX_SaveVideoArgs& copy) {
    copy.size = sizeof copy;
    std::snprintf(copy.videoFileName, sizeof copy.videoFileName, "%s", path);
    std::snprintf(copy.codec_name, sizeof copy.codec_name, "mpeg4");
    copy.width = film.frame_width;
    copy.height = film.frame_height;
    copy.bit_rate = bit_rate;
    copy.group_of_pictures = frames_per_group;
    copy.frame_rate = std::max(static_cast<std::int32_t>(std::lround(film.frame_rate)), 1);
    copy.bits_per_color = film.bits_per_color;
    if (save_video(&copy) < 0) std::printf("%s", copy.errorMsg);
}

void copy_frames(const VYX_OpenVideoArgs& film, const VYX_SaveVideoArgs& copy) {
    std::vector<unsigned char> frame(static_cast<std::size_t>(film.frame_bytes));
    VYX_ReadFrameArgs read{};
    read.size = sizeof read;
    read.handle = film.handle;
    read.frame_height = film.frame_height;
    read.frame_width = film.frame_width;
    read.bytes_per_pixel = 3;
    read.data = frame.data();
    VYX_WriteFrameArgs write{};
    write.size = sizeof write;
    write.handle = copy.handle;
    write.frame_height = film.frame_height;
    write.frame_width = film.frame_width;
    write.bytes_per_pixel = 3;
    write.data = frame.data();
    // Cameras do not start at 0.
    double start = 0.0;
    for (bool first = true; read_frame(&read) == 0; first = false) {
        std::printf("%f\n", read.frame_time);
        if (first) start = read.frame_time;
        write.frame_time = read.frame_time - start;
        if (write_frame(&write) != 0) break;
    }
    std::printf("%s", read.errorMsg[0] ? read.errorMsg : write.errorMsg);
}

}  // namespace

int _main(int argc, char** argv) {
    print_offsets();
    register_capture_formats();
    VYX_OpenVideoArgs film{};
    film.size = sizeof film;
    std::snprintf(film.videoFileName, sizeof film.videoFileName, "%s",
                  argc > 1 ? argv[1] : default_input);
    if (open_video(&film) < 0) {
        std::printf("%s", film.errorMsg);
        return 1;
    }
    VYX_SaveVideoArgs copy{};
    save_like(film, argc > 2 ? argv[2] : default_output, copy);
    copy_frames(film, copy);
    close_video(film.handle);
    close_video(copy.handle);
    return 0;
}
