// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// How the player reaches the sound device. One device is open at a time.
struct AudioDevice {
    /// Opens the device for exactly `spec`, of which the buffer's size in bytes is filled in. It is
    /// silent until it starts. False when it cannot; `SDL_GetError` says why.
    bool (*open)(SDL_AudioSpec* spec);
    /// From now on the device calls back.
    void (*start)();
    /// Returns when no call is under way and none will come.
    void (*close)();
};

/// SDL's.
const AudioDevice& sdl_audio_device();

/// Replaces SDL's sound device for files opened from now on; null brings it back.
void set_audio_device(const AudioDevice* device);

/// Opens the sound device and the decoder of an audio stream and lets it play. Returns 0, or -1,
/// with a message on standard error, when either fails. [demux]
int open_audio(VideoState* is, AVStream* stream, int index);

/// Ends what `open_audio` began. The waveforms and converters stay until the state is closed: the
/// main thread may be looking at them. [demux]
void close_audio(VideoState* is);

/// The device wants `len` bytes of 16-bit stereo; `userdata` is the `VideoState`. [audio]
///
/// Waits for packets for half the time the buffer lasts at most and never for a request of another
/// thread. What cannot be filled is silence.
void audio_callback(void* userdata, Uint8* stream, int len);

/// Whether everything that was decoded has been handed to the device, or the device has given up.
/// Only means something when no packets wait. Any thread.
bool sound_is_over(const VideoState* is);
