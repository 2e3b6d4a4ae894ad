// SPDX-License-Identifier: MIT
#pragma once

#include "audio/audio_converter.h"
#include "audio/circular_buffer.h"
#include "gpu/direct_display.h"
#include "gpu/postprocessing.h"
#include "gpu/video_picture.h"
#include "media/packet_time.h"
#include "platform/sync.h"
#include "platform/threads.h"
#include "player/audio_state.h"
#include "player/events.h"
#include "player/packet_queue.h"
#include "player/picture_scaler.h"
#include "player/side_data.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

/// Earlier than every time stamp.
inline constexpr std::int64_t nothing_to_discard = INT64_MIN;

/// The clock that pictures and sound follow.
enum SyncSource : int { sync_audio = 0, sync_video = 1, sync_external = 2 };

/// What is told of a stream. Written by [demux] before the stream's index, then fixed.
struct StreamInfo {
    std::string codec_name;
    int width = 0;
    int height = 0;
    double frame_rate = 0.0;  ///< average, pictures per second
    std::int64_t bit_rate = 0;
    int channels = 0;
    AVRational time_base{0, 1};  ///< of its time stamps
};

/// Refresh timing of the open film. [main], seconds unless said otherwise.
struct RefreshClocks {
    double frame_timer = 0.0;       ///< wall time at which the next sub-frame is due
    double displayed_due = 0.0;     ///< wall time at which the one on screen was; 0: at once
    double drawing_time = 0.0;      ///< how long drawing takes, smoothed
    double frame_last_pts = 0.0;    ///< time stamp of the previous picture
    double frame_last_delay = 0.0;  ///< how long the previous picture lasted
    int subframe_counter = 0;       ///< sub-frames of this picture handled (fixed rate)
    float interpolation_phase = 0;  ///< 0 to n (free-running; 0 at a fixed rate)
    double pause_start_time = 0.0;
};

/// The state of one opened file.
///
/// Made by `stream_open`, ended by `stream_close`, both on the main thread. The record stays
/// readable after it was closed, so that a pointer in a late event does no harm. Fields that two
/// threads share are atomic, or guarded as said.
struct VideoState {
    // The input. [demux]
    FormatInputPtr format_context;
    const AVInputFormat* input_format = nullptr;  ///< forced format, null to probe
    /// Chosen streams, -1 for none. Set last when a stream opens and first when it closes.
    std::atomic<int> video_stream_index{-1};
    std::atomic<int> audio_stream_index{-1};
    int third_stream_index = -1;
    std::atomic<bool> abort_request{false};  ///< ends every thread of this state
    std::atomic<int> sync_source{sync_video};
    std::atomic<double> external_clock{0.0};
    std::atomic<std::int64_t> external_clock_time{0};

    // Requests from [main] to the other threads.
    std::atomic<bool> paused{false};
    bool pause_refresh = false;  ///< a paused picture is to be shown once more. [main]
    bool last_paused = false;    ///< what the demuxer was told last. [demux]
    std::atomic<bool> rewind{false};
    std::atomic<bool> fast_forward{false};
    /// Position and flags are published before the request.
    std::atomic<bool> seek_request{false};
    std::atomic<int> seek_flags{0};
    std::atomic<std::int64_t> seek_position{0};  ///< microseconds
    /// The next seek is to end at its position, not at a key picture near it.
    std::atomic<bool> seek_exactly{false};
    std::atomic<bool> seeking{false};  ///< [demux] is at it
    /// [demux] waits here while enough is read; signalled when a seek is asked for.
    MutexPtr demux_mutex;
    CondPtr demux_cond;

    // Sound.
    AVStream* audio_stream = nullptr;  ///< owned by format_context
    CodecContextPtr audio_codec;
    PacketQueue audio_queue;
    StreamInfo audio_info;
    std::unique_ptr<AudioOutput> audio;  ///< made by [demux], used by [audio], freed by [main]
    /// To float planes and back. As `audio`.
    std::unique_ptr<AudioConverter> resampler_in;
    std::unique_ptr<AudioConverter> resampler_out;
    /// Waveforms of the left (or only) and the right channel, the latter null for one channel.
    /// [main] may read them while there is an audio stream, and frees them.
    object_ref<CircularBuffer<float>> audio_scope[2];
    /// All of it went to the device. Set by [audio]; cleared by [demux] with each packet and by
    /// [audio] before it takes one.
    std::atomic<bool> sound_over{false};

    // Clocks.
    RefreshClocks clocks;
    /// No picture was there at the last refresh; the next one is shown as soon as it is there.
    std::atomic<bool> starved{true};
    int pictures_unseen = 0;               ///< pictures that came too late to be shown. [main]
    std::atomic<double> video_clock{0.0};  ///< predicted time of the next picture. [video]
    std::atomic<double> video_current_pts{0.0};
    std::atomic<std::int64_t> video_current_pts_time{0};
    std::atomic<double> audio_clock{0.0};
    std::atomic<std::int64_t> audio_clock_time{0};

    // Picture.
    AVStream* video_stream = nullptr;  ///< owned by format_context
    CodecContextPtr video_codec;
    PacketQueue video_queue;
    StreamInfo video_info;
    AVRational stream_aspect{0, 1};      ///< of a pixel by the container. [demux], then [video]
    double stream_frame_duration = 0.0;  ///< seconds, 0 when unknown. [demux], then [video]
    QuantiserReader quantisers;          ///< [video]
    int last_width = 0;                  ///< of the last picture decoded. [video]
    int last_height = 0;
    bool too_large = false;                ///< for a texture. [video]
    int refused_format = AV_PIX_FMT_NONE;  ///< last one that cannot be converted. [video]
    PictureScaler scaler;
    bool pbo_supported = false;        ///< pictures travel through pixel-buffer objects
    bool show_motion_vectors = false;  ///< [main]
    bool show_quantization = false;    ///< [main]
    std::atomic<int> playback_speed_index{4};

    // Picture queue. Size and `allocated` are guarded by picture_queue_mutex; the slots queued
    // belong to [main], the one at the write index to [video].
    std::array<VideoPicture, picture_slots> pictures;
    int picture_queue_size = 0;
    int picture_queue_rindex = 0;      ///< [main]
    int picture_queue_windex = 0;      ///< [video]
    std::int64_t pictures_queued = 0;  ///< since the file was opened. [video]
    bool slot_requested = false;       ///< the slot at the write index wants storage
    int slot_width = 0;                ///< of that size
    int slot_height = 0;
    std::atomic<bool> yuv_direct{false};        ///< pictures can be converted on the GPU
    std::atomic<bool> decoder_finished{false};  ///< every picture of the file is queued
    std::atomic<std::int64_t> seek_target{0};   ///< of the last seek, microseconds
    /// Pictures and sound that end before are passed over, microseconds. [demux]
    std::atomic<std::int64_t> discard_before{nothing_to_discard};
    bool last_seek_failed = false;           ///< [demux]
    std::int64_t last_seek_time = 0;         ///< wall time in microseconds. [demux]
    std::atomic<int> seeks_done{0};          ///< seeks carried out. [demux]
    std::atomic<int> seeks_seen{0};          ///< the newest whose first picture is queued. [video]
    std::atomic<int> video_clock_seeks{-1};  ///< `seeks` of the picture that set the clock. [main]
    MutexPtr picture_queue_mutex;
    CondPtr picture_queue_cond;

    // Display. [main]
    int shown_picture = -1;  ///< slot on screen
    object_ref<gl_texture_resource> staging_texture;
    object_ref<gl_texture_resource> output_texture;
    object_ref<gl_texture_resource> shown_texture;
    DirectPlanes direct_planes;

    // Options of the opener, set before the demuxing thread starts.
    bool loop = false;  ///< [main]
    bool is_camera = false;
    std::atomic<bool> preload{false};
    PostprocessingCallback postprocessing_callback = nullptr;

    // Published for the interface.
    std::atomic<double> duration{0.0};        ///< seconds, 0 when unknown
    std::atomic<double> position{0.0};        ///< seconds from the start
    std::atomic<std::int64_t> start_time{0};  ///< of the first time stamp, microseconds

    // Threads.
    SDL_Thread* demux_thread = nullptr;
    std::atomic<pthread_t> demux_native{};    ///< the same, for signals. [demux] sets it first
    std::atomic<bool> demux_finished{false};  ///< its last act
    SDL_Thread* video_thread = nullptr;
    MutexPtr video_decoder_mutex;  ///< held around decoding, never while waiting for a slot
    MutexPtr audio_decoder_mutex;

    std::string filename;     ///< at most 1023 bytes; for cameras the device's name
    Dictionary open_options;  ///< handed to the demuxer. [demux] after opening
};

/// The open file, null for none.
extern std::atomic<VideoState*> global_video_state;
