// SPDX-License-Identifier: MIT
#pragma once

#include "core/settings.h"
#include "gpu/enhancement_chain.h"

#include "support/pass_test.h"

#include <array>
#include <vector>

/// A picture queue with pictures of images, and the redraw of a window that never is: what the
/// display gives the chain of passes. The settings that matter start from "nothing changes" and go
/// back to their values afterwards.
class ChainTest : public PassTest, protected PictureSource {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Puts the image into a slot as the next picture, with random vectors unless they are to be
    /// left out. The slot is ready, not uploaded.
    enum class Vectors { none, random };
    void queue(int slot, const Image& image, Vectors vectors = Vectors::random);

    /// One refresh of the picture in `slot`; the picture before it is the one in the slot before.
    /// Returns what the window would show.
    Image show(int slot);

    static void set(Value& value, double v) { value.setValue(static_cast<float>(v)); }

    std::array<VideoPicture, picture_slots> slots_;
    bool rewind_ = false;
    bool fast_forward_ = false;
    bool step_ = false;
    int phase_step_ = 0;
    float phase_fraction_ = 0.0F;
    PostprocessingCallback hook_ = nullptr;
    object_ref<gl_texture_resource> output_;
    object_ref<gl_texture_resource> shown_;

  private:
    void fill_picture(const VideoPicture& pic, std::uint8_t* destination, BufferForm form) override;
    double video_clock() override { return 12.5; }
    double master_clock() override { return 13.5; }

    std::array<Image, picture_slots> images_;
    std::vector<float> kept_settings_;
    object_ref<gl_texture_resource> staging_;
    DirectPlanes planes_;
};
