// SPDX-License-Identifier: MIT
#include "core/settings.h"
#include "gpu/gl_texture.h"
#include "platform/threads.h"
#include "player/audio_output.h"
#include "player/clocks.h"
#include "player/demux.h"
#include "player/picture_queue.h"
#include "player/video_decoder.h"

namespace {

constexpr double first_picture_delay = 0.04;  // seconds
constexpr double fastest_average = 120.0;     // pictures per second

// Lowers the spatial factor until the enlarged picture fits into a texture.
void fit_spatial_factor(int width, int height) {
    Value& setting = master_settings.spatial_upscaling_factor;
    for (int n = setting.toInt() + 1;
         n > 1 && (width * n > max_texture_size || height * n > max_texture_size); --n) {
        setting.setValue(static_cast<float>(n - 2));
    }
}

double average_frame_rate(const AVStream* stream, const AVCodecContext* codec) {
    const AVRational average = stream->avg_frame_rate;
    if (average.num > 0 && average.den > 0) return av_q2d(average);
    const double rate = codec->framerate.den != 0 ? av_q2d(codec->framerate) : 0.0;
    const bool believable = rate > 0.0 && rate <= fastest_average;
    if (believable || stream->r_frame_rate.den == 0) return rate;
    return av_q2d(stream->r_frame_rate);
}

StreamInfo video_stream_info(const AVStream* stream, const AVCodecContext* codec) {
    StreamInfo info;
    info.codec_name = codec->codec->name;
    info.width = codec->width;
    info.height = codec->height;
    info.frame_rate = average_frame_rate(stream, codec);
    info.bit_rate = codec->bit_rate;
    info.time_base = stream->time_base;
    return info;
}

int open_video(VideoState* is, AVStream* stream, int index) {
    is->video_codec = open_video_decoder(stream);
    if (!is->video_codec || !can_be_shown(is->video_codec->width, is->video_codec->height)) {
        is->video_codec.reset();
        return -1;
    }
    is->video_stream = stream;
    is->video_info = video_stream_info(stream, is->video_codec.get());
    is->stream_aspect = stream->sample_aspect_ratio;
    const AVRational rate = av_guess_frame_rate(is->format_context.get(), stream, nullptr);
    is->stream_frame_duration = rate.num > 0 && rate.den > 0 ? av_q2d(av_inv_q(rate)) : 0.0;
    const std::int64_t now = wall_clock();
    is->clocks.frame_timer = static_cast<double>(now) / 1000000.0;
    is->clocks.frame_last_delay = first_picture_delay;
    is->video_current_pts_time = now;
    fit_spatial_factor(is->video_codec->width, is->video_codec->height);
    packet_queue_init(&is->video_queue);
    is->video_stream_index = index;
    is->video_thread = SDL_CreateThread(video_thread, is);
    if (is->video_thread) return 0;
    stream_component_close(is, index);
    return -1;
}

void close_video(VideoState* is) {
    packet_queue_abort(&is->video_queue);
    {
        const MutexLock lock(is->picture_queue_mutex);
        SDL_CondSignal(is->picture_queue_cond.get());
    }
    if (is->video_thread) SDL_WaitThread(is->video_thread, nullptr);
    is->video_thread = nullptr;
    packet_queue_end(&is->video_queue);
    is->video_codec.reset();
    is->video_stream = nullptr;
}

AVStream* stream_at(const VideoState* is, int index) {
    const AVFormatContext* context = is->format_context.get();
    const bool exists = index >= 0 && static_cast<unsigned>(index) < context->nb_streams;
    return exists ? context->streams[index] : nullptr;
}

}  // namespace

int stream_component_open(VideoState* is, int stream_index) {
    assert_thread(ThreadRole::demux);
    AVStream* stream = stream_at(is, stream_index);
    if (!stream) return -1;
    switch (stream->codecpar->codec_type) {
        case AVMEDIA_TYPE_VIDEO:
            return open_video(is, stream, stream_index);
        case AVMEDIA_TYPE_AUDIO:
            return open_audio(is, stream, stream_index);
        default:
            return -1;
    }
}

void stream_component_close(VideoState* is, int stream_index) {
    assert_thread(ThreadRole::demux);
    if (!stream_at(is, stream_index)) return;
    if (stream_index == is->video_stream_index) {
        is->video_stream_index = -1;
        close_video(is);
    } else if (stream_index == is->audio_stream_index) {
        is->audio_stream_index = -1;
        close_audio(is);
    }
}
