// SPDX-License-Identifier: MIT
#include "gpu/display_effects.h"

#include "core/settings.h"
#include "gpu/gl_bindings.h"
#include "gpu/gl_shader.h"
#include "gpu/pass.h"
#include "gpu/work_texture.h"

#include <shaders/video_display.h>

#include <cmath>

namespace {

constexpr float seeking_noise = 9876.78F;

void draw_split(gl_texture_resource* out, gl_texture_resource* output,
                gl_texture_resource* original, bool show_original) {
    // A whole number of texels, so that the line exists for odd widths too.
    const int line = show_original ? output->width() : output->width() / 2;
    Pass(demo_split, out)
        .input("texOutput", output)
        .input("texOriginal", original)
        .set("halfWidth", static_cast<float>(line))
        .set("scale", static_cast<float>(original->width()) / static_cast<float>(output->width()))
        .run();
}

}  // namespace

ColourAdjustment colour_adjustment() {
    return {std::exp2(master_settings.contrast.getValue()), master_settings.brightness.getValue()};
}

void convert_yuv420p_to_rgb(gl_texture_resource* staging, gl_texture_resource* rgb) {
    const ColourAdjustment colour = colour_adjustment();
    gl_shader_resource* program = compile_shader(shader_YUV420p_to_RGB, true);
    set_rendertarget(0, rgb);
    set_texture(0, staging, GL_NEAREST);
    program->begin();
    program->setValue("texInput", 0);
    program->setValue("halfWidth", static_cast<float>(rgb->width()) * 0.5F);
    program->setValue("height", static_cast<float>(rgb->height()));
    program->setValue("c", colour.c);
    program->setValue("b", colour.b);
    program->run();
    program->end();
}

void brightness_contrast_enhancement(VideoPicture* pic) {
    if (pic->converted) return;
    if (master_settings.brightness.getValue() == 0.0F &&
        master_settings.contrast.getValue() == 0.0F)
        return;
    const ColourAdjustment colour = colour_adjustment();
    gl_shader_resource* program = compile_shader(brightness_contrast, true);
    set_rendertarget(0, pic->rgb);
    set_texture(0, pic->rgb, GL_NEAREST);
    program->begin();
    program->setValue("textureX", 0);
    program->setValue("c", colour.c);
    program->setValue("b", colour.b);
    program->run();
    program->end();
    pic->converted = true;
}

void show_demo_overlay(gl_texture_resource* output, gl_texture_resource* original,
                       bool show_original) {
    if (has_texture_barrier()) {
        texture_barrier();
        draw_split(output, output, original, show_original);
        return;
    }
    const WorkTexture split(output->height(), output->width(), output->internal_format());
    draw_split(split, output, original, show_original);
    copy_texture(split, output);
}

void begin_seeking_effect(int height, int screen_height, float time) {
    gl_shader_resource* program = compile_shader(vhs_seeking_effect_shader, true);
    program->begin();
    program->setValue("texIn", 0);
    program->setValue("scale", seeking_noise / static_cast<float>(height > 0 ? height : 1));
    program->setValue("time", time);
    program->setValue("h", static_cast<float>(screen_height));
}
