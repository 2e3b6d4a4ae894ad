// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// Number of threads a video decoder may use; 0 chooses by the machine. Read when a film opens.
extern std::atomic<int> decoder_threads;

/// Opens the decoder of a video stream, set up for the display: motion vectors and quantisers told,
/// pictures preferably planar YUV 4:2:0. Null, with a message on standard error, when that fails.
/// [demux]
CodecContextPtr open_video_decoder(AVStream* stream);

/// Decoder callbacks. A picture's buffer remembers the newest packet's time stamp; formats are
/// negotiated towards planar YUV 4:2:0 and 24-bit RGB. May run on the decoder's own threads.
int our_get_buffer(AVCodecContext* codec, AVFrame* frame, int flags);
AVPixelFormat our_get_format(AVCodecContext* codec, const AVPixelFormat* formats);

/// How long a picture of the stream lasts, in seconds, by what codec and container say.
double frame_duration(const VideoState* is);

/// Thread body: takes packets, decodes them and queues the pictures until the queue is aborted.
/// `param` is the `VideoState`.
int video_thread(void* param);
