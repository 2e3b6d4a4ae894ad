// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// Places the first block after silence (the file was opened or sought, or sound ran out) so that
/// it plays in time with the master clock: later, or without its beginning. [audio]
///
/// `len` is the length of the device's buffer in bytes. Returns whether sound plays from now on.
/// With a film the sound waits for the first picture, for at most a second of silence: until then
/// the picture's clock tells nothing.
bool start_sound(VideoState* is, int len);

/// The same after a pause, for the blocks that wait. [audio]
void resume_sound(VideoState* is);

/// Sets the audio clock to now. What is silent before the decoded sound is not counted. [audio]
void note_audio_clock(VideoState* is);
