// SPDX-License-Identifier: MIT
#include "media/pixel_formats.h"

namespace {

constexpr int neutral = 0;
constexpr int unity = 1 << 16;

bool full_range(const AVFrame& frame) {
    switch (frame.format) {
        case AV_PIX_FMT_YUVJ420P:
        case AV_PIX_FMT_YUVJ422P:
        case AV_PIX_FMT_YUVJ444P:
        case AV_PIX_FMT_YUVJ440P:
        case AV_PIX_FMT_YUVJ411P:
            return true;
        default:
            return frame.color_range == AVCOL_RANGE_JPEG;
    }
}

}  // namespace

const AVPixelFormat* encoder_pixel_formats(const AVCodec& codec) {
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(61, 13, 100)
    const void* formats = nullptr;
    avcodec_get_supported_config(nullptr, &codec, AV_CODEC_CONFIG_PIX_FORMAT, 0, &formats, nullptr);
    return static_cast<const AVPixelFormat*>(formats);
#else
    return codec.pix_fmts;
#endif
}

void follow_colours(SwsContext* scaler, const AVFrame& coded) {
    const int* coefficients = sws_getCoefficients(
        coded.colorspace == AVCOL_SPC_UNSPECIFIED ? SWS_CS_DEFAULT : coded.colorspace);
    // Which of the two is YUV decides which range counts; RGB is always full.
    const int range = full_range(coded) ? 1 : 0;
    sws_setColorspaceDetails(scaler, coefficients, range, coefficients, range, neutral, unity,
                             unity);
}
