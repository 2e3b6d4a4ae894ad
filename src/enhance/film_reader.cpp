// SPDX-License-Identifier: MIT
#include "enhance/film_reader.h"

#include "enhance/enhance_error.h"
#include "media/error_text.h"
#include "player/side_data.h"
#include "videoio/film_description.h"

FilmReader::FilmReader(const std::string& path) : path_(path), packet_(av_packet_alloc()) {
    AVFormatContext* opened = nullptr;
    const int result = avformat_open_input(&opened, path.c_str(), nullptr, nullptr);
    container_.reset(opened);
    if (result < 0) throw EnhanceError("cannot open '" + path + "': " + error_text(result));
    open_stream();
    open_decoder();
}

void FilmReader::open_stream() {
    if (avformat_find_stream_info(container_.get(), nullptr) < 0) {
        throw EnhanceError("cannot find out what '" + path_ + "' holds");
    }
    const int index = find_film(*container_);
    if (index < 0) throw EnhanceError("'" + path_ + "' has no video");
    stream_ = container_->streams[index];
    const AVRational rate = av_guess_frame_rate(container_.get(), stream_, nullptr);
    if (rate.num > 0 && rate.den > 0) format_.pictures_per_second = av_q2d(rate);
    format_.sample_aspect = av_guess_sample_aspect_ratio(container_.get(), stream_, nullptr);
    format_.codec = stream_->codecpar->codec_id;
    format_.pictures = static_cast<long>(stream_->nb_frames);
}

void FilmReader::open_decoder() {
    const AVCodec* codec = avcodec_find_decoder(format_.codec);
    if (!codec) {
        throw EnhanceError("there is no decoder for the video of '" + path_ + "' (" +
                           avcodec_get_name(format_.codec) + ")");
    }
    decoder_.reset(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder_.get(), stream_->codecpar);
    decoder_->pkt_timebase = stream_->time_base;
    decoder_->flags2 |= AV_CODEC_FLAG2_EXPORT_MVS;
    decoder_->export_side_data |= AV_CODEC_EXPORT_DATA_VIDEO_ENC_PARAMS;
    decoder_->thread_count = 0;
    decoder_->thread_type =
        vectors_allow_frame_threads(format_.codec) ? FF_THREAD_FRAME : FF_THREAD_SLICE;
    const int result = avcodec_open2(decoder_.get(), codec, nullptr);
    if (result < 0) {
        throw EnhanceError("cannot decode the video of '" + path_ + "': " + error_text(result));
    }
}

// Hands the decoder one more packet of the video, or the end.
bool FilmReader::feed() {
    while (av_read_frame(container_.get(), packet_.get()) >= 0) {
        const bool wanted = packet_->stream_index == stream_->index;
        if (wanted && avcodec_send_packet(decoder_.get(), packet_.get()) < 0) ++damaged_;
        av_packet_unref(packet_.get());
        if (wanted) return true;
    }
    draining_ = true;
    return avcodec_send_packet(decoder_.get(), nullptr) >= 0;
}

double FilmReader::time_of(const AVFrame& frame) {
    double seconds = next_time_;
    if (frame.best_effort_timestamp != AV_NOPTS_VALUE) {
        seconds = static_cast<double>(frame.best_effort_timestamp) * av_q2d(stream_->time_base);
    }
    next_time_ = seconds + 1.0 / format_.pictures_per_second;
    return seconds;
}

TimedFrame FilmReader::next() {
    FramePtr frame(av_frame_alloc());
    for (;;) {
        const int result = avcodec_receive_frame(decoder_.get(), frame.get());
        if (result >= 0) {
            const double seconds = time_of(*frame);
            return {std::move(frame), seconds};
        }
        if (result == AVERROR_EOF) return {};
        if (result != AVERROR(EAGAIN)) ++damaged_;
        if (draining_ || !feed()) return {};
    }
}
