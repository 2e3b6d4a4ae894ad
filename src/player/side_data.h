// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/video_picture.h"
#include "media/ffmpeg_handles.h"

/// Whether decoders of this codec tell how blocks moved.
bool exports_motion_vectors(AVCodecID codec);

/// Whether such a decoder gives the same vectors when pictures are decoded side by side. Where it
/// does not, only the slices of a picture are.
bool vectors_allow_frame_threads(AVCodecID codec);

/// Sets the sizes of the slot's grids for `frame` and fills its motion vectors: for predicted
/// pictures the vector of the partition that covers a cell, in whole pixels, from the previous
/// picture; for all others (0, 0). The grid stays empty for codecs that tell no vectors. [video]
void read_motion_vectors(VideoPicture* slot, const AVFrame* frame, AVCodecID codec);

/// Fills the slot's quantisers, 0 to 127; 1 where the decoder tells none. Call after
/// `read_motion_vectors`. [video]
void read_quantization_table(VideoPicture* slot, const AVFrame* frame, AVCodecID codec);

/// Reads the quantisers of a film's pictures in their order. Where a picture has none told, as the
/// last one of an MPEG-1 or MPEG-2 film, those of the picture before stand in: it would pass for a
/// finely coded one. One thread at a time.
class QuantiserReader {
  public:
    void read(VideoPicture* slot, const AVFrame* frame, AVCodecID codec);

  private:
    Grid<std::uint8_t> last_;
};
