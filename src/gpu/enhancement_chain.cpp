// SPDX-License-Identifier: MIT
#include "gpu/enhancement_chain.h"

#include "core/settings.h"
#include "gpu/display_effects.h"
#include "gpu/spatial_denoising.h"
#include "gpu/spatial_sr.h"
#include "gpu/temporal_upscaling.h"
#include "gpu/work_texture.h"

#include <algorithm>
#include <memory>

namespace {

bool same_size(const gl_texture_resource* a, const gl_texture_resource* b) {
    return a && b && a->width() == b->width() && a->height() == b->height();
}

void spatial_pass(const VideoPicture* cur, const VideoPicture* ref) {
    // The factor of the texture at hand: the setting may have changed since it was made.
    const int factor = cur->enhanced->width() / cur->width;
    if (master_settings.upscaling_algorithm.toInt() == 0) {
        spatial_sr(cur, ref, factor);
        return;
    }
    spatial_deblocking_and_denoising(cur, ref, factor, master_settings.denoising_level.getValue(),
                                     master_settings.sharpening_level.getValue(),
                                     master_settings.recursive_filtering_threshold.getValue());
}

void enhance(const DisplayView& view, VideoPicture& cur, VideoPicture& prev,
             const EnhancementFactors& factors) {
    // A previous picture that was shown without the filter is made up for: it serves as reference
    // and as the other end of the interpolation. One that was never shown is not: its textures
    // hold an older picture.
    if (prev.rgb && prev.uploaded && prev.enhanced && !prev.is_enhanced) {
        spatial_pass(&prev, nullptr);
        postprocessing_filter(view, prev, factors);
        prev.is_enhanced = true;
    }
    if (cur.is_enhanced) return;
    const VideoPicture* reference = same_size(prev.enhanced, cur.enhanced) ? &prev : nullptr;
    spatial_pass(&cur, reference);
    postprocessing_filter(view, cur, factors);
    cur.is_enhanced = true;
}

// The texture that the sharpening will work in, taken while the spatial filter works in its own: at
// the first texture it lacks the cache drops all it has, so it comes to hold those of both only
// when both are taken at once.
std::unique_ptr<WorkTexture> reserve_for_sharpening(const VideoPicture& cur, float level) {
    if (level <= 0.0F || cur.is_enhanced) return nullptr;
    return std::make_unique<WorkTexture>(cur.enhanced->height(), cur.enhanced->width(), 0);
}

// The method for this refresh; `method_off` where the two pictures cannot be interpolated.
int interpolation_method(const DisplayView& view, const VideoPicture& cur, const VideoPicture& prev,
                         int temporal_factor) {
    const bool possible = prev.rgb && prev.uploaded && cur.rgb &&
                          same_size(prev.enhanced, cur.enhanced) &&
                          same_size(prev.source(), cur.source()) && temporal_factor >= 2 &&
                          !view.rewind && !view.fast_forward;
    if (!possible) return method_off;
    const bool vectors = !prev.motion_vectors.empty() && !cur.motion_vectors.empty();
    return vectors ? master_settings.motion_interpolation_method.toInt() : method_blend;
}

void interpolate(int method, gl_texture_resource* out, const VideoPicture& cur,
                 const VideoPicture& prev, float phase, int T) {
    switch (method) {
        case method_4_neighbours:
            temporal_upscaling_motioncompensated_overlapping_blocks_4nb(out, &cur, &prev, phase, T);
            break;
        case method_8_neighbours:
            temporal_upscaling_motioncompensated_overlapping_blocks_8nb(out, &cur, &prev, phase, T);
            break;
        case method_blend:
            temporal_upscaling_blend(out, &cur, &prev, static_cast<int>(phase), T);
            break;
        default:
            temporal_upscaling_off(out, &cur);
    }
}

}  // namespace

EnhancementFactors enhancement_factors(int width, int height) {
    int spatial = master_settings.spatial_upscaling_factor.toInt() + 1;
    while (spatial > 1 && std::max(width, height) * spatial > max_texture_size)
        --spatial;
    return {spatial, master_settings.temporal_upscaling_factor.toInt() + 1};
}

void postprocessing_filter(const DisplayView& view, VideoPicture& pic,
                           const EnhancementFactors& factors) {
    if (!view.hook) return;
    const gl_texture_resource& texture = *pic.enhanced;
    const float phase = static_cast<float>(view.phase_step) + view.phase_fraction;
    PostprocessingInfo info{sizeof(PostprocessingInfo),
                            texture.name(),
                            texture.target(),
                            static_cast<std::uint32_t>(texture.internal_format()),
                            texture.pixel_format(),
                            pic.width,
                            pic.height,
                            factors.spatial,
                            factors.temporal,
                            pic.block_width,
                            pic.block_height,
                            view.playback_speed_index,
                            pic.pts,
                            static_cast<double>(phase) / factors.temporal,
                            view.source.video_clock(),
                            view.source.master_clock()};
    view.hook(&info);
}

void prepare_picture(const DisplayView& view, VideoPicture& cur, VideoPicture& prev,
                     const EnhancementFactors& factors) {
    if (!cur.uploaded) {
        upload_picture(cur, {view.pixel_buffers, factors.spatial, view.staging});
    }
    const int algorithm = master_settings.upscaling_algorithm.toInt();
    const float sharpening = algorithm == 1 ? 0.0F : master_settings.sharpening_level.getValue();
    if (factors.spatial > 1 || algorithm > 0 || view.hook) {
        const auto scratch = reserve_for_sharpening(cur, sharpening);
        enhance(view, cur, prev, factors);
    }

    int method = interpolation_method(view, cur, prev, factors.temporal);
    if (view.step) {
        method = method_off;
        view.step = false;
        view.phase_fraction = 1.0F;
    }
    const bool show_original = master_settings.show_original.toBool();
    const bool split = show_original || master_settings.demo_mode.toBool();
    if (method == method_off && sharpening <= 0.0F && !split) {
        // Nothing changes the picture, so a copy of it would show nothing else.
        view.shown = cur.source();
        return;
    }
    alloc_texture(view.output, cur.height * factors.spatial, cur.width * factors.spatial, 0);
    interpolate(method, view.output, cur, prev,
                static_cast<float>(view.phase_step) + view.phase_fraction, factors.temporal);
    if (sharpening > 0.0F) sharpening_filter(view.output, view.output, sharpening);
    if (split) show_demo_overlay(view.output, cur.rgb, show_original);
    view.shown = view.output;
}
