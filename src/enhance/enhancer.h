// SPDX-License-Identifier: MIT
#pragma once

#include "enhance/colour_conversion.h"
#include "enhance/film_reader.h"
#include "enhance/options.h"
#include "enhance/rgb_picture.h"
#include "gpu/picture_upload.h"
#include "gpu/video_display.h"
#include "player/side_data.h"

#include <array>
#include <functional>

/// Runs pictures through the player's passes. Needs the context of
/// `make_headless_context`, and the settings for itself.
class Enhancer {
  public:
    /// Takes a picture of the result and when it is shown, in seconds.
    using Taker = std::function<void(const RgbPicture& picture, double seconds)>;

    Enhancer(const EnhanceOptions& options, AVCodecID codec, Taker taker);
    ~Enhancer();
    Enhancer(const Enhancer&) = delete;
    Enhancer& operator=(const Enhancer&) = delete;

    /// Takes the next picture. With a temporal factor T above 1 this gives the pictures at phases 0
    /// to T - 1 between the one before it and it; otherwise it gives the picture.
    void push(const TimedFrame& frame);

    /// Gives the last picture, where a temporal factor held it back.
    void finish();

    /// The spatial factor in use: the largest that textures can hold, up to the one asked for. 0
    /// before the first picture.
    int spatial_factor() const { return spatial_factor_; }

  private:
    class Source;
    enum class Neighbours { none, previous };

    void load(VideoPicture& pic, const TimedFrame& frame);
    void run_passes(VideoPicture& cur, VideoPicture& prev, int phase, Neighbours neighbours);
    void give(double seconds);

    AVCodecID codec_;
    int temporal_;
    Taker taker_;
    int spatial_factor_ = 0;
    std::array<VideoPicture, 2> pictures_;
    int current_ = 0;
    long count_ = 0;
    QuantiserReader quantisers_;
    std::unique_ptr<Source> source_;
    object_ref<gl_texture_resource> staging_;
    object_ref<gl_texture_resource> output_;
    object_ref<gl_texture_resource> shown_;
    DirectPlanes planes_;
    RgbPicture result_;
};
