// SPDX-License-Identifier: MIT
#include "player/audio_resampling.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

namespace {

// What a frame may become: minutes of sound. More would come of a rate that nothing has.
constexpr int most_frames = 1 << 24;

bool is_float(int format) {
    return format == AV_SAMPLE_FMT_FLT || format == AV_SAMPLE_FMT_FLTP;
}

bool is_readable(int format) {
    return is_float(format) || format == AV_SAMPLE_FMT_S16 || format == AV_SAMPLE_FMT_S16P;
}

bool fits(const AudioDecoding& decoding) {
    const AVFrame& frame = *decoding.frame;
    return frame.ch_layout.nb_channels == decoding.channels &&
           frame.sample_rate == decoding.sample_rate;
}

bool needs_resampling(const AudioDecoding& decoding) {
    const int format = decoding.frame->format;
    return !is_readable(format) || !fits(decoding) || (decoding.channels == 1 && is_float(format));
}

ResamplerPtr open_resampler(const AudioDecoding& decoding) {
    const AVFrame& frame = *decoding.frame;
    AVChannelLayout in{};
    AVChannelLayout out{};
    av_channel_layout_default(&in, frame.ch_layout.nb_channels);
    av_channel_layout_default(&out, decoding.channels);
    SwrContext* made = nullptr;
    swr_alloc_set_opts2(&made, &out, AV_SAMPLE_FMT_S16, decoding.sample_rate, &in,
                        static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
    ResamplerPtr context(made);
    if (!context) return nullptr;
    // Without these, sums of channels clip, and one channel loses 3 dB on its way to two.
    constexpr double unchanged[2] = {1.0, 1.0};
    av_opt_set_double(context.get(), "rematrix_maxval", 1.0, 0);
    if (in.nb_channels == 1 && out.nb_channels == 2) swr_set_matrix(context.get(), unchanged, 1);
    if (swr_init(context.get()) < 0) return nullptr;
    return context;
}

void prepare_resampler(AudioDecoding& decoding) {
    const AVFrame& frame = *decoding.frame;
    const bool same = decoding.resampler_format == frame.format &&
                      decoding.resampler_rate == frame.sample_rate &&
                      decoding.resampler_channels == frame.ch_layout.nb_channels;
    if (same) return;
    decoding.resampler = open_resampler(decoding);
    decoding.resampler_format = frame.format;
    decoding.resampler_rate = frame.sample_rate;
    decoding.resampler_channels = frame.ch_layout.nb_channels;
}

// Returns the frames that came out.
int resample(AudioDecoding& decoding) {
    prepare_resampler(decoding);
    SwrContext* context = decoding.resampler.get();
    if (!context) return 0;
    const AVFrame& frame = *decoding.frame;
    const int room = swr_get_out_samples(context, frame.nb_samples);
    if (room <= 0 || room > most_frames) return 0;
    const auto samples =
        static_cast<std::size_t>(room) * static_cast<std::size_t>(decoding.channels);
    if (decoding.resampled.size() < samples) decoding.resampled.resize(samples);
    auto* out = reinterpret_cast<std::uint8_t*>(decoding.resampled.data());
    auto** in = const_cast<const std::uint8_t**>(frame.extended_data);
    return swr_convert(context, &out, room, in, frame.nb_samples);
}

}  // namespace

void take_in_frame(AudioDecoding& decoding) {
    decoding.taken = 0;
    decoding.is_resampled = needs_resampling(decoding);
    decoding.frames = decoding.is_resampled ? resample(decoding) : decoding.frame->nb_samples;
}

SampleView decoded_samples(AudioDecoding& decoding) {
    const AVFrame& frame = *decoding.frame;
    SampleView view{.format = static_cast<AVSampleFormat>(frame.format),
                    .channels = decoding.channels,
                    .frames = decoding.frames,
                    .planes = frame.extended_data};
    if (decoding.is_resampled) {
        view.format = AV_SAMPLE_FMT_S16;
        decoding.resampled_plane = reinterpret_cast<const std::uint8_t*>(decoding.resampled.data());
        view.planes = &decoding.resampled_plane;
    }
    return view;
}
