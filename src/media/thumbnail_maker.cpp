// SPDX-License-Identifier: MIT
#include "media/thumbnail_maker.h"

#include "media/decoded_frames.h"
#include "media/ffmpeg_handles.h"
#include "media/thumbnail_file.h"
#include "media/thumbnail_size.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/log.h>
}

#include <memory>
#include <vector>

namespace {

constexpr int key_pictures_only = 1;  // mode of read_and_decode
constexpr int enough_frames = 400;
constexpr int hopeless_packets = 1000;
constexpr int more_attempts = 3;
constexpr std::int64_t attempt_step = std::int64_t{4} * AV_TIME_BASE;
// One picture of more than 8192 x 8192 takes the decoder too long.
constexpr std::int64_t most_pixels = std::int64_t{8192} * 8192;
// The scaler's vector code writes in steps, beyond the end of the last row.
constexpr std::size_t padding = 64;

// Time stamp of the packet that the decoder was given last. Decoders may ask for buffers on threads
// of their own.
std::atomic<std::int64_t> gb_video_pkt_pts{AV_NOPTS_VALUE};

int our_get_buffer(AVCodecContext* codec, AVFrame* frame, int flags) {
    return get_stamped_buffer(codec, frame, flags, gb_video_pkt_pts);
}

// What read_and_decode is doing with one stream.
class FrameReader {
  public:
    FrameReader(AVFormatContext* format, int stream, AVCodecContext* codec,
                const Patience& patience)
        : format_(format),
          stream_(stream),
          codec_(codec),
          patience_(patience),
          packet_(av_packet_alloc()) {}

    /// The next frame, whatever it is: 1, 0 at the end, -1 after too many packets without one.
    int next(AVFrame* frame) {
        if (!packet_) return 0;
        for (;;) {
            const int result = avcodec_receive_frame(codec_, frame);
            if (result >= 0) {
                without_frame_ = 0;
                return 1;
            }
            if (result == AVERROR_EOF) {
                avcodec_flush_buffers(codec_);
                if (ended_) return 0;
            }
            if (without_frame_ == hopeless_packets) return -1;
            // What the demuxer holds already comes without reading.
            if (patience_.over() || !feed()) return 0;
        }
    }

  private:
    bool wanted() const {
        if (packet_->stream_index != stream_) return false;
        return codec_->skip_frame < AVDISCARD_NONKEY || (packet_->flags & AV_PKT_FLAG_KEY);
    }

    // Sends the decoder the next packet that it may want, or the end.
    bool feed() {
        const int result = av_read_frame(format_, packet_.get());
        if (result < 0) {
            if (ended_ || result != AVERROR_EOF) return false;
            ended_ = true;
            return avcodec_send_packet(codec_, nullptr) >= 0;
        }
        if (packet_->stream_index == stream_) ++without_frame_;
        if (wanted()) {
            gb_video_pkt_pts = packet_->pts;
            avcodec_send_packet(codec_, packet_.get());
            // A decoder that reorders pictures would keep a key picture until the next one.
            if (codec_->skip_frame >= AVDISCARD_NONKEY) avcodec_send_packet(codec_, nullptr);
        }
        av_packet_unref(packet_.get());
        return true;
    }

    AVFormatContext* format_;
    int stream_;
    AVCodecContext* codec_;
    const Patience& patience_;
    PacketPtr packet_;
    int without_frame_ = 0;
    bool ended_ = false;
};

// Reads and decodes packets of one stream until a frame is ready. 1: it is, and `*pts` is its
// packet's time stamp; 0: the input ended or failed; -1: too many packets without a frame.
int read_and_decode(AVFormatContext* format, int stream, AVCodecContext* codec, AVFrame* frame,
                    long* pts, int mode, const Patience& patience) {
    FrameReader reader(format, stream, codec, patience);
    for (int frames = 1;; ++frames) {
        const int result = reader.next(frame);
        if (result <= 0) return result;
        *pts = static_cast<long>(buffer_stamp(*frame));
        if (mode != key_pictures_only || is_key_picture(*frame)) return 1;
        if (frames == enough_frames || patience.half_over()) return 1;
    }
}

enum class Decoding { key_pictures, everything };

// One go at one file.
class ThumbnailMaking {
  public:
    ThumbnailMaking(const Patience& patience, Decoding decoding)
        : patience_(patience), decoding_(decoding), frame_(av_frame_alloc()) {}

    bool open_file(const char* path) { return file_.open(path, patience_); }

    bool open_decoder() {
        probed_ = !header_is_enough();
        if (probed_ && !probe()) return false;
        stream_ = find_stream();
        if (!stream_) return false;
        ignore_other_streams();
        const AVCodec* decoder = avcodec_find_decoder(stream_->codecpar->codec_id);
        codec_.reset(decoder ? avcodec_alloc_context3(decoder) : nullptr);
        if (!codec_ || avcodec_parameters_to_context(codec_.get(), stream_->codecpar) < 0) {
            return false;
        }
        configure();
        return avcodec_open2(codec_.get(), decoder, nullptr) >= 0 &&
               (decoder->capabilities & AV_CODEC_CAP_DR1);
    }

    bool probed() const { return probed_; }

    // Looks at pictures until one is not flat. Returns whether there were any.
    bool examine(Thumbnail& thumbnail) {
        if (!frame_) return false;
        long pts = 0;
        int attempt = 1;
        for (; next_frame(&pts) > 0; ++attempt) {
            if (!allocate() || !scale()) return true;
            thumbnail.picture = picture_;
            if (!is_flat(picture_->data[0], bytes_)) return true;
            thumbnail.flat = 1;
            if (attempt > more_attempts || !seek(attempt)) return true;
        }
        return attempt > 1;
    }

  private:
    AVFormatContext* format() const { return file_.context(); }

    int next_frame(long* pts) {
        return read_and_decode(format(), stream_->index, codec_.get(), frame_.get(), pts,
                               key_pictures_only, patience_);
    }

    // Probing reads and decodes a part of the film: a waste where the header tells everything.
    bool header_is_enough() const {
        const AVStream* stream = find_stream();
        return decoding_ == Decoding::key_pictures && stream &&
               !(format()->ctx_flags & AVFMTCTX_NOHEADER) && stream->codecpar->width > 0 &&
               stream->codecpar->height > 0 && stream->codecpar->codec_id != AV_CODEC_ID_NONE;
    }

    bool probe() {
        format()->fps_probe_size = 0;
        std::vector<Dictionary> options(format()->nb_streams);
        std::vector<AVDictionary*> raw;
        for (Dictionary& one : options) {
            one.set("max_pixels", std::to_string(most_pixels).c_str());
            raw.push_back(*one.ref());
        }
        const int result = avformat_find_stream_info(format(), raw.empty() ? nullptr : raw.data());
        for (std::size_t i = 0; i < raw.size(); ++i)
            *options[i].ref() = raw[i];
        return result >= 0;
    }

    // The first stream of pictures. The cover of a record counts when there is nothing else.
    AVStream* find_stream() const {
        AVStream* cover = nullptr;
        for (unsigned i = 0; i < format()->nb_streams; ++i) {
            AVStream* stream = format()->streams[i];
            if (stream->codecpar->codec_type != AVMEDIA_TYPE_VIDEO) continue;
            if (!(stream->disposition & AV_DISPOSITION_ATTACHED_PIC)) return stream;
            if (!cover) cover = stream;
        }
        return cover;
    }

    void ignore_other_streams() {
        for (unsigned i = 0; i < format()->nb_streams; ++i) {
            if (format()->streams[i] != stream_) format()->streams[i]->discard = AVDISCARD_ALL;
        }
    }

    void configure() {
        codec_->pkt_timebase = stream_->time_base;
        codec_->get_buffer2 = our_get_buffer;
        codec_->thread_count = 1;
        codec_->thread_type = FF_THREAD_SLICE;  // else the library complains of the callback
        codec_->max_pixels = most_pixels;
        if (decoding_ == Decoding::key_pictures) codec_->skip_frame = AVDISCARD_NONKEY;
    }

    // Makes the record and the memory of the thumbnail, in the first round.
    bool allocate() {
        if (picture_) return true;
        const AVRational sample = av_guess_sample_aspect_ratio(format(), stream_, frame_.get());
        const ThumbnailSize size = thumbnail_size(thumbnail_aspect(
            frame_->width, frame_->height, sample.num && sample.den ? av_q2d(sample) : 0.0));
        const int bytes = av_image_get_buffer_size(AV_PIX_FMT_RGB24, size.width, size.height, 1);
        OwnPixelsPtr picture(av_frame_alloc());
        if (!picture || bytes <= 0) return false;
        bytes_ = static_cast<std::size_t>(bytes);
        picture->data[0] = static_cast<std::uint8_t*>(av_mallocz(bytes_ + padding));
        if (!picture->data[0]) {
            av_log(nullptr, AV_LOG_ERROR, "  av_malloc %d bytes failed\n", bytes);
            return false;
        }
        picture->linesize[0] = size.width * 3;
        picture->width = size.width;
        picture->height = size.height;
        picture->format = AV_PIX_FMT_RGB24;
        unfilled_ = std::move(picture);
        picture_ = unfilled_.get();
        return true;
    }

    bool scale() {
        const ScalerPtr scaler(sws_getContext(frame_->width, frame_->height,
                                              static_cast<AVPixelFormat>(frame_->format),
                                              picture_->width, picture_->height, AV_PIX_FMT_RGB24,
                                              SWS_BILINEAR, nullptr, nullptr, nullptr));
        if (!scaler) {
            av_log(nullptr, AV_LOG_ERROR, "  sws_getContext failed\n");
            return false;
        }
        sws_scale(scaler.get(), frame_->data, frame_->linesize, 0, frame_->height, picture_->data,
                  picture_->linesize);
        static_cast<void>(unfilled_.release());
        return true;
    }

    bool seek(int attempt) {
        // There is one cover, at no time.
        if (stream_->disposition & AV_DISPOSITION_ATTACHED_PIC) return false;
        std::int64_t target =
            av_rescale_q(attempt * attempt_step, av_get_time_base_q(), stream_->time_base);
        if (stream_->start_time != AV_NOPTS_VALUE) target += stream_->start_time;
        if (av_seek_frame(format(), stream_->index, target, AVSEEK_FLAG_FRAME) < 0) return false;
        avcodec_flush_buffers(codec_.get());
        return true;
    }

    const Patience& patience_;
    Decoding decoding_;
    ThumbnailFile file_;
    AVStream* stream_ = nullptr;
    CodecContextPtr codec_;
    FramePtr frame_;
    OwnPixelsPtr unfilled_;       // the thumbnail's picture until it shows something
    AVFrame* picture_ = nullptr;  // the same, and after that
    std::size_t bytes_ = 0;       // of it
    bool probed_ = false;
};

}  // namespace

Thumbnail create_thumbnail(const char* path, std::chrono::milliseconds limit) {
    Thumbnail thumbnail;
    thumbnail.name = path;
    const Patience patience(bAbort, limit);
    for (const Decoding decoding : {Decoding::key_pictures, Decoding::everything}) {
        ThumbnailMaking making(patience, decoding);
        if (!making.open_file(path)) break;
        const bool opened = making.open_decoder();
        if (opened ? making.examine(thumbnail) : making.probed()) break;
        if (patience.over()) break;
    }
    return thumbnail;
}
