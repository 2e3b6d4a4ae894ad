// SPDX-License-Identifier: MIT
#include "support/chain_fixture.h"

#include <cmath>

namespace {

std::vector<Value*> settings_of_the_chain() {
    Settings& s = master_settings;
    return {&s.brightness,          &s.contrast,
            &s.demo_mode,           &s.denoising_level,
            &s.sharpening_level,    &s.motion_interpolation_method,
            &s.show_original,       &s.spatial_upscaling_factor,
            &s.upscaling_algorithm, &s.temporal_upscaling_factor};
}

}  // namespace

void ChainTest::SetUp() {
    PassTest::SetUp();
    for (Value* value : settings_of_the_chain()) {
        kept_settings_.push_back(value->getValue());
        value->setValue(value->default_value());
    }
    set(master_settings.temporal_upscaling_factor, 0);
}

void ChainTest::TearDown() {
    std::size_t i = 0;
    for (Value* value : settings_of_the_chain())
        value->setValue(kept_settings_[i++]);
    for (VideoPicture& pic : slots_)
        delete_pixel_buffer(pic);
    PassTest::TearDown();
}

void ChainTest::queue(int slot, const Image& image, Vectors vectors) {
    const auto index = static_cast<std::size_t>(slot);
    VideoPicture& pic = slots_[index];
    images_[index] = image;
    pic.width = image.width();
    pic.height = image.height();
    pic.block_width = pic.block_height = 8;
    pic.grid_width = 2 * ((pic.width + 15) / 16);
    pic.grid_height = 2 * ((pic.height + 15) / 16);
    pic.quantization_table.allocate(pic.grid_height, pic.grid_width);
    pic.quantization_table.fill(10);
    if (vectors == Vectors::random) {
        pic.motion_vectors.allocate(pic.grid_height + 1, pic.grid_width + 1);
        for (int r = 0; r <= pic.grid_height; ++r) {
            for (int c = 0; c <= pic.grid_width; ++c)
                pic.motion_vectors[r][c] = {(r * 7 + c * 3) % 5 - 2, (r + c * 5) % 5 - 2};
        }
    } else {
        pic.motion_vectors.clear();
    }
    make_pixel_buffer(pic);
    pic.clear_flags();
    pic.pts = slot;
    pic.number = slot;
    fill_pixel_buffer(pic, *this, BufferForm::rgb);
    pic.ready = true;
}

Image ChainTest::show(int slot) {
    VideoPicture& cur = slots_[static_cast<std::size_t>(slot)];
    VideoPicture& prev =
        slots_[static_cast<std::size_t>((slot + picture_slots - 1) % picture_slots)];
    int shown_index = 0;
    const DisplayView view{.screen_width = window_width,
                           .screen_height = window_height,
                           .slots = slots_.data(),
                           .read_index = slot,
                           .queued = 1,
                           .shown_index = shown_index,
                           .paused = false,
                           .rewind = rewind_,
                           .fast_forward = fast_forward_,
                           .step = step_,
                           .pixel_buffers = true,
                           .show_motion_vectors = false,
                           .show_quantization = false,
                           .phase_step = phase_step_,
                           .phase_fraction = phase_fraction_,
                           .hook = hook_,
                           .playback_speed_index = 4,
                           .source = *this,
                           .staging = staging_,
                           .output = output_,
                           .shown = shown_,
                           .planes = planes_};
    prepare_picture(view, cur, prev, enhancement_factors(cur.width, cur.height));
    return download(shown_);
}

void ChainTest::fill_picture(const VideoPicture& pic, std::uint8_t* destination,
                             BufferForm /*form*/) {
    const Image& image = images_[static_cast<std::size_t>(&pic - slots_.data())];
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            for (const float value : {image.at(x, y).r, image.at(x, y).g, image.at(x, y).b})
                *destination++ = static_cast<std::uint8_t>(std::lround(value * 255.0F));
        }
    }
}
