// SPDX-License-Identifier: MIT
#include "gpu/temporal_upscaling.h"

#include "gpu/block_textures.h"
#include "gpu/interpolation_windows.h"
#include "gpu/pass.h"

#include <shaders/temporal_upscaling.h>

#include <algorithm>

namespace {

paravec2<float> half(paravec2<float> size) {
    return {size.x * 0.5F, size.y * 0.5F};
}

// What the motion-compensated programs have in common.
Pass compensated_pass(const char* program, gl_texture_resource* out, const VideoPicture* cur,
                      const VideoPicture* prev, float phase, int T) {
    const auto end = static_cast<float>(T);
    const float factor =
        static_cast<float>(cur->source()->width()) / static_cast<float>(cur->width);
    Pass pass(program, out);
    pass.input("texLP", prev->source())
        .input("texCP", cur->source())
        .input("motionVect", cur->motion)
        .set("alpha", std::clamp(phase, 0.0F, end) / end)
        .set("constU", factor)
        .set("mb_size", block_size(*cur));
    return pass;
}

}  // namespace

void temporal_upscaling_off(gl_texture_resource* out, const VideoPicture* cur) {
    Pass(code_frag_off, out).input("texCP", cur->source()).run();
}

void temporal_upscaling_blend(gl_texture_resource* out, const VideoPicture* cur,
                              const VideoPicture* prev, int phase, int T) {
    Pass(code_frag_blend, out)
        .input("texLP", prev->source())
        .input("texCP", cur->source())
        .set("alpha", static_cast<float>(phase) / static_cast<float>(T))
        .run();
}

void temporal_upscaling_motioncompensated(gl_texture_resource* out, const VideoPicture* cur,
                                          const VideoPicture* prev, float phase, int T) {
    compensated_pass(code_frag_motioncompensated, out, cur, prev, phase, T).run();
}

void temporal_upscaling_motioncompensated_overlapping_blocks_4nb(gl_texture_resource* out,
                                                                 const VideoPicture* cur,
                                                                 const VideoPicture* prev,
                                                                 float phase, int T) {
    const WindowTable across = window_table(cur->block_width);
    const WindowTable down = window_table(cur->block_height);
    compensated_pass(code_frag_overlapping_blocks_4nb, out, cur, prev, phase, T)
        .set("mb_half_size", half(block_size(*cur)))
        .set_vectors4("window_h", across.front().data(), window_length)
        .set_vectors4("window_v", down.front().data(), window_length)
        .run();
}

void temporal_upscaling_motioncompensated_overlapping_blocks_8nb(gl_texture_resource* out,
                                                                 const VideoPicture* cur,
                                                                 const VideoPicture* prev,
                                                                 float phase, int T) {
    const auto across = three_columns(window_table(cur->block_width));
    const auto down = three_columns(window_table(cur->block_height));
    compensated_pass(code_frag_overlapping_blocks_8nb, out, cur, prev, phase, T)
        .set("mb_half_size", half(block_size(*cur)))
        .set_vectors3("window_h", across.data(), window_length)
        .set_vectors3("window_v", down.data(), window_length)
        .run();
}
