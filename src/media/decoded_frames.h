// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

struct AVCodecContext;
struct AVFrame;

/// For a decoder's `get_buffer2`: the library's own buffer, which remembers `timestamp` besides.
/// Returns 0, or a negative error code. May run on the decoder's own threads.
int get_stamped_buffer(AVCodecContext* codec, AVFrame* frame, int flags, std::int64_t timestamp);

/// The time stamp that such a buffer remembers; AV_NOPTS_VALUE for any other.
std::int64_t buffer_stamp(const AVFrame& frame);

/// Whether decoding can start with the picture: a key frame, or one coded by itself.
bool is_key_picture(const AVFrame& frame);
