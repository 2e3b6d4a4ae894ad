// SPDX-License-Identifier: MIT
#pragma once

#include "core/settings.h"
#include "gpu/display_geometry.h"
#include "gpu/video_display.h"
#include "support/gl_fixture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

/// Pictures of one colour, told apart by their time stamps.
class MadeUpPictures : public PictureSource {
  public:
    void fill_picture(const VideoPicture& pic, std::uint8_t* destination,
                      BufferForm form) override {
        fills.push_back({pic.pts, form});
        const auto grey = static_cast<std::uint8_t>(pic.pts);
        if (form == BufferForm::halved) {
            for (int i = 0; i < pic.width / 2 * (pic.height / 2); ++i, destination += 4) {
                destination[0] = grey;
                destination[1] = destination[2] = 128;
                destination[3] = 0;
            }
        } else if (form != BufferForm::rgb) {
            const auto luma =
                static_cast<std::size_t>(pic.width) * static_cast<std::size_t>(pic.height);
            std::fill_n(destination, luma, grey);
            std::fill_n(destination + luma, luma / 2, std::uint8_t{128});
        } else {
            std::fill_n(destination, pic.width * 3 * pic.height, grey);
        }
    }
    double video_clock() override { return 12.5; }
    double master_clock() override { return 13.5; }

    struct Fill {
        double pts;
        BufferForm form;
    };
    std::vector<Fill> fills;
};

/// Redraws of the window with pictures that the test makes up.
class VideoDisplayTest : public GlTest {
  protected:
    static constexpr int width = 64;
    static constexpr int height = 48;

    void SetUp() override {
        GlTest::SetUp();
        reset_video_scaling_animation();
        // Ordinary playback: no interpolation, nothing enhanced.
        master_settings.temporal_upscaling_factor.setValue(0);
    }
    void TearDown() override {
        Settings& s = master_settings;
        for (Value* value : {&s.temporal_upscaling_factor, &s.spatial_zoom, &s.offload_decoding,
                             &s.demo_mode, &s.upscaling_algorithm, &s.spatial_upscaling_factor,
                             &s.brightness, &s.show_original}) {
            value->setValue(value->default_value());
        }
        for (VideoPicture& slot : slots_)
            delete_pixel_buffer(slot);
        GlTest::TearDown();
    }

    /// Puts a picture whose grey is `grey` into a slot.
    VideoPicture& queue(int slot, int grey, bool yuv = true) {
        VideoPicture& pic = slots_[static_cast<std::size_t>(slot)];
        if (!pic.pbo) {
            pic.width = width;
            pic.height = height;
            pic.block_width = pic.block_height = 8;
            pic.grid_width = 8;
            pic.grid_height = 6;
            make_pixel_buffer(pic);
        }
        pic.allocated = 1;
        pic.pts = grey;
        pic.number = slot;
        pic.yuv_direct = yuv;
        pic.clear_flags();
        pic.ready = true;
        return pic;
    }

    /// One redraw; what `display_picture` returns.
    bool display(int read_index, int queued) {
        const DisplayView view{.screen_width = window_width,
                               .screen_height = window_height,
                               .slots = slots_.data(),
                               .read_index = read_index,
                               .queued = queued,
                               .shown_index = shown_index_,
                               .paused = paused_,
                               .rewind = rewind_,
                               .fast_forward = fast_forward_,
                               .step = step_,
                               .pixel_buffers = pixel_buffers_,
                               .show_motion_vectors = show_vectors_,
                               .show_quantization = show_quantisers_,
                               .phase_step = 0,
                               .phase_fraction = phase_,
                               .hook = hook_,
                               .playback_speed_index = 4,
                               .source = source_,
                               .staging = staging_,
                               .output = output_,
                               .shown = shown_,
                               .planes = planes_};
        return display_picture(view);
    }

    /// Red of the window's middle, 0 to 255.
    int middle() {
        return static_cast<int>(
            std::lrint(window().at(window_width / 2, window_height / 2).r * 255));
    }

    /// What the conversion from YUV makes of a grey.
    static constexpr int converted(int grey) { return grey - 8; }

    std::array<VideoPicture, picture_slots> slots_;
    MadeUpPictures source_;
    object_ref<gl_texture_resource> staging_, output_, shown_;
    DirectPlanes planes_;
    int shown_index_ = -1;
    bool paused_ = false;
    bool rewind_ = false;
    bool fast_forward_ = false;
    bool pixel_buffers_ = true;
    bool step_ = false;
    bool show_vectors_ = false;
    bool show_quantisers_ = false;
    float phase_ = 0.0F;
    PostprocessingCallback hook_ = nullptr;
};
