// SPDX-License-Identifier: MIT
#include "gpu/spatial_sr.h"

#include "gpu/block_textures.h"
#include "gpu/spatial_sr_passes.h"
#include "gpu/work_texture.h"

namespace {

void first_estimate(const VideoPicture* cur, const VideoPicture* ref, int factor) {
    if (!serves_as_reference(ref) || factor == 1) {
        sr::estimate(cur->enhanced, cur->rgb);
        return;
    }
    const WorkTexture vectors(block_rows(*cur), block_columns(*cur), 0);
    upload_block_vectors(*cur, vectors);
    sr::compensated_estimate(cur->enhanced, cur->rgb,
                             {ref->enhanced, ref->rgb, vectors, block_size(*cur)}, factor);
}

}  // namespace

void spatial_sr(const VideoPicture* cur, const VideoPicture* ref, int factor) {
    if (factor == 1) {
        first_estimate(cur, ref, factor);
        return;
    }
    const int height = cur->height * factor;
    const int width = cur->width * factor;
    WorkTexture result(height, width, GL_RGBA);
    const WorkTexture difference(height, width, GL_RGBA);
    WorkTexture scratch(height, width, GL_RGBA);

    first_estimate(cur, ref, factor);
    sr::first_candidates(result, cur->enhanced);
    for (const sr::Displacement d : sr::displacements) {
        sr::differences(difference, cur->rgb, cur->enhanced, d, factor);
        sr::average_rows(scratch, difference);
        sr::average_columns(difference, scratch);
        sr::best_candidates(scratch, cur->enhanced, result, difference, d);
        swap(result, scratch);
    }
    sr::winners(cur->enhanced, result);
}
