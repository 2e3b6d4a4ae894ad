// SPDX-License-Identifier: MIT
#include "vyx/video.h"

#include "videoio/avi_video_encoder.h"
#include "videoio/device_names.h"
#include "videoio/error_message.h"
#include "videoio/handles.h"
#include "videoio/libav_video_encoder.h"
#include "videoio/video_decoder.h"

extern "C" {
#include <libavutil/log.h>
}

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#define AT(record, field, offset) static_assert(offsetof(record, field) == (offset))

AT(VYX_OpenVideoArgs, size, 0);
AT(VYX_OpenVideoArgs, videoFileName, 4);
AT(VYX_OpenVideoArgs, errorMsg, 516);
AT(VYX_OpenVideoArgs, handle, 1032);
AT(VYX_OpenVideoArgs, cam_input, 1040);
AT(VYX_OpenVideoArgs, frame_width, 1044);
AT(VYX_OpenVideoArgs, frame_height, 1048);
AT(VYX_OpenVideoArgs, frame_bytes, 1052);
AT(VYX_OpenVideoArgs, bit_rate, 1056);
AT(VYX_OpenVideoArgs, duration_sec, 1064);
AT(VYX_OpenVideoArgs, frame_rate, 1072);
AT(VYX_OpenVideoArgs, video_bit_rate, 1080);
AT(VYX_OpenVideoArgs, pixel_aspect_ratio, 1088);
AT(VYX_OpenVideoArgs, codec_name, 1096);
AT(VYX_OpenVideoArgs, frame_count, 1608);
AT(VYX_OpenVideoArgs, bits_per_color, 1612);
static_assert(sizeof(VYX_OpenVideoArgs) == 1616);

AT(VYX_ReadFrameArgs, size, 0);
AT(VYX_ReadFrameArgs, handle, 8);
AT(VYX_ReadFrameArgs, key_frame_only, 16);
AT(VYX_ReadFrameArgs, frame_height, 20);
AT(VYX_ReadFrameArgs, frame_width, 24);
AT(VYX_ReadFrameArgs, bytes_per_pixel, 28);
AT(VYX_ReadFrameArgs, data, 32);
AT(VYX_ReadFrameArgs, frame_time, 40);
AT(VYX_ReadFrameArgs, errorMsg, 48);
static_assert(sizeof(VYX_ReadFrameArgs) == 560);

AT(VYX_SeekFrameArgs, size, 0);
AT(VYX_SeekFrameArgs, handle, 8);
AT(VYX_SeekFrameArgs, seek_time, 16);
AT(VYX_SeekFrameArgs, errorMsg, 24);
static_assert(sizeof(VYX_SeekFrameArgs) == 536);

AT(VYX_SaveVideoArgs, size, 0);
AT(VYX_SaveVideoArgs, videoFileName, 4);
AT(VYX_SaveVideoArgs, errorMsg, 516);
AT(VYX_SaveVideoArgs, handle, 1032);
AT(VYX_SaveVideoArgs, codec_name, 1040);
AT(VYX_SaveVideoArgs, width, 1072);
AT(VYX_SaveVideoArgs, height, 1076);
AT(VYX_SaveVideoArgs, bit_rate, 1080);
AT(VYX_SaveVideoArgs, group_of_pictures, 1084);
AT(VYX_SaveVideoArgs, frame_rate, 1088);
AT(VYX_SaveVideoArgs, bits_per_color, 1092);
static_assert(sizeof(VYX_SaveVideoArgs) == 1616);

AT(VYX_WriteFrameArgs, size, 0);
AT(VYX_WriteFrameArgs, handle, 8);
AT(VYX_WriteFrameArgs, frame_height, 16);
AT(VYX_WriteFrameArgs, frame_width, 20);
AT(VYX_WriteFrameArgs, bytes_per_pixel, 24);
AT(VYX_WriteFrameArgs, data, 32);
AT(VYX_WriteFrameArgs, frame_time, 40);
AT(VYX_WriteFrameArgs, errorMsg, 48);
static_assert(sizeof(VYX_WriteFrameArgs) == 560);

#undef AT

namespace {

// A program that has not chosen what FFmpeg tells on standard error does not want it.
void quieten_library() {
    [[maybe_unused]] static const bool once = [] {
        if (av_log_get_level() == AV_LOG_INFO) av_log_set_level(AV_LOG_QUIET);
        return true;
    }();
}

// Whether the caller's record is what it should be. Of another one nothing is touched but a message
// that has room in it.
template <class Args>
bool check_record(Args* args) {
    if (!args) return false;
    if (args->size == sizeof(Args)) {
        args->errorMsg[0] = '\0';
        return true;
    }
    if (args->size >= offsetof(Args, errorMsg) + sizeof args->errorMsg) {
        set_error(args->errorMsg, "Wrong size of the record: %u instead of %u!\n", args->size,
                  static_cast<unsigned>(sizeof(Args)));
    }
    return false;
}

// Runs a call. What it throws becomes the record's message.
template <class Args, class Call>
void run_guarded(Args& args, Call call) {
    try {
        call();
    } catch (const std::bad_alloc&) {
        set_error(args.errorMsg, "Out of memory!\n");
    } catch (const std::exception& error) {
        set_error(args.errorMsg, "Unexpected error: %s!\n", error.what());
    } catch (...) {
        set_error(args.errorMsg, "Unexpected error: %s!\n", "unknown");
    }
}

// Makes an object of a kind from its record and stores it in its handle.
template <class Object, class Args>
void make(Args& args) {
    auto object = std::make_unique<Object>(&args);
    if (args.errorMsg[0] == '\0') args.handle = add_handle(std::move(object));
}

template <class Args, class Make>
int run_opening(Args* args, Make make_object) {
    if (!check_record(args)) return -1;
    args->handle = nullptr;
    run_guarded(*args, [&] {
        if (check_text(args->videoFileName, sizeof args->videoFileName, args->errorMsg)) {
            make_object(*args);
        }
    });
    return args->handle ? 0 : -1;
}

// Runs a call with the object of a handle, which has to be of a kind.
template <class Object, class Args, class Call>
int run_with_handle(Args* args, int kind, Call call) {
    if (!check_record(args)) return -1;
    bool right_handle = false;
    run_guarded(*args, [&] {
        if (!args->handle) {
            set_error(args->errorMsg, "Handle not set!");
            return;
        }
        const std::shared_ptr<OpenHandle> open = find_handle(args->handle);
        if (!open) {
            set_error(args->errorMsg, "Handle not open!\n");
            return;
        }
        const std::lock_guard lock(open->in_use);
        if (!open->object) {
            set_error(args->errorMsg, "Handle not open!\n");
        } else if (open->object->kind() != kind) {
            set_error(args->errorMsg, "Handle is of the other kind!\n");
        } else {
            right_handle = true;
            call(static_cast<Object&>(*open->object));
        }
    });
    if (args->errorMsg[0] == '\0') return 0;
    return right_handle ? 1 : -1;
}

void save(VYX_SaveVideoArgs& args) {
    if (!check_text(args.codec_name, sizeof args.codec_name, args.errorMsg)) return;
    if (args.frame_rate < 1) {
        set_error(args.errorMsg, "Invalid frame rate: %d!\n", args.frame_rate);
        return;
    }
    if (std::strcmp(args.codec_name, "avi") == 0) {
        make<VYX_AVIVideoEncoder>(args);
    } else {
        quieten_library();
        make<VYX_LibAVVideoEncoder>(args);
    }
}

}  // namespace

int open_video(VYX_OpenVideoArgs* args) {
    return run_opening(args, [](VYX_OpenVideoArgs& open) {
        quieten_library();
        make<VYX_VideoDecoder>(open);
    });
}

int close_video(void* handle) {
    try {
        close_handle(handle);
    } catch (...) {
        // Nobody to tell.
    }
    return 0;
}

int read_frame(VYX_ReadFrameArgs* args) {
    return run_with_handle<VYX_VideoDecoder>(
        args, VYX_BaseClass::decoder_kind,
        [args](VYX_VideoDecoder& decoder) { decoder.ReadFrame(args); });
}

int seek_frame(VYX_SeekFrameArgs* args) {
    return run_with_handle<VYX_VideoDecoder>(
        args, VYX_BaseClass::decoder_kind,
        [args](VYX_VideoDecoder& decoder) { decoder.Seek(args); });
}

int save_video(VYX_SaveVideoArgs* args) {
    return run_opening(args, save);
}

int write_frame(VYX_WriteFrameArgs* args) {
    return run_with_handle<VYX_VideoEncoder>(
        args, VYX_BaseClass::encoder_kind,
        [args](VYX_VideoEncoder& encoder) { encoder.WriteFrame(args); });
}

void list_videoinput_devicenames(char** names, int* count, int max_len) {
    if (!count) return;
    try {
        copy_device_names("/dev", *count == 0 ? nullptr : names, count, max_len);
    } catch (...) {
        *count = 0;
    }
}

void free_list(char** list, int n) {
    if (!list) return;
    for (int i = 0; i < n; ++i)
        std::free(list[i]);
    std::free(static_cast<void*>(list));
}
