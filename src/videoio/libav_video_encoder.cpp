// SPDX-License-Identifier: MIT
#include "videoio/libav_video_encoder.h"

#include "media/error_text.h"
#include "videoio/codec_threads.h"
#include "videoio/error_message.h"
#include "videoio/output_container.h"

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr char no_structures[] = "Could not initialize encoder structures. Possibly out-of-memory!";
// Time stamps beyond this, in frames, are beyond any container.
constexpr double latest_pts = 1099511627776.0;  // 2^40

// The file that FFmpeg makes of a name, which may begin with "file:"; null when it makes none but
// uses another protocol.
const char* file_of(const char* name) {
    const char* protocol = avio_find_protocol_name(name);
    if (!protocol || std::strcmp(protocol, "file") != 0) return nullptr;
    av_strstart(name, "file:", &name);
    return name;
}

}  // namespace

VYX_LibAVVideoEncoder::VYX_LibAVVideoEncoder(VYX_SaveVideoArgs* args) {
    open(*args);
}

VYX_LibAVVideoEncoder::~VYX_LibAVVideoEncoder() {
    if (header_written_) finish();
}

bool VYX_LibAVVideoEncoder::open(VYX_SaveVideoArgs& args) {
    OutputChoice choice;
    if (!choose_output(args, choice)) return false;
    codec_ = choice.encoder;
    // A wrong number of bits is told, and the codec is opened all the same, but no file: there may
    // be one already.
    const bool bits_known = set_formats(args);
    ErrorMessage later{};
    auto& message = bits_known ? args.errorMsg : later;
    const bool positive = args.width > 0 && args.height > 0;
    if (!positive || av_image_get_buffer_size(source_format_, args.width, args.height, 1) < 0) {
        return set_error(message, "Invalid frame size: %dx%d!\n", args.width, args.height);
    }
    if (!allocate(message, choice.container, args.videoFileName)) return false;
    configure(args);
    return open_codec(message) && bits_known && open_file(message, args.videoFileName);
}

bool VYX_LibAVVideoEncoder::allocate(ErrorMessage& message, const AVOutputFormat* container,
                                     const char* path) {
    AVFormatContext* made = nullptr;
    avformat_alloc_output_context2(&made, container, nullptr, path);
    if (made) container_.reset(made);
    destination_.reset(av_frame_alloc());
    packet_.reset(av_packet_alloc());
    encoder_.reset(avcodec_alloc_context3(codec_));
    if (made) stream_ = avformat_new_stream(made, nullptr);
    if (stream_ && destination_ && packet_ && encoder_) return true;
    return set_error(message, "%s", no_structures);
}

bool VYX_LibAVVideoEncoder::set_formats(VYX_SaveVideoArgs& args) {
    if (args.bits_per_color == 16) source_format_ = AV_PIX_FMT_RGB48LE;
    if (args.bits_per_color == 8 || args.bits_per_color == 16) return true;
    return set_error(args.errorMsg, "Invalid number of bits per color: %d!", args.bits_per_color);
}

void VYX_LibAVVideoEncoder::configure(const VYX_SaveVideoArgs& args) {
    stream_->id = 0;
    encoder_->bit_rate = args.bit_rate;
    encoder_->width = args.width;
    encoder_->height = args.height;
    encoder_->time_base = {1, args.frame_rate};
    encoder_->framerate = {args.frame_rate, 1};
    encoder_->gop_size = args.group_of_pictures;
    encoder_->max_b_frames = 0;
    encoder_->pix_fmt = encoded_format(*codec_, source_format_);
    encoder_->thread_count = codec_threads();
    if (encoder_->codec_id == AV_CODEC_ID_MPEG1VIDEO) encoder_->mb_decision = FF_MB_DECISION_RD;
    if (container_->oformat->flags & AVFMT_GLOBALHEADER) {
        encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
}

bool VYX_LibAVVideoEncoder::open_codec(ErrorMessage& message) {
    int result = avcodec_open2(encoder_.get(), codec_, nullptr);
    if (result >= 0) {
        destination_->format = encoder_->pix_fmt;
        destination_->width = encoder_->width;
        destination_->height = encoder_->height;
        result = av_frame_get_buffer(destination_.get(), 0);
    }
    if (result >= 0) {
        stream_->time_base = encoder_->time_base;
        stream_->avg_frame_rate = encoder_->framerate;
        result = avcodec_parameters_from_context(stream_->codecpar, encoder_.get());
    }
    if (result >= 0) return true;
    return set_error(message, "could not open codec: %s!\n", error_text(result).c_str());
}

bool VYX_LibAVVideoEncoder::open_file(ErrorMessage& message, const char* path) {
    av_dump_format(container_.get(), 0, path, 1);
    if (!(container_->oformat->flags & AVFMT_NOFILE)) {
        const int result = avio_open(&container_->pb, path, AVIO_FLAG_WRITE);
        if (result < 0) {
            return set_error(message, "could not open file for writing: %s!\n",
                             error_text(result).c_str());
        }
        if (const char* file = file_of(path)) partial_.begin(file);
    }
    const int result = avformat_write_header(container_.get(), nullptr);
    header_written_ = result >= 0;
    if (header_written_) return true;
    return set_error(message, "could not write header: %s!\n", error_text(result).c_str());
}

void VYX_LibAVVideoEncoder::WriteFrame(VYX_WriteFrameArgs* args) {
    if (!failed_call_ && accept(*args) && prepare_scaler(*args) && convert(*args)) {
        destination_->pts = next_pts(args->frame_time);
        encode(destination_.get());
    }
    if (!failed_call_) return;
    set_error(args->errorMsg, "%s failed: %s\n", failed_call_, error_text(error_).c_str());
}

// Whether the frame is like the one before; the first may have any size that a buffer can have.
bool VYX_LibAVVideoEncoder::accept(VYX_WriteFrameArgs& args) const {
    const bool first = !scaler_;
    const int height = first ? encoder_->height : source_->height;
    const int width = first ? encoder_->width : source_->width;
    const bool same = args.frame_height == height && args.frame_width == width;
    const bool any =
        first && args.frame_height > 0 && args.frame_width > 0 &&
        av_image_get_buffer_size(source_format_, args.frame_width, args.frame_height, 1) > 0;
    if ((!same && !any) || args.bytes_per_pixel != 3) {
        return set_error(args.errorMsg, "incorrect dimensions, expected %dx%dx%d!\n", height, width,
                         3);
    }
    return args.data ? true : set_error(args.errorMsg, "Frame data not set!\n");
}

// With the first frame. What fails here leaves the next one to be the first.
bool VYX_LibAVVideoEncoder::prepare_scaler(VYX_WriteFrameArgs& args) {
    if (scaler_) return true;
    FramePtr source(av_frame_alloc());
    if (!source) throw std::bad_alloc();
    source->format = source_format_;
    source->width = args.frame_width;
    source->height = args.frame_height;
    if (av_frame_get_buffer(source.get(), 0) < 0) throw std::bad_alloc();
    const bool same = args.frame_width == encoder_->width && args.frame_height == encoder_->height;
    scaler_.reset(sws_getContext(args.frame_width, args.frame_height, source_format_,
                                 encoder_->width, encoder_->height, encoder_->pix_fmt,
                                 same ? SWS_POINT : SWS_BICUBIC, nullptr, nullptr, nullptr));
    if (!scaler_) return set_error(args.errorMsg, "sws_getContext failed\n");
    source_ = std::move(source);
    return true;
}

// The scaler reads whole groups of pixels, beyond the end of a row and of the frame: it gets a copy
// with room there. Colours of an odd width are made of the last pixel and the one after it, which
// has to be the same.
void VYX_LibAVVideoEncoder::copy_frame(const std::uint8_t* data) {
    const int row = av_image_get_linesize(source_format_, source_->width, 0);
    av_image_copy_plane(source_->data[0], source_->linesize[0], data, row, row, source_->height);
    const int pixel = row / source_->width;
    if (row + pixel > source_->linesize[0]) return;
    for (int y = 0; y < source_->height; ++y) {
        std::uint8_t* end = source_->data[0] + std::ptrdiff_t{y} * source_->linesize[0] + row;
        std::copy_n(end - pixel, pixel, end);
    }
}

bool VYX_LibAVVideoEncoder::convert(VYX_WriteFrameArgs& args) {
    copy_frame(static_cast<const std::uint8_t*>(args.data));
    int result = av_frame_make_writable(destination_.get());
    if (result >= 0) {
        result = sws_scale(scaler_.get(), source_->data, source_->linesize, 0, source_->height,
                           destination_->data, destination_->linesize);
    }
    if (result >= 0) return true;
    fail("avcodec_encode_video", result);
    return false;
}

std::int64_t VYX_LibAVVideoEncoder::next_pts(double seconds) {
    const double ticks = seconds / av_q2d(encoder_->time_base) + 0.5;
    std::int64_t pts = 0;
    if (ticks > 0.0) pts = static_cast<std::int64_t>(std::min(ticks, latest_pts));
    last_pts_ = std::max(pts, last_pts_ + 1);
    return last_pts_;
}

int VYX_LibAVVideoEncoder::fail(const char* call, int error) {
    failed_call_ = call;
    error_ = error;
    return error;
}

// Hands the encoder a frame, or the end, and the container what the encoder has ready.
int VYX_LibAVVideoEncoder::encode(const AVFrame* frame) {
    int result = avcodec_send_frame(encoder_.get(), frame);
    while (result >= 0) {
        result = avcodec_receive_packet(encoder_.get(), packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return 0;
        if (result < 0) break;
        if (packet_->duration == 0) packet_->duration = 1;
        av_packet_rescale_ts(packet_.get(), encoder_->time_base, stream_->time_base);
        packet_->stream_index = stream_->index;
        const int written = av_interleaved_write_frame(container_.get(), packet_.get());
        if (written < 0) return fail("av_interleaved_write_frame", written);
    }
    return fail("avcodec_encode_video", result);
}

// Completes the file, with what the encoder has held back.
void VYX_LibAVVideoEncoder::finish() {
    if (failed_call_ || encode(nullptr) < 0) return;
    const bool ended = av_write_trailer(container_.get()) >= 0;
    const bool file = !(container_->oformat->flags & AVFMT_NOFILE);
    const bool closed = !file || avio_closep(&container_->pb) >= 0;
    if (ended && closed) partial_.complete();
}
