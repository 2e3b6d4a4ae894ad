// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// Whether there is a clock that sound has to follow: another than its own, and one that runs. The
/// pictures' clock runs from the first picture on that was shown since the film was opened or
/// sought.
bool sound_follows(const VideoState* is);

/// How far the sound is ahead of the master clock and the "audio latency" setting, in seconds.
double audio_difference(const VideoState* is);

/// How long a decoded block of `bytes` bytes is to play: returns the bytes to play of it, fewer
/// than `bytes` when it is cut, and in `repeat` how often it plays again. Corrects from a
/// difference of `sync_threshold` on. [audio]
int synchronize_audio(VideoState* is, int bytes, int& repeat);

/// What is done to a block so that sound and master clock stay together.
struct AudioCorrection {
    int size = 0;      ///< bytes to play of the block
    int repeat = 0;    ///< how often it plays again
    int fade_out = 0;  ///< bytes at its end that overlap with what follows; whole frames
};

/// The correction of a block of `bytes` bytes: `synchronize_audio` decides, and where it leaves the
/// block alone, `keep_together`. [audio]
AudioCorrection correct_block(VideoState* is, int bytes);

/// Small corrections below the threshold of `synchronize_audio`. [audio]
///
/// At another speed than 1 every block is made as long as its pictures last, so that the sound need
/// not be a threshold off before anything happens. At speed 1 a device whose rate is not quite that
/// of the clock is followed: when the smoothed difference passes 6 ms, the block overlaps with what
/// follows by as much, or plays longer by as much.
AudioCorrection keep_together(VideoState* is, int bytes);

/// Takes the difference at this moment into the smoothed one. `seconds` have passed since the last
/// time. [audio]
void note_drift(VideoState* is, double seconds);
