// SPDX-License-Identifier: MIT
#include "player/video_decoder.h"

#include "core/settings.h"
#include "media/decoded_frames.h"
#include "player/clocks.h"
#include "player/side_data.h"

#include <algorithm>
#include <cstdio>
#include <thread>

std::atomic<int> decoder_threads{0};

namespace {

constexpr unsigned most_threads = 8;

int thread_count() {
    const int wanted = decoder_threads;
    if (wanted > 0) return wanted;
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, most_threads));
}

void configure(AVCodecContext* codec, AVStream* stream) {
    codec->pkt_timebase = stream->time_base;
    codec->get_format = our_get_format;
    codec->flags2 |= AV_CODEC_FLAG2_EXPORT_MVS;
    codec->export_side_data |= AV_CODEC_EXPORT_DATA_VIDEO_ENC_PARAMS;
    codec->skip_loop_filter =
        master_settings.inloop_deblocking.toBool() ? AVDISCARD_NONE : AVDISCARD_ALL;
    codec->thread_count = thread_count();
    codec->thread_type =
        vectors_allow_frame_threads(codec->codec_id) ? FF_THREAD_FRAME : FF_THREAD_SLICE;
    // Version 59 of the library decodes with frame threads and a buffer callback only when a field
    // is set that it calls deprecated. Speed matters more there than the stamp, which is for
    // debugging.
    if (codec->thread_type == FF_THREAD_SLICE || LIBAVCODEC_VERSION_MAJOR >= 60) {
        codec->get_buffer2 = our_get_buffer;
    }
}

}  // namespace

CodecContextPtr open_video_decoder(AVStream* stream) {
    const AVCodec* decoder = avcodec_find_decoder(stream->codecpar->codec_id);
    CodecContextPtr codec(decoder ? avcodec_alloc_context3(decoder) : nullptr);
    bool ok = codec && avcodec_parameters_to_context(codec.get(), stream->codecpar) >= 0;
    if (ok) {
        configure(codec.get(), stream);
        ok = avcodec_open2(codec.get(), decoder, nullptr) >= 0;
    }
    if (ok) return codec;
    std::fputs("Unsupported codec!\n", stderr);
    return nullptr;
}

int our_get_buffer(AVCodecContext* codec, AVFrame* frame, int flags) {
    return get_stamped_buffer(codec, frame, flags, global_video_pkt_pts);
}

AVPixelFormat our_get_format(AVCodecContext* codec, const AVPixelFormat* formats) {
    for (const AVPixelFormat* format = formats; *format != AV_PIX_FMT_NONE; ++format) {
        if (*format == AV_PIX_FMT_YUV420P || *format == AV_PIX_FMT_RGB24) return *format;
    }
    return avcodec_default_get_format(codec, formats);
}

double frame_duration(const VideoState* is) {
    const AVRational coded = is->video_codec->framerate;
    if (coded.num > 0 && coded.den > 0) return av_q2d(av_inv_q(coded));
    return is->stream_frame_duration > 0.0 ? is->stream_frame_duration : 0.04;
}
