// SPDX-License-Identifier: MIT
#include "gpu/temporal_upscaling.h"

#include "gpu/gl_bindings.h"
#include "gpu/gl_shader.h"

#include <shaders/temporal_upscaling.h>

void temporal_upscaling_off(gl_texture_resource* out, const VideoPicture* cur) {
    gl_shader_resource* program = compile_shader(code_frag_off, true);
    set_rendertarget(0, out);
    set_texture(0, cur->source(), GL_NEAREST);
    program->begin();
    program->setValue("texCP", 0);
    program->run();
    program->end();
}

// Until the pictures between two pictures are composed, the current one stands for them.

void temporal_upscaling_blend(gl_texture_resource* out, const VideoPicture* cur,
                              const VideoPicture* /*prev*/, int /*phase*/, int /*T*/) {
    temporal_upscaling_off(out, cur);
}

void temporal_upscaling_motioncompensated(gl_texture_resource* out, const VideoPicture* cur,
                                          const VideoPicture* /*prev*/, float /*phase*/,
                                          int /*T*/) {
    temporal_upscaling_off(out, cur);
}

void temporal_upscaling_motioncompensated_overlapping_blocks_4nb(gl_texture_resource* out,
                                                                 const VideoPicture* cur,
                                                                 const VideoPicture* /*prev*/,
                                                                 float /*phase*/, int /*T*/) {
    temporal_upscaling_off(out, cur);
}

void temporal_upscaling_motioncompensated_overlapping_blocks_8nb(gl_texture_resource* out,
                                                                 const VideoPicture* cur,
                                                                 const VideoPicture* /*prev*/,
                                                                 float /*phase*/, int /*T*/) {
    temporal_upscaling_off(out, cur);
}
