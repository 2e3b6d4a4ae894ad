// SPDX-License-Identifier: MIT
#include "audio/audio_converter.h"

#include <bit>
#include <new>
#include <utility>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

namespace {

struct SwrDeleter {
    void operator()(SwrContext* context) const { swr_free(&context); }
};
using SwrPtr = std::unique_ptr<SwrContext, SwrDeleter>;

struct Side {
    AVChannelLayout layout;
    AVSampleFormat format;
};

Side usual_layout(int channels, AVSampleFormat format) {
    Side side = {{}, format};
    av_channel_layout_default(&side.layout, channels);
    return side;
}

Side stereo_planes() {
    return usual_layout(2, AV_SAMPLE_FMT_FLTP);
}

bool set_options(SwrContext* context, const Side& in, const Side& out, int sample_rate) {
    // Without a limit the mixing of surround sound into floats exceeds full scale.
    constexpr double full_scale = 1.0;
    return av_opt_set_chlayout(context, "in_chlayout", &in.layout, 0) >= 0 &&
           av_opt_set_sample_fmt(context, "in_sample_fmt", in.format, 0) >= 0 &&
           av_opt_set_int(context, "in_sample_rate", sample_rate, 0) >= 0 &&
           av_opt_set_chlayout(context, "out_chlayout", &out.layout, 0) >= 0 &&
           av_opt_set_sample_fmt(context, "out_sample_fmt", out.format, 0) >= 0 &&
           av_opt_set_int(context, "out_sample_rate", sample_rate, 0) >= 0 &&
           av_opt_set_double(context, "rematrix_maxval", full_scale, 0) >= 0;
}

SwrPtr open(const Side& in, const Side& out, int sample_rate) {
    if (sample_rate <= 0) return nullptr;
    SwrPtr context(swr_alloc());
    if (!context || !set_options(context.get(), in, out, sample_rate)) return nullptr;
    if (in.layout.nb_channels == 1) {
        // The library's own matrix would take 3 dB off.
        const double both[2] = {1.0, 1.0};
        if (swr_set_matrix(context.get(), both, 1) < 0) return nullptr;
    }
    if (swr_init(context.get()) < 0) return nullptr;
    return context;
}

SwrPtr open_mix_down(int channels, int sample_rate, std::uint64_t layout_mask) {
    if (channels < 1) return nullptr;
    SwrPtr context;
    Side in = {{}, AV_SAMPLE_FMT_S16};
    if (std::popcount(layout_mask) == channels &&
        av_channel_layout_from_mask(&in.layout, layout_mask) >= 0) {
        context = open(in, stereo_planes(), sample_rate);
    }
    if (!context) context = open(usual_layout(channels, in.format), stereo_planes(), sample_rate);
    return context;
}

template <class T>
std::unique_ptr<T[]> silence(int count) {
    return std::unique_ptr<T[]>(new (std::nothrow) T[static_cast<std::size_t>(count)]());
}

}  // namespace

struct AudioConverter::Context {
    SwrPtr to_planes;  // one of the two is set
    SwrPtr to_samples;
};

AudioConverter::AudioConverter(std::unique_ptr<Context> context) : context_(std::move(context)) {}
AudioConverter::~AudioConverter() = default;

std::unique_ptr<AudioConverter> AudioConverter::to_planes(int channels, int sample_rate,
                                                          std::uint64_t layout_mask) {
    return make({open_mix_down(channels, sample_rate, layout_mask), nullptr}, channels);
}

std::unique_ptr<AudioConverter> AudioConverter::to_samples(int sample_rate) {
    constexpr int channels = 2;
    const Side out = usual_layout(channels, AV_SAMPLE_FMT_S16);
    return make({nullptr, open(stereo_planes(), out, sample_rate)}, channels);
}

std::unique_ptr<AudioConverter> AudioConverter::make(Context&& opened, int channels) {
    if (!opened.to_planes && !opened.to_samples) return nullptr;
    std::unique_ptr<Context> context(new (std::nothrow) Context(std::move(opened)));
    if (!context) return nullptr;
    std::unique_ptr<AudioConverter> converter(new (std::nothrow)
                                                  AudioConverter(std::move(context)));
    if (!converter || !converter->prime(channels)) return nullptr;
    return converter;
}

// The library makes its buffers when it first meets a block of their size. Its conversions keep no
// samples, so a block of silence leaves nothing behind.
bool AudioConverter::prime(int channels) {
    const auto samples = silence<short>(channels * max_frames);
    const auto planes = silence<float>(2 * max_frames);
    if (!samples || !planes) return false;
    float* left = planes.get();
    float* right = left + max_frames;
    const int frames = context_->to_planes ? convert(samples.get(), left, right, max_frames)
                                           : convert(left, right, samples.get(), max_frames);
    return frames == max_frames;
}

int AudioConverter::convert(const short* samples, float* left, float* right, int frames) {
    if (!context_->to_planes || frames < 1 || frames > max_frames) return -1;
    const std::uint8_t* in[] = {reinterpret_cast<const std::uint8_t*>(samples)};
    std::uint8_t* out[] = {reinterpret_cast<std::uint8_t*>(left),
                           reinterpret_cast<std::uint8_t*>(right)};
    return swr_convert(context_->to_planes.get(), out, frames, in, frames);
}

int AudioConverter::convert(const float* left, const float* right, short* samples, int frames) {
    if (!context_->to_samples || frames < 1 || frames > max_frames) return -1;
    const std::uint8_t* in[] = {reinterpret_cast<const std::uint8_t*>(left),
                                reinterpret_cast<const std::uint8_t*>(right)};
    std::uint8_t* out[] = {reinterpret_cast<std::uint8_t*>(samples)};
    return swr_convert(context_->to_samples.get(), out, frames, in, frames);
}
