// SPDX-License-Identifier: MIT
#pragma once

// Owners of FFmpeg's objects. They are freed by hand nowhere else, but in `audio`, which lies below
// this folder and has an owner of its own.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/frame.h>
#include <libavutil/mem.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>

struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
/// For frame records whose pixels are one allocation of their own, at `data[0]`.
struct OwnPixelsDeleter {
    void operator()(AVFrame* frame) const {
        av_freep(&frame->data[0]);
        av_frame_free(&frame);
    }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct CodecContextDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FormatInputDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct FormatOutputDeleter {
    void operator()(AVFormatContext* context) const {
        if (!(context->oformat->flags & AVFMT_NOFILE)) avio_closep(&context->pb);
        avformat_free_context(context);
    }
};
/// For inputs and outputs with callbacks of ours.
struct IoContextDeleter {
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};
struct ResamplerDeleter {
    void operator()(SwrContext* context) const { swr_free(&context); }
};
struct ScalerDeleter {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using OwnPixelsPtr = std::unique_ptr<AVFrame, OwnPixelsDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
/// An opened (or allocated) input.
using FormatInputPtr = std::unique_ptr<AVFormatContext, FormatInputDeleter>;
/// An allocated output and the file it writes, if that is open.
using FormatOutputPtr = std::unique_ptr<AVFormatContext, FormatOutputDeleter>;
using IoContextPtr = std::unique_ptr<AVIOContext, IoContextDeleter>;
using ResamplerPtr = std::unique_ptr<SwrContext, ResamplerDeleter>;
using ScalerPtr = std::unique_ptr<SwsContext, ScalerDeleter>;

/// Options handed to the library by name.
class Dictionary {
  public:
    Dictionary() = default;
    ~Dictionary() { av_dict_free(&entries_); }
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    void set(const char* key, const char* value) { av_dict_set(&entries_, key, value, 0); }
    /// For calls that take the dictionary and leave what they did not use.
    AVDictionary** ref() { return &entries_; }
    /// The value under `key`, null when there is none.
    const char* get(const char* key) const {
        const AVDictionaryEntry* entry = av_dict_get(entries_, key, nullptr, 0);
        return entry ? entry->value : nullptr;
    }

  private:
    AVDictionary* entries_ = nullptr;
};
