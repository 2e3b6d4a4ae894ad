// SPDX-License-Identifier: MIT
#pragma once

#include "enhance/film_reader.h"
#include "enhance/rgb_picture.h"

#include <memory>
#include <string>

/// Where the pictures of a result go. Failures throw `EnhanceError` with the name of the file.
class PictureSink {
  public:
    virtual ~PictureSink() = default;

    /// Takes the next picture, shown from `seconds` on. Times grow. A film takes one size only.
    virtual void write(const RgbPicture& picture, double seconds) = 0;

    /// Completes the result. Without it, no film comes to be.
    virtual void finish() = 0;
};

/// What a sink has to know of the film besides its pictures.
struct SinkFormat {
    double pictures_per_second = 25.0;
    AVRational sample_aspect{0, 1};
    /// How colours are stored, as in the film that was read.
    AVColorSpace colour_space = AVCOL_SPC_UNSPECIFIED;
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
};

/// A film whose container the name tells, or numbered PNG files (from 1) where the name is a
/// pattern. Nothing is written yet, but names that cannot work are refused.
std::unique_ptr<PictureSink> make_sink(const std::string& path, const SinkFormat& format);

/// Whether the name stands for numbered pictures: one "%d" or "%0Nd", and ".png" at the end.
bool is_picture_pattern(const std::string& path);

/// The name of picture `number`. A "%%" becomes "%".
std::string picture_name(const std::string& pattern, long number);
