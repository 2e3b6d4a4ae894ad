// SPDX-License-Identifier: MIT
#pragma once

#include "player/audio_samples.h"
#include "player/audio_state.h"

/// The samples that were decoded last, as `interleave_samples` can read them. [audio]
///
/// Frames of another rate or number of channels than the stream opened with, of samples that are
/// neither 16 bits nor floats, and single channels of floats are brought to 16 bits of the stream's
/// rate and channels first. That takes memory where a frame is unlike the one before it.
SampleView decoded_samples(AudioDecoding& decoding);

/// Takes in the frame that was decoded: brings it to the stream's form where that is needed and
/// counts its samples. [audio]
void take_in_frame(AudioDecoding& decoding);
