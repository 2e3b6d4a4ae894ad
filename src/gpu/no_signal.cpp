// SPDX-License-Identifier: MIT
#include "gpu/no_signal.h"

#include "gpu/gl_shader.h"

#include <shaders/overlays.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr float noise_scale = 9876.78F;
constexpr double band_speed = 50.0;       // pixels per second
constexpr double shortest_period = 60.0;  // seconds

void corner(int x, int y) {
    glTexCoord2i(x, y);
    glVertex2i(x, y);
}

}  // namespace

SDL_Rect no_signal_rectangle(int screen_width, int screen_height) {
    const int y = screen_height / 6;
    return {0, static_cast<Sint16>(y), static_cast<Uint16>(screen_width),
            static_cast<Uint16>(screen_height - 2 * y)};
}

float no_signal_time(Uint32 ms, int screen_height) {
    const double roll = std::max(screen_height, 1) / band_speed;
    const double period = std::ceil(shortest_period / roll) * roll;
    return static_cast<float>(std::fmod(ms * 0.001, period));
}

void draw_no_signal(const SDL_Rect& r, int screen_height, float time) {
    gl_shader_resource* program = compile_shader(no_signal, true);
    program->begin();
    program->setValue("scale", noise_scale / static_cast<float>(std::max<int>(r.h, 1)));
    program->setValue("h", static_cast<float>(screen_height));
    program->setValue("time", time);
    glColor4f(0.0F, 0.0F, 1.0F, 1.0F);
    glBegin(GL_QUADS);
    corner(0, r.y);
    corner(r.x + r.w, r.y);
    corner(r.x + r.w, r.y + r.h);
    corner(0, r.y + r.h);
    glEnd();
    program->end();
}
