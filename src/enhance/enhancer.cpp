// SPDX-License-Identifier: MIT
#include "enhance/enhancer.h"

#include "core/settings.h"
#include "enhance/enhance_error.h"
#include "gpu/enhancement_chain.h"
#include "gpu/gl_bindings.h"
#include "player/side_data.h"

namespace {

void apply(const EnhanceOptions& options) {
    Settings& s = master_settings;
    s.spatial_upscaling_factor.setValue(static_cast<float>(options.spatial - 1));
    s.temporal_upscaling_factor.setValue(static_cast<float>(options.temporal - 1));
    s.upscaling_algorithm.setValue(static_cast<float>(options.algorithm));
    s.motion_interpolation_method.setValue(static_cast<float>(options.method));
    s.denoising_level.setValue(options.denoising_level);
    s.sharpening_level.setValue(options.sharpening_level);
    s.demo_mode.setValue(options.demo ? 1.0F : 0.0F);
}

}  // namespace

// What the passes ask about the picture being loaded. There are no clocks.
class Enhancer::Source : public PictureSource {
  public:
    void fill_picture(const VideoPicture& pic, std::uint8_t* destination,
                      BufferForm /*form*/) override {
        colours_.to_rgb(*frame, destination, pic.width * 3);
    }
    double video_clock() override { return 0.0; }
    double master_clock() override { return 0.0; }

    const AVFrame* frame = nullptr;

  private:
    ColourConversion colours_;
};

Enhancer::Enhancer(const EnhanceOptions& options, AVCodecID codec, Taker taker)
    : codec_(codec),
      temporal_(options.temporal),
      taker_(std::move(taker)),
      source_(std::make_unique<Source>()) {
    apply(options);
}

Enhancer::~Enhancer() {
    for (VideoPicture& pic : pictures_)
        delete_pixel_buffer(pic);
}

void Enhancer::load(VideoPicture& pic, const TimedFrame& frame) {
    const bool same_size = pic.width == frame.frame->width && pic.height == frame.frame->height;
    pic.width = frame.frame->width;
    pic.height = frame.frame->height;
    if (pic.width > max_texture_size || pic.height > max_texture_size) {
        throw EnhanceError("pictures of " + std::to_string(pic.width) + " x " +
                           std::to_string(pic.height) + " are larger than OpenGL takes here");
    }
    pic.pts = frame.seconds;
    pic.number = count_;
    if (!pic.pbo || !same_size) make_pixel_buffer(pic);
    read_motion_vectors(&pic, frame.frame.get(), codec_);
    quantisers_.read(&pic, frame.frame.get(), codec_);
    pic.clear_flags();
    source_->frame = frame.frame.get();
    fill_pixel_buffer(pic, *source_, BufferForm::rgb);
}

void Enhancer::push(const TimedFrame& frame) {
    current_ = 1 - current_;
    VideoPicture& cur = pictures_[static_cast<std::size_t>(current_)];
    VideoPicture& prev = pictures_[static_cast<std::size_t>(1 - current_)];
    load(cur, frame);
    ++count_;
    if (temporal_ == 1) {
        run_passes(cur, prev, 0, Neighbours::previous);
        give(cur.pts);
    } else if (count_ == 1) {
        // Brought through the passes now, so that it serves as a reference; shown with the next
        // one.
        run_passes(cur, prev, 0, Neighbours::none);
    } else {
        const double step = (cur.pts - prev.pts) / temporal_;
        for (int phase = 0; phase < temporal_; ++phase) {
            run_passes(cur, prev, phase, Neighbours::previous);
            give(prev.pts + step * phase);
        }
    }
}

void Enhancer::finish() {
    if (temporal_ == 1 || count_ == 0) return;
    VideoPicture& cur = pictures_[static_cast<std::size_t>(current_)];
    run_passes(cur, pictures_[static_cast<std::size_t>(1 - current_)], temporal_, Neighbours::none);
    give(cur.pts);
}

// Leaves the picture at `phase` between the two, or the current one by itself, in `shown_`.
void Enhancer::run_passes(VideoPicture& cur, VideoPicture& prev, int phase, Neighbours neighbours) {
    const EnhancementFactors factors = enhancement_factors(cur.width, cur.height);
    spatial_factor_ = factors.spatial;
    int shown_index = 0;
    bool step = neighbours == Neighbours::none;
    float fraction = 0.0F;
    const DisplayView view{.screen_width = cur.width,
                           .screen_height = cur.height,
                           .slots = pictures_.data(),
                           .read_index = current_,
                           .queued = 1,
                           .shown_index = shown_index,
                           .paused = false,
                           .rewind = false,
                           .fast_forward = false,
                           .step = step,
                           .pixel_buffers = true,
                           .show_motion_vectors = false,
                           .show_quantization = false,
                           .phase_step = phase,
                           .phase_fraction = fraction,
                           .hook = nullptr,
                           .playback_speed_index = 0,
                           .source = *source_,
                           .staging = staging_,
                           .output = output_,
                           .shown = shown_,
                           .planes = planes_};
    prepare_picture(view, cur, prev, factors);
}

// Hands on what is in `shown_`.
void Enhancer::give(double seconds) {
    gl_texture_resource* texture = shown_;
    result_.width = texture->width();
    result_.height = texture->height();
    result_.bytes.resize(result_.row_bytes() * static_cast<std::size_t>(result_.height));
    set_rendertarget(0, texture);
    glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, result_.width, result_.height, GL_RGB, GL_UNSIGNED_BYTE,
                 result_.bytes.data());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    set_rendertarget(0, nullptr);
    taker_(result_, seconds);
}
