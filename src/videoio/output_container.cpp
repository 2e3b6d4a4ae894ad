// SPDX-License-Identifier: MIT
#include "videoio/output_container.h"

#include "media/pixel_formats.h"
#include "videoio/error_message.h"

namespace {

// The first container with this codec as its own. Those that make files by themselves, one per
// picture or per second, do not write the file that the caller names.
const AVOutputFormat* container_of(AVCodecID codec) {
    void* position = nullptr;
    while (const AVOutputFormat* container = av_muxer_iterate(&position)) {
        const bool one_file = !(container->flags & AVFMT_NOFILE);
        if (one_file && container->video_codec == codec) return container;
    }
    return nullptr;
}

bool choose_by_file(VYX_SaveVideoArgs& args, OutputChoice& choice) {
    const char* name = args.videoFileName;
    choice.container = av_guess_format(nullptr, name, nullptr);
    if (!choice.container) {
        return set_error(args.errorMsg, "Could not deduce output format from file extension!");
    }
    const AVCodecID codec =
        av_guess_codec(choice.container, nullptr, name, nullptr, AVMEDIA_TYPE_VIDEO);
    if (codec != AV_CODEC_ID_NONE) choice.encoder = avcodec_find_encoder(codec);
    return true;
}

bool choose_by_codec(VYX_SaveVideoArgs& args, OutputChoice& choice) {
    choice.encoder = avcodec_find_encoder_by_name(args.codec_name);
    if (!choice.encoder) return true;
    choice.container = container_of(choice.encoder->id);
    if (choice.container) return true;
    return set_error(args.errorMsg, "Could not deduce output format for the codec!");
}

}  // namespace

bool choose_output(VYX_SaveVideoArgs& args, OutputChoice& choice) {
    const bool by_file = args.codec_name[0] == '\0';
    if (!(by_file ? choose_by_file(args, choice) : choose_by_codec(args, choice))) return false;
    if (choice.encoder && choice.encoder->type == AVMEDIA_TYPE_VIDEO) return true;
    return set_error(args.errorMsg, "codec '%s' not found\n", args.codec_name);
}

AVPixelFormat encoded_format(const AVCodec& encoder, AVPixelFormat source) {
    const AVPixelFormat wanted = encoder.id == AV_CODEC_ID_MPEG4 ? AV_PIX_FMT_YUV420P : source;
    const AVPixelFormat* formats = encoder_pixel_formats(encoder);
    if (!formats) return wanted;
    for (const AVPixelFormat* format = formats; *format != AV_PIX_FMT_NONE; ++format) {
        if (*format == wanted) return wanted;
    }
    return formats[0];
}
