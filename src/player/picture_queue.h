// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// The decoder's planes of a picture, as a slot keeps them.
struct LibraryFrame : DecodedFrame {
    FramePtr frame;
};

/// Whether pictures of this size fit into a texture; says so on standard error where not. Any
/// thread.
bool can_be_shown(int width, int height);

/// Puts a decoded picture into the next free slot, waiting for one. `frame` may be taken over.
/// `seeks` is the number of seeks before it. Returns 0, -1 when the film is being closed, 1 when
/// the picture cannot be converted or the film goes on elsewhere meanwhile. [video]
int queue_picture(VideoState* is, FramePtr& frame, double pts, int seeks);

/// Gives the slot at the write index the storage that the video thread asked for. [main]
void alloc_picture(VideoState* is);

/// Writes a frame into memory: with `yuv` packed for the GPU, 3/2 of its rows of row_bytes / 3
/// bytes each; else as 24-bit RGB in rows of `row_bytes`. Any thread that owns the frame.
void fill_picture(VideoState* is, const AVFrame& frame, std::uint8_t* destination, int row_bytes,
                  bool yuv);

/// Writes the picture of a slot into its buffer: width x 3 x height bytes of RGB, half of that of
/// YUV, a third of it halved. Any thread that owns the slot.
void fill_picture(VideoState* is, const VideoPicture& pic, std::uint8_t* destination,
                  BufferForm form);
