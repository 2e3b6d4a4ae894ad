// SPDX-License-Identifier: MIT
#include "videoio/avi_video_encoder.h"

#include "videoio/bgr_rows.h"
#include "videoio/error_message.h"

#include <cerrno>
#include <limits>
#include <system_error>

namespace {

constexpr std::int64_t largest_picture = std::numeric_limits<std::int32_t>::max() - 1024;
constexpr std::int64_t largest_file = std::numeric_limits<std::uint32_t>::max();

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

bool accepts(VYX_SaveVideoArgs& args) {
    const bool positive = args.width > 0 && args.height > 0;
    if (!positive || padded_row_bytes(args.width) > largest_picture / args.height) {
        return set_error(args.errorMsg, "Invalid frame size: %dx%d!\n", args.width, args.height);
    }
    if (args.bits_per_color == 8) return true;
    return set_error(args.errorMsg, "Invalid number of bits per color: %d!", args.bits_per_color);
}

}  // namespace

VYX_AVIVideoEncoder::VYX_AVIVideoEncoder(VYX_SaveVideoArgs* args) {
    if (!accepts(*args)) return;
    FilePtr file(std::fopen(args->videoFileName, "wb"));
    if (!file) {
        set_error(args->errorMsg, "Could not open file for writing!\n");
        return;
    }
    partial_.begin(args->videoFileName);
    writer_ = std::make_unique<AviWriter>(file.get(), args->width, args->height,
                                          static_cast<float>(args->frame_rate));
    file_ = file.release();
}

VYX_AVIVideoEncoder::~VYX_AVIVideoEncoder() {
    if (writer_ && writer_->Close() && error_ == 0) partial_.complete();
}

void VYX_AVIVideoEncoder::WriteFrame(VYX_WriteFrameArgs* args) {
    const int width = writer_->GetWidth();
    const int height = writer_->GetHeight();
    if (args->frame_height != height || args->frame_width != width || args->bytes_per_pixel != 3) {
        set_error(args->errorMsg, "incorrect dimensions, expected %dx%dx%d!\n", height, width, 3);
        return;
    }
    if (!args->data) {
        set_error(args->errorMsg, "Frame data not set!\n");
        return;
    }
    if (writer_->GetFileSize() + writer_->GetFrameSize() > largest_file) {
        set_error(args->errorMsg, "File is full: AVI files hold less than 4 GiB!\n");
        return;
    }
    if (error_ == 0) append(static_cast<const unsigned char*>(args->data));
    if (error_ != 0) {
        set_error(args->errorMsg, "Could not write to file: %s!\n",
                  std::system_category().message(error_).c_str());
    }
}

void VYX_AVIVideoEncoder::append(const unsigned char* frame) {
    error_ = ENOMEM;  // unless the writer comes back
    errno = 0;
    const int width = writer_->GetWidth();
    // The writer only reads.
    writer_->AppendFrame(const_cast<unsigned char*>(frame), width, writer_->GetHeight(), width * 3,
                         3);
    const int reason = errno != 0 ? errno : EIO;
    error_ = std::ferror(file_) ? reason : 0;
}
