// SPDX-License-Identifier: MIT
#include "enhance/film_writer.h"

#include "enhance/enhance_error.h"
#include "enhance/picture_series.h"
#include "media/error_text.h"
#include "media/pixel_formats.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int largest_term = 60000;   // MPEG-4 takes no more than 65535 ticks a second
constexpr double lowest_rate = 0.01;  // pictures a second
constexpr double highest_rate = 1000.0;
constexpr int constant_quality = 16;     // of encoders with such a scale: no visible loss
constexpr int constant_quantiser = 2;    // of the others, the finest but one
constexpr int best_theora_quality = 10;  // there it is the other way round

const AVOutputFormat* container_of(const std::string& path) {
    const AVOutputFormat* format = av_guess_format(nullptr, path.c_str(), nullptr);
    if (!format) throw EnhanceError("no kind of film goes by the name of '" + path + "'");
    if (format->flags & AVFMT_NOFILE || std::strcmp(format->name, "image2") == 0) {
        throw EnhanceError("'" + path +
                           "' is no film; numbered pictures need a name like picture-%05d.png");
    }
    return format;
}

bool takes(const AVPixelFormat* formats, AVPixelFormat wanted) {
    for (; *formats != AV_PIX_FMT_NONE; ++formats) {
        if (*formats == wanted) return true;
    }
    return false;
}

void set_quality(AVCodecContext* encoder) {
    if (av_opt_find(encoder->priv_data, "crf", nullptr, 0, 0)) {
        av_opt_set_double(encoder->priv_data, "crf", constant_quality, 0);
        encoder->bit_rate = 0;
        return;
    }
    encoder->flags |= AV_CODEC_FLAG_QSCALE;
    encoder->global_quality =
        FF_QP2LAMBDA *
        (encoder->codec_id == AV_CODEC_ID_THEORA ? best_theora_quality : constant_quantiser);
}

}  // namespace

AVPixelFormat film_pixel_format(const AVPixelFormat* formats, int width, int height) {
    const bool even = width % 2 == 0 && height % 2 == 0;
    const AVPixelFormat wanted = even ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV444P;
    return !formats || takes(formats, wanted) ? wanted : formats[0];
}

AVRational film_tick(double pictures_per_second) {
    return av_inv_q(
        av_d2q(std::clamp(pictures_per_second, lowest_rate, highest_rate), largest_term));
}

FilmWriter::FilmWriter(const std::string& path, const SinkFormat& format)
    : path_(path),
      file_(path),
      format_(format),
      frame_(av_frame_alloc()),
      packet_(av_packet_alloc()) {
    const AVOutputFormat* container = container_of(path);
    const AVCodecID id =
        av_guess_codec(container, nullptr, path.c_str(), nullptr, AVMEDIA_TYPE_VIDEO);
    // What takes PNG is a container of sound: the picture would be its cover.
    if (id != AV_CODEC_ID_PNG) codec_ = avcodec_find_encoder(id);
    if (!codec_) throw EnhanceError("there is no video encoder for '" + path + "'");
    AVFormatContext* made = nullptr;
    if (avformat_alloc_output_context2(&made, container, nullptr, file_.working_path().c_str()) <
        0) {
        throw EnhanceError("cannot make a film of the kind of '" + path + "'");
    }
    container_.reset(made);
    stream_ = avformat_new_stream(container_.get(), nullptr);
}

FilmWriter::~FilmWriter() = default;

void FilmWriter::open_encoder(int width, int height) {
    encoder_.reset(avcodec_alloc_context3(codec_));
    encoder_->width = width;
    encoder_->height = height;
    encoder_->pix_fmt = film_pixel_format(encoder_pixel_formats(*codec_), width, height);
    encoder_->time_base = film_tick(format_.pictures_per_second);
    encoder_->framerate = av_inv_q(encoder_->time_base);
    encoder_->sample_aspect_ratio = format_.sample_aspect;
    encoder_->colorspace = format_.colour_space;
    encoder_->color_primaries = format_.primaries;
    encoder_->color_trc = format_.transfer;
    encoder_->color_range = format_.range;
    if (container_->oformat->flags & AVFMT_GLOBALHEADER) {
        encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    encoder_->thread_count = 0;
    set_quality(encoder_.get());
    const int result = avcodec_open2(encoder_.get(), codec_, nullptr);
    if (result < 0) {
        throw EnhanceError("the encoder " + std::string(codec_->name) + " for '" + path_ +
                           "' does not take pictures of " + std::to_string(width) + " x " +
                           std::to_string(height) + " at " +
                           std::to_string(av_q2d(encoder_->framerate)) +
                           " a second: " + error_text(result));
    }
}

void FilmWriter::start(const RgbPicture& first) {
    open_encoder(first.width, first.height);
    avcodec_parameters_from_context(stream_->codecpar, encoder_.get());
    stream_->time_base = encoder_->time_base;
    stream_->avg_frame_rate = encoder_->framerate;
    stream_->sample_aspect_ratio = format_.sample_aspect;
    int result = avio_open(&container_->pb, file_.working_path().c_str(), AVIO_FLAG_WRITE);
    if (result >= 0) result = avformat_write_header(container_.get(), nullptr);
    if (result < 0) throw EnhanceError("cannot write '" + path_ + "': " + error_text(result));

    frame_->width = first.width;
    frame_->height = first.height;
    frame_->format = encoder_->pix_fmt;
    frame_->colorspace = format_.colour_space;
    frame_->color_range = format_.range;
    frame_->quality = encoder_->global_quality;
    if (av_frame_get_buffer(frame_.get(), 0) < 0) throw std::bad_alloc();
}

void FilmWriter::write(const RgbPicture& picture, double seconds) {
    if (!encoder_) {
        first_seconds_ = seconds;
        start(picture);
    }
    if (picture.width != frame_->width || picture.height != frame_->height) {
        throw EnhanceError("the pictures change their size, which '" + path_ +
                           "' cannot hold; numbered pictures can");
    }
    if (av_frame_make_writable(frame_.get()) < 0) throw std::bad_alloc();
    colours_.from_rgb(picture, *frame_);
    const double ticks = (seconds - first_seconds_) / av_q2d(encoder_->time_base);
    frame_->pts = std::max<std::int64_t>(std::llround(ticks), last_pts_ + 1);
    last_pts_ = frame_->pts;
    encode(frame_.get());
}

// Hands the encoder a frame, or the end, and the container what the encoder made.
void FilmWriter::encode(const AVFrame* frame) {
    int result = avcodec_send_frame(encoder_.get(), frame);
    while (result >= 0) {
        result = avcodec_receive_packet(encoder_.get(), packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        if (result < 0) break;
        if (packet_->duration == 0) packet_->duration = 1;
        av_packet_rescale_ts(packet_.get(), encoder_->time_base, stream_->time_base);
        packet_->stream_index = stream_->index;
        result = av_interleaved_write_frame(container_.get(), packet_.get());
    }
    if (result < 0) throw EnhanceError("cannot write '" + path_ + "': " + error_text(result));
}

void FilmWriter::finish() {
    if (!encoder_) throw EnhanceError("there are no pictures to write to '" + path_ + "'");
    encode(nullptr);
    int result = av_write_trailer(container_.get());
    if (result >= 0) result = avio_closep(&container_->pb);
    if (result < 0) throw EnhanceError("cannot write '" + path_ + "': " + error_text(result));
    file_.complete();
}

std::unique_ptr<PictureSink> make_sink(const std::string& path, const SinkFormat& format) {
    if (is_picture_pattern(path)) return std::make_unique<PictureSeries>(path);
    return std::make_unique<FilmWriter>(path, format);
}
