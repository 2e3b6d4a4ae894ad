// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"

#include <SDL.h>

#include <array>
#include <cstdint>
#include <vector>

/// A decoded block of sound and its place on the output time line. The time line counts bytes
/// handed to the device. [audio]
struct AudioBlock {
    /// A block that is decoded from one channel becomes twice as long as it was.
    static constexpr int data_bytes = 65536;
    /// The most that is decoded into a block.
    static constexpr int decoded_bytes = 32768;
    /// Decoders may give less at a time. A block of fewer frames could not be made shorter or
    /// longer without a click.
    static constexpr int least_frames = 512;

    enum Flag : int { loaded = 1, fades_out = 2, fades_in = 4 };

    alignas(16) std::array<std::uint8_t, data_bytes> data{};
    std::int64_t start = 0;  ///< of the first byte on the time line
    int size = 0;            ///< bytes of valid data
    int read_position = 0;   ///< bytes played
    int flags = 0;
    int fade_in = 0;   ///< bytes
    int fade_out = 0;  ///< bytes
    int repeat = 0;    ///< how often it will play again
    int span = 0;      ///< bytes from `start` to where the next block starts

    bool is_loaded() const { return (flags & loaded) != 0; }
    std::int64_t end() const { return start + span; }
};

/// What the decoder of the sound is busy with. [audio] once the device runs.
struct AudioDecoding {
    PacketPtr packet;
    bool packet_waits = false;  ///< the decoder has not taken it yet
    bool draining = false;      ///< the end of the file was announced to the decoder
    bool delays = false;        ///< it gives its last sound only then
    FramePtr frame;
    int frames = 0;  ///< sample frames of what was decoded last
    int taken = 0;   ///< of these, handed out already

    // The stream as it was when it opened. What is decoded is brought to that.
    AVRational time_base{0, 1};
    int channels = 0;
    int sample_rate = 0;

    ResamplerPtr resampler;      ///< for frames that are not as they should be
    int resampler_format = -1;   ///< of the frames it was made for
    int resampler_rate = 0;      ///< and their rate
    int resampler_channels = 0;  ///< and their channels
    std::vector<short> resampled;
    const std::uint8_t* resampled_plane = nullptr;
    bool is_resampled = false;  ///< the samples are in `resampled`, not in `frame`
};

/// How far sound and master clock are apart, smoothed over about a second. [audio]
struct AudioDrift {
    double seconds = 0.0;  ///< the sound is ahead by
    double weight = 0.0;   ///< seconds of sound that have gone into it
};

/// The sound of the open file on its way to the device.
///
/// Made by [demux] before the device starts, freed by [main] after the device was closed. Between
/// the two everything here belongs to [audio].
struct AudioOutput {
    SDL_AudioSpec spec{};  ///< what the device takes
    int hardware_bytes = 0;
    AudioDecoding decoding;
    double decode_clock = 0.0;  ///< time stamp of the end of what was decoded so far, seconds

    // Synchronisation.
    double sync_average = 0.0;
    double sync_coefficient = 0.0;
    double sync_threshold = 0.0;  ///< seconds
    int sync_count = 0;
    AudioDrift drift;

    std::int64_t output_position = 0;  ///< bytes handed to the device
    std::array<AudioBlock, 2> blocks;

    // Starting after silence.
    bool starting = true;           ///< nothing plays: the next block is placed by the clocks
    bool was_paused = false;        ///< at the last call
    std::int64_t held_bytes = 0;    ///< silence so far, waiting for a picture
    std::int64_t silent_bytes = 0;  ///< silence still to come before the time line goes on
    Uint32 wait_until = 0;          ///< when this call stops waiting for packets, in SDL's ticks

    /// Nothing that was decoded plays any more; the next block starts after silence.
    void forget_blocks();

    int frame_bytes() const { return spec.channels * 2; }
    int bytes_per_second() const { return spec.freq * frame_bytes(); }
};
