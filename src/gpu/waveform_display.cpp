// SPDX-License-Identifier: MIT
#include "gpu/waveform_display.h"

#include "gpu/display_effects.h"
#include "gpu/display_geometry.h"
#include "gpu/gl_bindings.h"
#include "gpu/pass.h"
#include "gpu/texture_cache.h"
#include "gpu/work_texture.h"

#include <GL/glu.h>
#include <shaders/overlays.h>

#include <algorithm>

namespace {

constexpr float trail_gain = 0.75F;
constexpr double aspect = 1.3333334F;
constexpr int margin_above = 5;

void run_trail(gl_texture_resource* from, gl_texture_resource* to) {
    Pass(waveform_trail, to).input("texOutput", from).set("gain", trail_gain).run();
}

// Makes the picture the target of what is drawn next, in texels.
void enter_picture(gl_texture_resource* tex) {
    set_rendertarget(0, tex);
    glDrawBuffer(GL_COLOR_ATTACHMENT0_EXT);
    glViewport(0, 0, waveform_width, waveform_height);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, waveform_width, 0, waveform_height);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glPushAttrib(GL_HINT_BIT);
    glHint(GL_LINE_SMOOTH_HINT, GL_NICEST);
    glEnable(GL_LINE_SMOOTH);
}

void leave_picture() {
    glDisable(GL_LINE_SMOOTH);
    glPopAttrib();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    set_rendertarget(0, nullptr);
}

void draw_waveform(const Waveform& waveform) {
    glColor4f(0.0F, 0.5F, 1.0F, 1.0F);
    glBegin(GL_LINES);
    for (int x = 0; x < waveform_width; ++x) {
        const float half = waveform[static_cast<std::size_t>(x)] / 2.0F;
        glVertex2f(static_cast<float>(x), 1.0F - half);
        glVertex2f(static_cast<float>(x), 1.0F + half);
    }
    glEnd();
}

void corner(const gl_texture_resource& tex, int x, int y) {
    const bool texels = tex.target() != GL_TEXTURE_2D;
    glTexCoord2i(texels ? x * waveform_width : x, texels ? y * waveform_height : y);
    glVertex2i(x * waveform_width, y * waveform_height);
}

}  // namespace

SDL_Rect waveform_rectangle(int zoom, int factor, int screen_width, int screen_height) {
    const int base = screen_height * 7 / 8;
    SDL_Rect r{0, 0, 0, 0};
    if (zoom <= 1) {
        r = fit_rectangle(aspect, screen_width, base);
    } else {
        const int times = (zoom == 2 ? 1 : zoom == 3 ? 2 : 4) * factor;
        r.w = static_cast<Uint16>(waveform_width * times);
        r.h = static_cast<Uint16>(waveform_height * times);
    }
    r.x = static_cast<Sint16>((screen_width - r.w) / 2);
    r.y = static_cast<Sint16>((base - r.h) / 2 + margin_above);
    return r;
}

void alloc_waveforms(object_ref<gl_texture_resource>& tex) {
    if (!alloc_texture(tex, waveform_height, waveform_width, 0)) return;
    set_rendertarget(0, tex);
    glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    set_rendertarget(0, nullptr);
}

void fade_waveforms(gl_texture_resource* tex) {
    if (has_texture_barrier()) {
        texture_barrier();
        run_trail(tex, tex);
        return;
    }
    const WorkTexture faded(waveform_height, waveform_width, tex->internal_format());
    run_trail(tex, faded);
    copy_texture(faded, tex);
}

void draw_waveforms(gl_texture_resource* tex, std::span<const Waveform> channels) {
    if (channels.empty()) return;
    enter_picture(tex);
    glScalef(1.0F, waveform_height / 2.0F / static_cast<float>(channels.size()), 1.0F);
    for (const Waveform& waveform : channels) {
        draw_waveform(waveform);
        glTranslatef(0.0F, 2.0F, 0.0F);
    }
    leave_picture();
}

void show_waveforms(gl_texture_resource* tex, bool seeking, int height, int screen_height,
                    float time) {
    set_texture(0, tex, GL_NEAREST);
    glEnable(tex->target());
    if (seeking) begin_seeking_effect(height, screen_height, time);
    glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
    glBegin(GL_QUADS);
    corner(*tex, 0, 0);
    corner(*tex, 1, 0);
    corner(*tex, 1, 1);
    corner(*tex, 0, 1);
    glEnd();
    glUseProgram(0);
    unbind_textures();
    glDisable(tex->target());
}
