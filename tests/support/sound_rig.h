// SPDX-License-Identifier: MIT
#pragma once

#include "player/audio_output.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

using Shorts = std::vector<short>;

/// What a stream of uncompressed sound is made of.
struct PcmFormat {
    AVCodecID codec = AV_CODEC_ID_PCM_S16LE;
    int channels = 2;
    int sample_rate = 48000;
    std::uint64_t layout = 0;  ///< mask of loudspeakers; 0: the usual ones
};

/// Sound of the player without a file, a device or time: the test puts packets into the queue,
/// calls the device's callback and moves the wall clock.
class SoundRig {
  public:
    explicit SoundRig(const PcmFormat& format = {});
    ~SoundRig();
    SoundRig(const SoundRig&) = delete;
    SoundRig& operator=(const SoundRig&) = delete;

    VideoState state;
    AudioOutput& out() { return *state.audio; }
    int opened = -1;  ///< what open_audio returned

    /// Puts a packet of raw data into the queue. Without `pts` (seconds) it carries no time stamp.
    void put(const void* data, std::size_t bytes, double pts = no_time);
    void put(const Shorts& samples, double pts = no_time) {
        put(samples.data(), samples.size() * sizeof(short), pts);
    }

    /// Calls back for `frames` frames of stereo. The wall clock stands still meanwhile.
    Shorts play(int frames = 1024);

    /// Gives the state a film whose picture clock is set by the test.
    void add_film(double video_clock);
    void set_video_clock(double seconds);

    /// Stands for a seek carried out by the demuxer: the queue holds the flush packet alone.
    void seek(double target);

    static constexpr double no_time = -1e300;
    static std::int64_t now;  ///< the wall clock, microseconds

  private:
    PcmFormat format_;
};
