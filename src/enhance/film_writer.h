// SPDX-License-Identifier: MIT
#pragma once

#include "enhance/colour_conversion.h"
#include "enhance/output_file.h"
#include "enhance/picture_sink.h"

/// Encodes a film into the container that its name tells, with that container's own video codec at
/// a quality that shows no loss.
class FilmWriter : public PictureSink {
  public:
    /// Throws when no container or no encoder goes by that name.
    FilmWriter(const std::string& path, const SinkFormat& format);
    ~FilmWriter() override;

    void write(const RgbPicture& picture, double seconds) override;
    void finish() override;

  private:
    void start(const RgbPicture& first);
    void open_encoder(int width, int height);
    void encode(const AVFrame* frame);

    std::string path_;
    OutputFile file_;
    SinkFormat format_;
    const AVCodec* codec_ = nullptr;
    FormatOutputPtr container_;
    AVStream* stream_ = nullptr;
    CodecContextPtr encoder_;
    FramePtr frame_;
    PacketPtr packet_;
    ColourConversion colours_;
    double first_seconds_ = 0.0;
    std::int64_t last_pts_ = -1;
};

/// The pixel format a film of this size is encoded in: 4:2:0 where both sides are even and 4:4:4
/// otherwise, or, where the encoder takes neither, its own first one. `formats` ends with
/// AV_PIX_FMT_NONE; null: it takes all.
AVPixelFormat film_pixel_format(const AVPixelFormat* formats, int width, int height);

/// The unit of time stamps at a number of pictures a second, in numbers that every codec takes.
AVRational film_tick(double pictures_per_second);
