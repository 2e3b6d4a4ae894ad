// SPDX-License-Identifier: MIT
// What the forms cost: drawing one anew after a change, and drawing it again from its list.
//
//     bench_forms
//
// In a window of 800x600. "Call" is the processor time that the main thread spends in the drawing
// calls; "drawn" is the time until the picture is there. Medians of several hundred rounds. What it
// leaves out: the picture below, and the swap of buffers.

#include "gpu/gl_context.h"
#include "gui/gl_font.h"
#include "measure.h"
#include "platform/window.h"

#include "gui/forms_rig.h"

#include <GL/glew.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int rounds = 400;

struct Cost {
    double call;
    double drawn;
};

template <class Prepare, class Draw>
Cost measure(Prepare prepare, Draw draw) {
    std::vector<double> call;
    std::vector<double> drawn;
    for (int i = 0; i < rounds; ++i) {
        glClear(GL_COLOR_BUFFER_BIT);
        glFinish();
        prepare();
        const auto start = Clock::now();
        const double before = thread_ms();
        draw();
        call.push_back(thread_ms() - before);
        glFinish();
        drawn.push_back(ms_since(start));
    }
    return {median(call), median(drawn)};
}

// What the driver takes for as many primitives as the largest form has, where nothing changes
// between them: three batches in a list. No way of drawing the form is cheaper.
Cost measure_floor() {
    constexpr int shapes = 52;
    constexpr int letters = 250;
    constexpr int corners = 20;
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glEnable(GL_BLEND);
    glColor4f(0.5F, 0.5F, 0.5F, 0.5F);
    const auto point = [](int shape, int corner) {
        const float x = static_cast<float>(150 + shape % 4 * 100);
        const float y = static_cast<float>(150 + shape / 4 * 20);
        glVertex2f(x + static_cast<float>(corner < 5 || corner > 14 ? 60 - corner % 5 : corner % 5),
                   y + static_cast<float>(corner < 10 ? 18 - corner % 5 : corner % 5));
    };
    glBegin(GL_TRIANGLES);
    for (int shape = 0; shape < shapes; ++shape) {
        for (int corner = 2; corner < corners; ++corner) {
            for (const int c : {0, corner - 1, corner})
                point(shape, c);
        }
    }
    glEnd();
    glBegin(GL_LINES);
    for (int shape = 0; shape < shapes; ++shape) {
        for (int corner = 0; corner < corners; ++corner) {
            point(shape, corner);
            point(shape, (corner + 1) % corners);
        }
    }
    glEnd();
    default_font.Begin();
    default_font.DrawString(std::string(letters / 5, 'n'), 0.5F, 150.0F, 400.0F);
    for (int row = 1; row < 5; ++row)
        default_font.DrawString(std::string(letters / 5, 'n'), 0.5F, 150.0F,
                                400.0F - 20.0F * static_cast<float>(row));
    default_font.End();
    glEndList();
    const Cost cost = measure([] {}, [list] { glCallList(list); });
    glDeleteLists(list, 1);
    return cost;
}

void report(FormsRig& rig, FormWidget& form) {
    for (const object_ref<WidgetBase>& child : gui.children)
        child->visible = false;
    rig.open(form);
    const auto draw = GuiWorld::draw;
    const Cost recorded = measure([&form] { form.invalidate(); }, draw);
    const Cost replayed = measure([] {}, draw);
    std::printf("%-20s %9.3f %9.3f %9.3f %9.3f\n", form.title.c_str(), recorded.call,
                recorded.drawn, replayed.call, replayed.drawn);
}

}  // namespace

int main() {
    if (SDL_Init(SDL_INIT_VIDEO) != 0 || !set_video_mode(800, 600) || !load_gl()) {
        std::fprintf(stderr, "No window: %s\n", SDL_GetError());
        return 1;
    }
    init_gl_state();
    reshape_gl(800, 600);
    create_default_font();
    {
        FormsRig rig;
        rig.player.duration_ = 100;
        std::printf("%-20s %19s %19s\n", "", "anew, ms", "again, ms");
        std::printf("%-20s %9s %9s %9s %9s\n", "form", "call", "drawn", "call", "drawn");
        report(rig, *formVideoSettings);
        report(rig, *formAudioSettings);
        report(rig, *formVideoAdvancedSettings);
        rig.mouse = FormsRig::place(*formTransportBar->position);
        report(rig, *formTransportBar);
        report(rig, *formMenu);
        const Cost least = measure_floor();
        std::printf("%-40s %9.3f %9.3f\n", "as many primitives in three batches", least.call,
                    least.drawn);
    }
    SDL_Quit();
    return 0;
}
