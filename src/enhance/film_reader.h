// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"

#include <string>

/// What pictures of a film have in common.
struct FilmFormat {
    double pictures_per_second = 25.0;
    AVRational sample_aspect{0, 1};  ///< 0 when the film does not say
    AVCodecID codec = AV_CODEC_ID_NONE;
    long pictures = 0;  ///< how many there are, 0 when the file does not say
};

/// A picture and when it is shown.
struct TimedFrame {
    FramePtr frame;
    double seconds = 0.0;
};

/// Decodes the best video stream of a file, with the side data the passes use. One thread. Failures
/// throw `EnhanceError` with the name of the file.
class FilmReader {
  public:
    explicit FilmReader(const std::string& path);

    /// The next picture in the order of display; at the end one without a frame. Damaged packets
    /// are passed over and counted.
    TimedFrame next();

    const FilmFormat& format() const { return format_; }
    long damaged_packets() const { return damaged_; }

  private:
    void open_stream();
    void open_decoder();
    bool feed();
    double time_of(const AVFrame& frame);

    std::string path_;
    FormatInputPtr container_;
    CodecContextPtr decoder_;
    PacketPtr packet_;
    AVStream* stream_ = nullptr;
    FilmFormat format_;
    bool draining_ = false;
    long damaged_ = 0;
    double next_time_ = 0.0;
};
