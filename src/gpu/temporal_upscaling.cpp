// SPDX-License-Identifier: MIT
#include "gpu/temporal_upscaling.h"

#include "gpu/block_textures.h"
#include "gpu/interpolation_windows.h"
#include "gpu/pass.h"

#include <shaders/direct_display.h>
#include <shaders/temporal_upscaling.h>

#include <algorithm>
#include <cmath>

namespace {

paravec2<float> half(paravec2<float> size) {
    return {size.x * 0.5F, size.y * 0.5F};
}

Pass& pictures(Pass& pass, const VideoPicture* cur, const VideoPicture* prev, int filter) {
    return pass.input("texLP", prev->source(), filter).input("texCP", cur->source(), filter);
}

// What the motion-compensated programs have in common.
Pass& compensation(Pass& pass, const VideoPicture* cur, const VideoPicture* prev, float phase,
                   int T, int filter = GL_NEAREST) {
    const auto end = static_cast<float>(T);
    const float factor =
        static_cast<float>(cur->source()->width()) / static_cast<float>(cur->width);
    return pictures(pass, cur, prev, filter)
        .input("motionVect", cur->motion)
        .set("alpha", std::clamp(phase, 0.0F, end) / end)
        .set("constU", factor)
        .set("mb_size", block_size(*cur));
}

Pass& four_windows(Pass& pass, const VideoPicture* cur) {
    const WindowTable across = window_table(cur->block_width);
    const WindowTable down = window_table(cur->block_height);
    return pass.set("mb_half_size", half(block_size(*cur)))
        .set_vectors4("window_h", across.front().data(), window_length)
        .set_vectors4("window_v", down.front().data(), window_length);
}

Pass& eight_windows(Pass& pass, const VideoPicture* cur) {
    const auto across = three_columns(window_table(cur->block_width));
    const auto down = three_columns(window_table(cur->block_height));
    return pass.set("mb_half_size", half(block_size(*cur)))
        .set_vectors3("window_h", across.data(), window_length)
        .set_vectors3("window_v", down.data(), window_length);
}

}  // namespace

void temporal_upscaling_off(gl_texture_resource* out, const VideoPicture* cur) {
    Pass(code_frag_off, out).input("texCP", cur->source()).run();
}

void temporal_upscaling_blend(gl_texture_resource* out, const VideoPicture* cur,
                              const VideoPicture* prev, int phase, int T) {
    Pass pass(code_frag_blend, out);
    pictures(pass, cur, prev, GL_NEAREST)
        .set("alpha", static_cast<float>(phase) / static_cast<float>(T))
        .run();
}

void temporal_upscaling_motioncompensated(gl_texture_resource* out, const VideoPicture* cur,
                                          const VideoPicture* prev, float phase, int T) {
    Pass pass(code_frag_motioncompensated, out);
    compensation(pass, cur, prev, phase, T).run();
}

void temporal_upscaling_motioncompensated_overlapping_blocks_4nb(gl_texture_resource* out,
                                                                 const VideoPicture* cur,
                                                                 const VideoPicture* prev,
                                                                 float phase, int T) {
    Pass pass(code_frag_overlapping_blocks_4nb, out);
    compensation(pass, cur, prev, phase, T);
    four_windows(pass, cur).run();
}

void temporal_upscaling_motioncompensated_overlapping_blocks_8nb(gl_texture_resource* out,
                                                                 const VideoPicture* cur,
                                                                 const VideoPicture* prev,
                                                                 float phase, int T) {
    Pass pass(code_frag_overlapping_blocks_8nb, out);
    compensation(pass, cur, prev, phase, T);
    eight_windows(pass, cur).run();
}

void draw_interpolated(const DirectInterpolation& picture, int width, int height) {
    const auto& [method, cur, prev, phase, T] = picture;
    if (method == method_4_neighbours) {
        Pass pass(direct_overlapping_blocks_4nb);
        compensation(pass, cur, prev, phase, T, GL_LINEAR);
        four_windows(pass, cur).draw(width, height);
    } else if (method == method_8_neighbours) {
        Pass pass(direct_overlapping_blocks_8nb);
        compensation(pass, cur, prev, phase, T, GL_LINEAR);
        eight_windows(pass, cur).draw(width, height);
    } else {
        Pass pass(direct_blend);
        pictures(pass, cur, prev, GL_LINEAR)
            .set("alpha", std::floor(phase) / static_cast<float>(T))
            .draw(width, height);
    }
}
