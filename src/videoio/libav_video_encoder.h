// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"
#include "videoio/error_message.h"
#include "videoio/partial_file.h"
#include "videoio/video_encoder.h"

#include <cstdint>

/// Encodes frames with FFmpeg into any container it writes.
class VYX_LibAVVideoEncoder : public VYX_VideoEncoder {
  public:
    /// Makes the file that the record names. The object is usable when the message of the record is
    /// empty afterwards.
    explicit VYX_LibAVVideoEncoder(VYX_SaveVideoArgs* args);
    ~VYX_LibAVVideoEncoder() override;

    void WriteFrame(VYX_WriteFrameArgs* args) override;

  private:
    bool open(VYX_SaveVideoArgs& args);
    bool allocate(ErrorMessage& message, const AVOutputFormat* container, const char* path);
    bool set_formats(VYX_SaveVideoArgs& args);
    void configure(const VYX_SaveVideoArgs& args);
    bool open_codec(ErrorMessage& message);
    bool open_file(ErrorMessage& message, const char* path);

    bool accept(VYX_WriteFrameArgs& args) const;
    bool prepare_scaler(VYX_WriteFrameArgs& args);
    void copy_frame(const std::uint8_t* data);
    bool convert(VYX_WriteFrameArgs& args);
    std::int64_t next_pts(double seconds);
    int encode(const AVFrame* frame);
    int fail(const char* call, int error);
    void finish();

    PartialFile partial_;
    const AVCodec* codec_ = nullptr;
    FormatOutputPtr container_;
    CodecContextPtr encoder_;
    AVStream* stream_ = nullptr;
    FramePtr source_;       ///< copy of the caller's, of the first one's size; null before
    FramePtr destination_;  ///< in the format that is encoded
    ScalerPtr scaler_;
    PacketPtr packet_;
    bool header_written_ = false;
    // What has ended the writing: FFmpeg's muxers do not bear that a packet is missing.
    const char* failed_call_ = nullptr;
    int error_ = 0;
    AVPixelFormat source_format_ = AV_PIX_FMT_RGB24;
    std::int64_t last_pts_ = -1;
};
