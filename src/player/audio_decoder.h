// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

#include <cstdint>

/// Opens the decoder of an audio stream. Null, with a message on standard error, when that fails.
/// [demux]
CodecContextPtr open_audio_decoder(const AVStream* stream);

/// Decodes the next samples of the sound into `buf`, at most `capacity` bytes of interleaved signed
/// 16-bit samples in the stream's channels and rate, and moves the decode clock over them. What
/// does not fit comes with the next call. [audio]
///
/// Returns the bytes written, and in `pts_out` (seconds) the time of the first; 0 when there is
/// nothing at the moment: no packet within the time this call of the device has for waiting, many
/// packets in a row that give no sound, the end of the file; -1 when the film is paused or closes,
/// or when it was just sought and everything decoded before was dropped.
int audio_decode_frame(VideoState* is, std::uint8_t* buf, int capacity, double* pts_out);

/// Drops everything decoded so far when a seek has been carried out since. Does not wait. [audio]
void audio_follow_seek(VideoState* is);
