// SPDX-License-Identifier: MIT
#include "gpu/enhancement_chain.h"

#include "core/settings.h"
#include "gpu/display_effects.h"
#include "gpu/drawing_pieces.h"
#include "gpu/spatial_denoising.h"
#include "gpu/spatial_sr.h"
#include "gpu/work_texture.h"

#include <algorithm>
#include <memory>

namespace {

// Position between the previous picture and the current one, 0 to the temporal factor.
float phase_of(const DisplayView& view) {
    return static_cast<float>(view.phase_step) + view.phase_fraction;
}

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

// Brings one picture through the spatial filter, unless that is done already.
void enhance_picture(const DisplayView& view, VideoPicture& pic, const VideoPicture* reference,
                     const EnhancementFactors& factors) {
    if (pic.is_enhanced || drawing_is_unwanted()) return;
    if (reference && !same_size(reference->enhanced, pic.enhanced)) reference = nullptr;
    spatial_pass(&pic, reference);
    postprocessing_filter(view, pic, factors);
    pic.is_enhanced = true;
}

void make_room(VideoPicture& pic, const EnhancementFactors& factors) {
    const int f = factors.spatial;
    if (alloc_texture(pic.enhanced, pic.height * f, pic.width * f, 0)) pic.is_enhanced = false;
}

// Whether the previous slot holds the picture before this one, in its texture. A slot whose picture
// was never shown holds an older one there.
bool has_previous(const VideoPicture& cur, const VideoPicture& prev) {
    return cur.follows(prev) && prev.rgb && prev.uploaded;
}

// A previous picture that was shown without the filter is made up for: it serves as reference and
// as the other end of the interpolation.
void enhance(const DisplayView& view, VideoPicture& cur, VideoPicture& prev,
             const EnhancementFactors& factors) {
    const bool both = has_previous(cur, prev);
    if (both && !prev.is_enhanced) {
        make_room(prev, factors);
        enhance_picture(view, prev, nullptr, factors);
    }
    enhance_picture(view, cur, both ? &prev : nullptr, factors);
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
    const bool possible = has_previous(cur, prev) && cur.rgb &&
                          same_size(prev.source(), cur.source()) && temporal_factor >= 2 &&
                          !view.rewind && !view.fast_forward;
    // At the last phase every method gives the current picture itself.
    if (!possible || phase_of(view) >= static_cast<float>(temporal_factor)) return method_off;
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
                            static_cast<double>(phase_of(view)) / factors.temporal,
                            view.source.video_clock(),
                            view.source.master_clock()};
    view.hook(&info);
}

void prepare_picture(const DisplayView& view, VideoPicture& cur, VideoPicture& prev,
                     const EnhancementFactors& factors, DirectInterpolation* direct) {
    const int algorithm = master_settings.upscaling_algorithm.toInt();
    const bool enhanced = factors.spatial > 1 || algorithm > 0 || view.hook;
    if (!cur.uploaded) upload_picture(cur, {view.pixel_buffers, enhanced, view.staging});
    const float sharpening = algorithm == 1 ? 0.0F : master_settings.sharpening_level.getValue();
    if (enhanced) {
        make_room(cur, factors);
        const auto scratch = reserve_for_sharpening(cur, sharpening);
        enhance(view, cur, prev, factors);
    }

    if (drawing_is_unwanted()) return;
    int method = interpolation_method(view, cur, prev, factors.temporal);
    if (view.step) {
        method = method_off;
        view.step = false;
        view.phase_fraction = 1.0F;
    }
    const bool show_original = master_settings.show_original.toBool();
    const bool split = show_original || master_settings.demo_mode.toBool();
    if (sharpening <= 0.0F && !split && (method == method_off || direct)) {
        // Nothing changes the picture any more, so a copy of it would show nothing else.
        view.shown = cur.source();
        if (direct) *direct = {method, &cur, &prev, phase_of(view), factors.temporal};
        return;
    }
    alloc_texture(view.output, cur.height * factors.spatial, cur.width * factors.spatial, 0);
    interpolate(method, view.output, cur, prev, phase_of(view), factors.temporal);
    if (sharpening > 0.0F) sharpening_filter(view.output, view.output, sharpening);
    if (split) show_demo_overlay(view.output, cur.rgb, show_original);
    view.shown = view.output;
}
