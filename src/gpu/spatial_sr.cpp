// SPDX-License-Identifier: MIT
#include "gpu/spatial_sr.h"

#include "gpu/gl_bindings.h"
#include "gpu/gl_shader.h"
#include "gpu/spatial_denoising.h"

#include <shaders/spatial_sr.h>

void spatial_sr(const VideoPicture* cur, const VideoPicture* /*ref*/, int /*factor*/) {
    gl_shader_resource* program = compile_shader(code_frag_Ia, true);
    set_rendertarget(0, cur->enhanced);
    set_texture(0, cur->rgb, GL_LINEAR);
    program->begin();
    program->setValue("texLowRes", 0);
    program->run();
    program->end();
}

void spatial_deblocking_and_denoising(const VideoPicture* cur, const VideoPicture* ref, int f,
                                      float /*denoising_level*/, float /*sharpening_level*/,
                                      float /*recursive_threshold*/) {
    spatial_sr(cur, ref, f);
}

void sharpening_filter(gl_texture_resource* /*in*/, gl_texture_resource* /*out*/, float /*level*/) {
}
