// SPDX-License-Identifier: MIT
#include "videoio/video_decoder.h"

#include "media/capture_formats.h"
#include "media/decoded_frames.h"
#include "media/error_text.h"
#include "media/packet_time.h"
#include "videoio/camera_name.h"
#include "videoio/codec_threads.h"
#include "videoio/error_message.h"
#include "videoio/film_description.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace {

constexpr int most_fruitless_packets = 1000;
constexpr std::int64_t longest_decoding_delay = std::int64_t{10} * AV_TIME_BASE;

// The default buffer, with a copy of the time stamp of the last packet.
int our_get_buffer(AVCodecContext* codec, AVFrame* frame, int flags) {
    return get_stamped_buffer(codec, frame, flags, global_video_pkt_pts);
}

// Seconds as ticks of the container; false when they are no number.
bool ticks_of(double seconds, std::int64_t& ticks) {
    constexpr double most = 9.0e18;
    if (std::isnan(seconds)) return false;
    ticks = static_cast<std::int64_t>(std::clamp(seconds * AV_TIME_BASE, -most, most));
    return true;
}

}  // namespace

VYX_VideoDecoder::VYX_VideoDecoder(VYX_OpenVideoArgs* args) : VYX_BaseClass(decoder_kind) {
    open(*args);
}

VYX_VideoDecoder::~VYX_VideoDecoder() = default;

bool VYX_VideoDecoder::open(VYX_OpenVideoArgs& args) {
    return open_input(args) && find_stream(args) && open_decoder(args) &&
           describe_film(*container_, *stream_, *decoder_, args) && allocate_frames(args);
}

bool VYX_VideoDecoder::find_input(VYX_OpenVideoArgs& args, const AVInputFormat** format,
                                  Dictionary& options) {
    is_camera_ = is_camera_name(args.videoFileName);
    args.cam_input = is_camera_ ? 1 : 0;
    if (!is_camera_) return true;
    CameraName camera;
    if (!parse_camera_name(args.videoFileName, camera)) {
        return set_error(args.errorMsg, "invalid input device specification!");
    }
    *format = camera_format(args.videoFileName);
    std::snprintf(args.videoFileName, sizeof args.videoFileName, "%s", camera.device.c_str());
    for (const auto& [key, value] : camera.options)
        options.set(key.c_str(), value.c_str());
    return true;
}

bool VYX_VideoDecoder::open_input(VYX_OpenVideoArgs& args) {
    const AVInputFormat* format = nullptr;
    Dictionary options;
    if (!find_input(args, &format, options)) return false;
    AVFormatContext* opened = nullptr;
    // Without its format a device would be read as a file.
    int result = AVERROR_DEMUXER_NOT_FOUND;
    if (format || !is_camera_) {
        result = avformat_open_input(&opened, args.videoFileName, format, options.ref());
    }
    if (result < 0) {
        return set_error(args.errorMsg, "avformat_open_input (%s) failed: %s\n", args.videoFileName,
                         error_text(result).c_str());
    }
    container_.reset(opened);
    result = avformat_find_stream_info(opened, nullptr);
    if (result >= 0) return true;
    return set_error(args.errorMsg, "av_find_stream_info failed: %s\n", error_text(result).c_str());
}

bool VYX_VideoDecoder::find_stream(VYX_OpenVideoArgs& args) {
    stream_index_ = find_film(*container_);
    if (stream_index_ < 0) return set_error(args.errorMsg, "Couldn't find a video stream\n");
    for (unsigned i = 0; i < container_->nb_streams; ++i) {
        if (static_cast<int>(i) != stream_index_) container_->streams[i]->discard = AVDISCARD_ALL;
    }
    stream_ = container_->streams[stream_index_];
    codec_ = avcodec_find_decoder(stream_->codecpar->codec_id);
    if (codec_) return true;
    return set_error(args.errorMsg, "Couldn't find a decoder for codec_id: %d\n",
                     static_cast<int>(stream_->codecpar->codec_id));
}

void VYX_VideoDecoder::configure_decoder() {
    decoder_->pkt_timebase = stream_->time_base;
    decoder_->thread_count = codec_threads();
    // Version 59 of the library decodes with frame threads and a buffer callback only when a field
    // is set that it calls deprecated.
    const bool frame_threads = codec_->capabilities & AV_CODEC_CAP_FRAME_THREADS;
    if (!frame_threads || decoder_->thread_count == 1 || LIBAVCODEC_VERSION_MAJOR >= 60) {
        decoder_->get_buffer2 = our_get_buffer;
    }
}

bool VYX_VideoDecoder::open_decoder(VYX_OpenVideoArgs& args) {
    decoder_.reset(avcodec_alloc_context3(codec_));
    int result = AVERROR(ENOMEM);
    if (decoder_) result = avcodec_parameters_to_context(decoder_.get(), stream_->codecpar);
    if (result >= 0) {
        configure_decoder();
        result = avcodec_open2(decoder_.get(), codec_, nullptr);
    }
    if (result >= 0) return true;
    return set_error(args.errorMsg, "Couldn't open codec %s id %d: %s\n", codec_->name,
                     static_cast<int>(codec_->id), error_text(result).c_str());
}

bool VYX_VideoDecoder::allocate_frames(VYX_OpenVideoArgs& args) {
    width_ = args.frame_width;
    height_ = args.frame_height;
    frame_duration_ = args.frame_rate > 0.0 ? 1.0 / args.frame_rate : 0.0;
    converter_.set_output(output_format(decoder_->pix_fmt), width_, height_);
    frame_.reset(av_frame_alloc());
    packet_.reset(av_packet_alloc());
    if (frame_ && packet_) return true;
    return set_error(args.errorMsg, "Couldn't allocate a video frame - out of memory?\n");
}

void VYX_VideoDecoder::ReadFrame(VYX_ReadFrameArgs* args) {
    if (args->frame_height != height_ || args->frame_width != width_ ||
        args->bytes_per_pixel != 3) {
        set_error(args->errorMsg, "incorrect dimensions!\n");
        return;
    }
    if (!args->data) {
        set_error(args->errorMsg, "Frame data not set!\n");
        return;
    }
    std::int64_t pts = AV_NOPTS_VALUE;
    const int result = read_and_decode(&pts, args->key_frame_only != 0);
    if (result < 0) {
        set_error(args->errorMsg, "read_and_decode failed: %s\n", error_text(result).c_str());
        return;
    }
    args->frame_time = time_of(pts);
    if (!converter_.convert(*frame_, static_cast<std::uint8_t*>(args->data))) {
        set_error(args->errorMsg, "sws_getContext failed\n");
    }
}

double VYX_VideoDecoder::time_of(std::int64_t pts) {
    double seconds = next_time_;
    if (pts != AV_NOPTS_VALUE) seconds = av_q2d(stream_->time_base) * static_cast<double>(pts);
    next_time_ = seconds + frame_duration_;
    return seconds;
}

// Decodes up to the next picture, which `frame_` then holds. Returns 0 or an error code.
int VYX_VideoDecoder::read_and_decode(std::int64_t* pts, bool key_frame_only) {
    int fruitless = 0;
    for (;;) {
        int result = avcodec_receive_frame(decoder_.get(), frame_.get());
        if (result >= 0) {
            fruitless = 0;
            if (key_frame_only && !is_key_picture(*frame_)) continue;
            if (draining_ != Draining::seek) sought_.reset();
            *pts = frame_->best_effort_timestamp;
            return 0;
        }
        if (result == AVERROR_EOF) {
            if (draining_ == Draining::end_of_file) {
                if (!go_back()) return result;
                fruitless = 0;
            }
            avcodec_flush_buffers(decoder_.get());
            draining_ = Draining::no;
            if (std::exchange(rewound_, false)) next_time_ = 0.0;
        } else if (result != AVERROR(EAGAIN)) {
            return result;
        } else if (fruitless == most_fruitless_packets) {
            return -1;
        }
        result = feed();
        if (result < 0) return result;
        ++fruitless;
    }
}

// Hands the decoder the next packet of the film, or the end.
int VYX_VideoDecoder::feed() {
    for (;;) {
        av_packet_unref(packet_.get());
        const int result = av_read_frame(container_.get(), packet_.get());
        if (result == AVERROR_EOF) return drain(Draining::end_of_file);
        if (result < 0) return result;
        // To the decoder a packet without data would be the end.
        if (is_ours(*packet_) && (!key_packet_ || key_packet_->is(*packet_))) break;
    }
    key_packet_.reset();
    global_video_pkt_pts = packet_->pts != AV_NOPTS_VALUE ? packet_->pts : packet_->dts;
    const int result = avcodec_send_packet(decoder_.get(), packet_.get());
    av_packet_unref(packet_.get());
    return result;
}

int VYX_VideoDecoder::drain(Draining reason) {
    const bool begun = draining_ != Draining::no;
    draining_ = reason;
    return begun ? 0 : avcodec_send_packet(decoder_.get(), nullptr);
}

bool VYX_VideoDecoder::is_ours(const AVPacket& packet) const {
    return packet.stream_index == stream_index_ && packet.size > 0;
}

std::int64_t VYX_VideoDecoder::start_time() const {
    return container_->start_time != AV_NOPTS_VALUE ? container_->start_time : 0;
}

// Moves the container, in its ticks, forward or backward; in the other direction where there is
// nothing. Up to the start, that is the very first packet: its decoding time can be earlier, and
// containers that search for time stamps pass it otherwise. Those without any know bytes only.
bool VYX_VideoDecoder::move_to(std::int64_t target, int flags) {
    const bool to_start = target <= start_time();
    if (to_start) {
        target = start_time() - longest_decoding_delay;
        flags = AVSEEK_FLAG_BACKWARD;
    }
    AVFormatContext* container = container_.get();
    return av_seek_frame(container, -1, target, flags) >= 0 ||
           av_seek_frame(container, -1, target, flags ^ AVSEEK_FLAG_BACKWARD) >= 0 ||
           (to_start && av_seek_frame(container, -1, 0, AVSEEK_FLAG_BYTE) >= 0);
}

bool VYX_VideoDecoder::seek_to(std::int64_t target) {
    std::int64_t first_picture = start_time();
    if (stream_->start_time != AV_NOPTS_VALUE) {
        first_picture = av_rescale_q(stream_->start_time, stream_->time_base, av_get_time_base_q());
    }
    if (target <= first_picture) target = std::min(target, start_time());
    if (!move_to(target, 0)) return false;
    sought_ = target;
    rewound_ = target <= start_time();
    key_packet_.reset();
    return true;
}

// Reads from a time to the end, for the last packet with a key frame. `time` becomes that of the
// first packet there; where there is none it stays.
std::optional<VYX_VideoDecoder::KeyPacket> VYX_VideoDecoder::last_key_after(std::int64_t& time) {
    std::optional<KeyPacket> key;
    bool first = true;
    if (!move_to(time, AVSEEK_FLAG_BACKWARD)) return key;
    while (av_packet_unref(packet_.get()), av_read_frame(container_.get(), packet_.get()) >= 0) {
        if (!is_ours(*packet_)) continue;
        const std::int64_t stamp = packet_->dts != AV_NOPTS_VALUE ? packet_->dts : packet_->pts;
        if (first && stamp != AV_NOPTS_VALUE) {
            time = std::min(time, av_rescale_q(stamp, stream_->time_base, av_get_time_base_q()));
            first = false;
        }
        if (packet_->flags & AV_PKT_FLAG_KEY) key = KeyPacket{packet_->pts, packet_->dts};
    }
    return key;
}

// For a seek after which the end came before any picture: moves to the last key frame before. Some
// containers do not know where these are: looks from further and further back.
bool VYX_VideoDecoder::go_back() {
    if (!sought_) return false;
    std::int64_t from = *sought_;
    sought_.reset();
    for (std::int64_t step = AV_TIME_BASE;; step *= 2) {
        std::int64_t first = from;
        if (const auto key = last_key_after(first)) {
            key_packet_ = key;
            return move_to(from, AVSEEK_FLAG_BACKWARD);
        }
        if (from <= start_time()) return false;
        from = std::max(start_time(), first - step);
    }
}

void VYX_VideoDecoder::Seek(VYX_SeekFrameArgs* args) {
    std::int64_t target = 0;
    if (!ticks_of(args->seek_time, target) || !seek_to(target)) {
        set_error(args->errorMsg, "error while seeking\n");
        return;
    }
    // The decoder still gives out what it holds, but must not take packets from here as those that
    // follow: pictures would be put together from the wrong ones.
    // That one of these is damaged is no failure of the seek.
    drain(Draining::seek);
}
