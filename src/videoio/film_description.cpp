// SPDX-License-Identifier: MIT
#include "videoio/film_description.h"

#include "videoio/error_message.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstdio>
#include <limits>

namespace {

constexpr double highest_coded_rate = 120.0;
constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();

double quotient(AVRational fraction) {
    return fraction.num > 0 && fraction.den > 0 ? av_q2d(fraction) : 0.0;
}

double film_duration(const AVFormatContext& container) {
    return static_cast<double>(std::max<std::int64_t>(container.duration, 0)) / AV_TIME_BASE;
}

std::int32_t frame_count(const AVStream& stream, double duration, double rate) {
    if (stream.nb_frames > 0) {
        return static_cast<std::int32_t>(std::min<std::int64_t>(stream.nb_frames, most));
    }
    return static_cast<std::int32_t>(std::min(duration * rate, static_cast<double>(most)));
}

double display_aspect(const AVFormatContext& container, const AVStream& stream, int width,
                      int height) {
    // Neither is written to.
    const AVRational sample = av_guess_sample_aspect_ratio(const_cast<AVFormatContext*>(&container),
                                                           const_cast<AVStream*>(&stream), nullptr);
    const double shape = static_cast<double>(width) / height;
    return quotient(sample) > 0.0 ? quotient(sample) * shape : shape;
}

}  // namespace

int find_film(const AVFormatContext& container) {
    for (unsigned i = 0; i < container.nb_streams; ++i) {
        const AVStream& stream = *container.streams[i];
        const bool cover = stream.disposition & AV_DISPOSITION_ATTACHED_PIC;
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !cover) return static_cast<int>(i);
    }
    return -1;
}

double film_rate(const AVStream& stream, const AVCodecContext& decoder) {
    if (stream.r_frame_rate.den != 0) return quotient(stream.r_frame_rate);
    // Ticks of the codec's time base, and how many of them make a frame.
    const double coded = quotient(decoder.framerate);
    const bool credible = coded > 0.0 && coded <= highest_coded_rate;
    return credible ? coded : quotient(stream.avg_frame_rate);
}

AVPixelFormat output_format(AVPixelFormat coded) {
    const AVPixFmtDescriptor* described = av_pix_fmt_desc_get(coded);
    return described && described->comp[0].depth > 8 ? AV_PIX_FMT_RGB48LE : AV_PIX_FMT_RGB24;
}

bool describe_film(const AVFormatContext& container, const AVStream& stream,
                   const AVCodecContext& decoder, VYX_OpenVideoArgs& args) {
    const int width = decoder.width;
    const int height = decoder.height;
    const AVPixelFormat format = output_format(decoder.pix_fmt);
    const bool positive = width > 0 && height > 0;
    const int bytes = positive ? av_image_get_buffer_size(format, width, height, 1) : -1;
    args.frame_width = width;
    args.frame_height = height;
    if (bytes <= 0) return set_error(args.errorMsg, "Invalid frame size: %dx%d!\n", width, height);

    args.frame_bytes = bytes;
    args.bits_per_color = format == AV_PIX_FMT_RGB48LE ? 16 : 8;
    args.bit_rate = std::clamp<std::int64_t>(decoder.bit_rate, 0, most);
    args.duration_sec = film_duration(container);
    args.frame_rate = film_rate(stream, decoder);
    args.frame_count = frame_count(stream, args.duration_sec, args.frame_rate);
    args.pixel_aspect_ratio = display_aspect(container, stream, width, height);
    const char* long_name = decoder.codec->long_name;
    std::snprintf(args.codec_name, sizeof args.codec_name, "%s",
                  long_name ? long_name : decoder.codec->name);
    return true;
}
