// SPDX-License-Identifier: MIT
#include "gpu/spatial_denoising.h"

#include "gpu/block_textures.h"
#include "gpu/drawing_pieces.h"
#include "gpu/pass.h"
#include "gpu/spatial_denoising_passes.h"
#include "gpu/spatial_sr_passes.h"
#include "gpu/work_texture.h"

#include <optional>

namespace {

constexpr float sharpening_reach = 2.5F;  // blend of the sharpened picture at level 1
constexpr float recursion_unit = 0.025F;  // difference per unit of the threshold's setting

void first_estimate(const VideoPicture* cur, const VideoPicture* ref, int f, float threshold) {
    if (!serves_as_reference(ref)) {
        sr::estimate(cur->enhanced, cur->rgb);
        return;
    }
    const WorkTexture vectors(block_rows(*cur), block_columns(*cur), 0);
    upload_block_vectors(*cur, vectors);
    denoising::recursive_estimate(cur->enhanced, cur->rgb,
                                  {ref->enhanced, vectors, block_size(*cur), threshold}, f);
}

// Replaces every texel of the picture's enhanced texture by the weighted mean of `source` around
// it.
void average(const VideoPicture* cur, gl_texture_resource* source, int f, float level) {
    const int height = cur->height * f;
    const int width = cur->width * f;
    WorkTexture sum(height, width, 0);
    const WorkTexture distances(height, width, 0);
    WorkTexture scratch(height, width, 0);
    const WorkTexture quantisers(block_rows(*cur), block_columns(*cur), 0);
    upload_block_quantisers(*cur, quantisers);
    const denoising::Steering steering{quantisers, block_size(*cur), denoising::fall_off(level, f)};

    denoising::start_sum(sum, source);
    for (const denoising::Displacement d : denoising::displacements) {
        denoising::distances(distances, cur->rgb, cur->enhanced, d, f);
        denoising::sum_rows(scratch, distances, f);
        denoising::weights(distances, scratch, steering, d, f);
        denoising::add_weighted(scratch, source, sum, distances, d);
        swap(sum, scratch);
    }
    denoising::weighted_mean(cur->enhanced, sum);
}

}  // namespace

void sharpening_filter(gl_texture_resource* in, gl_texture_resource* out, float level) {
    const float alpha = level * sharpening_reach;
    const WorkTexture rows(in->height(), in->width(), 0);
    denoising::sharpen_rows(rows, in);
    if (in == out && !has_texture_barrier()) {
        const WorkTexture sharpened(in->height(), in->width(), 0);
        denoising::sharpen_columns(sharpened, rows, in, alpha);
        copy_texture(sharpened, out);
        return;
    }
    if (in == out) texture_barrier();
    denoising::sharpen_columns(out, rows, in, alpha);
}

void spatial_deblocking_and_denoising(const VideoPicture* cur, const VideoPicture* ref, int f,
                                      float denoising_level, float sharpening_level,
                                      float recursive_threshold) {
    first_estimate(cur, ref, f, recursive_threshold * recursion_unit);
    std::optional<WorkTexture> sharpened;
    if (sharpening_level > 0.0F) {
        sharpened.emplace(cur->height * f, cur->width * f, 0);
        sharpening_filter(cur->enhanced, *sharpened, sharpening_level);
    }
    if (drawing_is_unwanted()) return;
    average(cur, sharpened ? *sharpened : static_cast<gl_texture_resource*>(cur->enhanced), f,
            denoising_level);
}
