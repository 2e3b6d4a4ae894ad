// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"
#include "videoio/base_class.h"
#include "videoio/frame_converter.h"
#include "vyx/video.h"

#include <cstdint>
#include <optional>

/// Reads the frames of a film or a camera. One thread at a time.
class VYX_VideoDecoder : public VYX_BaseClass {
  public:
    /// Opens what the record names and fills in the rest of it. The object is usable when the
    /// message of the record is empty afterwards.
    explicit VYX_VideoDecoder(VYX_OpenVideoArgs* args);
    ~VYX_VideoDecoder() override;

    /// Reads the next frame; the record's message tells what failed.
    void ReadFrame(VYX_ReadFrameArgs* args);
    /// Moves to a time; the record's message tells what failed.
    void Seek(VYX_SeekFrameArgs* args);

  private:
    // Why the decoder is being emptied: it takes no packets meanwhile.
    enum class Draining { no, end_of_file, seek };

    struct KeyPacket {
        std::int64_t pts;
        std::int64_t dts;

        bool is(const AVPacket& packet) const {
            return (packet.flags & AV_PKT_FLAG_KEY) && packet.pts == pts && packet.dts == dts;
        }
    };

    bool open(VYX_OpenVideoArgs& args);
    bool find_input(VYX_OpenVideoArgs& args, const AVInputFormat** format, Dictionary& options);
    bool open_input(VYX_OpenVideoArgs& args);
    bool find_stream(VYX_OpenVideoArgs& args);
    bool open_decoder(VYX_OpenVideoArgs& args);
    bool allocate_frames(VYX_OpenVideoArgs& args);
    void configure_decoder();

    int read_and_decode(std::int64_t* pts, bool key_frame_only);
    int feed();
    int drain(Draining reason);
    bool is_ours(const AVPacket& packet) const;
    std::int64_t start_time() const;
    bool move_to(std::int64_t target, int flags);
    bool seek_to(std::int64_t target);
    std::optional<KeyPacket> last_key_after(std::int64_t& time);
    bool go_back();
    double time_of(std::int64_t pts);

    FormatInputPtr container_;
    CodecContextPtr decoder_;
    FramePtr frame_;
    FrameConverter converter_;
    int stream_index_ = -1;
    bool is_camera_ = false;
    AVStream* stream_ = nullptr;
    const AVCodec* codec_ = nullptr;
    PacketPtr packet_;
    int width_ = 0;
    int height_ = 0;
    double frame_duration_ = 0.0;
    double next_time_ = 0.0;  ///< of a frame without a time stamp
    Draining draining_ = Draining::no;
    std::optional<std::int64_t> sought_;   ///< of a seek without a picture yet, container's ticks
    bool rewound_ = false;                 ///< by a seek: times begin anew
    std::optional<KeyPacket> key_packet_;  ///< where decoding is to begin
};
