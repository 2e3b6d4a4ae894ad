// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// Runs `samples`, n frames of the stream's channels, through the sound chain; the buffer holds
/// stereo afterwards. The channel counts are not used; `sample_rate` is in Hz. [audio]
void audio_processor(VideoState* is, short* samples, int n, int channels, int output_channels,
                     int sample_rate);

/// Decodes the next samples into a block. Returns the bytes they take on the output, below 1 when
/// there are none; `pts` is the time of the first. `process_block` has to follow. [audio]
int decode_block(VideoState* is, AudioBlock& block, double* pts);

/// Processes the `bytes` output bytes of a decoded block. [audio]
void process_block(VideoState* is, AudioBlock& block, int bytes);

/// Places a decoded and processed block of `size` bytes at `start` on the time line, without fades.
void place_block(AudioBlock& block, int size, std::int64_t start);

/// Lays the blocks onto the next `len` bytes of the time line, decoding new ones as needed. Returns
/// the bytes written to `stream`; what follows is up to the caller, the time line has passed it.
/// [audio]
int mix_blocks(VideoState* is, Uint8* stream, int len);
