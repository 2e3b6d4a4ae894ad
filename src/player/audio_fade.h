// SPDX-License-Identifier: MIT
#pragma once

/// Adds `addend` to a sample and clips the sum to 16 bits.
void MIX(short& sample, int addend);

/// Copies the frames `start` … `start` + `count` - 1 of a block of `total` frames from `src` (the
/// whole block) to `dst` (that part of it), with its fades. `flags` are those of `AudioBlock`.
///
/// With the fade-in flag the first `fade_in` frames are added, rising from silence; with the
/// fade-out flag the last `fade_out` frames, falling to it. What lies between is copied in the mono
/// variant and added in the stereo variant. [audio]
void audio_fadeinout_copy_mono(short* dst, const short* src, int total, int start, int count,
                               int flags, int fade_in, int fade_out);
void audio_fadeinout_copy_stereo(short* dst, const short* src, int total, int start, int count,
                                 int flags, int fade_in, int fade_out);
