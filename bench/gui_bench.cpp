// SPDX-License-Identifier: MIT
// What does a form cost in every frame, unchanged and while it changes? Asks for the time of the
// processor that issues the calls and, with `finished`, until the driver has drawn. Leaves out the
// swap of buffers and the forms' own contents beyond eleven rows of controls.
#include "core/settings.h"
#include "gpu/gl_context.h"
#include "gui/button_widget.h"
#include "gui/form_widget.h"
#include "gui/gl_font.h"
#include "gui/option_list_widget.h"
#include "gui/screen.h"
#include "gui/slider_widget.h"
#include "platform/window.h"

#include <GL/glew.h>
#include <SDL.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <initializer_list>
#include <string>

namespace {

constexpr int window_width = 800;
constexpr int window_height = 600;

/// As large as forms get: three sliders, eight option lists, eleven labels, two buttons.
class LargeForm : public FormWidget {
  public:
    LargeForm() {
        title = "Video settings";
        bounds = {-252.0F, -160.0F, 504.0F, 320.0F};
        add_slider(50, "Brightness:", master_settings.brightness);
        add_slider(80, "Contrast:", master_settings.contrast);
        add_slider(110, "Sharpness:", master_settings.sharpening_level);
        add_options(150, 140, 10, "Spatial upscaling:", master_settings.spatial_upscaling_factor,
                    {"OFF", "2x", "3x", "4x"});
        add_options(385, 140, 320, "Algo:", master_settings.upscaling_algorithm,
                    {"SR", "Denoising"});
        add_button({375, 170, 115, 24}, "Advanced");
        add_options(150, 170, 10, "Temporal upscaling:", master_settings.temporal_upscaling_factor,
                    {"OFF", "2x", "3x", "4x", "MAX"});
        add_options(150, 200, 10, "Spatial zoom:", master_settings.spatial_zoom,
                    {"FIT", "CROP", "1x", "2x", "4x"});
        add_options(150, 230, 10, "VSync:", master_settings.vsync, {"OFF", "ON", "ADAPTIVE"});
        add_options(415, 230, 320, "Status:", master_settings.status, {"OFF", "ON"});
        add_options(415, 260, 320, "Demo mode:", master_settings.demo_mode, {"OFF", "ON"});
        add_options(150, 260, 10, "Method:", master_settings.motion_interpolation_method,
                    {"Blending", "4nb", "8nb"});
        add_button({200, 290, 100, 24}, "Close");
    }

    SliderWidget* slider = nullptr;

  private:
    void add_slider(float y, const char* label, Value& value) {
        slider = new SliderWidget;
        slider->bounds = {150, y, 340, 24};
        slider->value = &value;
        add(slider);
        addLabel(10, y, 140, 24, label);
    }

    void add_options(float x, float y, float label_x, const char* label, Value& value,
                     std::initializer_list<const char*> texts) {
        auto* list = new OptionListWidget;
        list->bounds = {x, y, 150, 24};
        list->value = &value;
        for (const char* text : texts)
            list->add_option(text);
        add(list);
        addLabel(label_x, y, 140, 24, label);
    }

    void add_button(rectf where, const char* text) {
        auto* button = new ButtonWidget;
        button->bounds = where;
        button->text = text;
        add(button);
    }
};

LargeForm& form() {
    static const object_ref<LargeForm> the_form = [] {
        auto* made = new LargeForm;
        gui.add(made);
        return object_ref<LargeForm>(made);
    }();
    return *the_form;
}

void clear() {
    reshape_gl(window_width, window_height);
    glClear(GL_COLOR_BUFFER_BIT);
    glFinish();
}

/// Draws `gui` once per iteration; `changed` records the form anew each time.
void draw_form(benchmark::State& state, bool changed, bool finished) {
    form();
    clear();
    gui.draw();
    for (auto _ : state) {
        if (changed) form().invalidate();
        gui.draw();
        if (finished) glFinish();
    }
    state.counters["GL errors"] = glGetError() == GL_NO_ERROR ? 0 : 1;
}

void tick_form(benchmark::State& state) {
    form();
    for (auto _ : state)
        gui.tick(0.01);
}

void drag_slider(benchmark::State& state) {
    form();
    float x = 0;
    for (auto _ : state) {
        x = x > 300 ? 0 : x + 1;
        form().slider->mousemove({x, 5}, 1);
    }
}

bool open_window() {
    static char scaling_off[] = "SDL12COMPAT_OPENGL_SCALING=0";
    putenv(scaling_off);
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) != 0) return false;
    std::atexit(SDL_Quit);
    if (!set_video_mode(window_width, window_height) || !load_gl()) return false;
    init_gl_state();
    create_default_font();
    defaultStyle = new WidgetStyle;
    screenRectangle = {-400, -300, 800, 600};
    gui.bounds = {-400, -300, 800, 600};
    gui.offset = {400, 300};
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    if (!open_window()) return 1;
    const auto add = [](const char* name, bool changed, bool finished) {
        benchmark::RegisterBenchmark(name, draw_form, changed, finished)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    };
    add("replay", false, false);
    add("replay, finished", false, true);
    add("record", true, false);
    add("record, finished", true, true);
    benchmark::RegisterBenchmark("tick", tick_form);
    benchmark::RegisterBenchmark("drag a slider", drag_slider);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
