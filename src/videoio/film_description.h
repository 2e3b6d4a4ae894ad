// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"
#include "vyx/video.h"

/// The first stream of pictures that move, -1 for none: covers are no films.
int find_film(const AVFormatContext& container);

/// Frames per second; 0 when nothing tells them.
double film_rate(const AVStream& stream, const AVCodecContext& decoder);

/// The format of frames that are read: 48-bit RGB for more than 8 bits per component, else 24-bit.
AVPixelFormat output_format(AVPixelFormat coded);

/// Fills in what is told of a film, from its decoder when that is open. Returns false, with a
/// message, when frames of this size cannot be read.
bool describe_film(const AVFormatContext& container, const AVStream& stream,
                   const AVCodecContext& decoder, VYX_OpenVideoArgs& args);
