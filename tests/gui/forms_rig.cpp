// SPDX-License-Identifier: MIT
#include "gui/forms_rig.h"

#include "gui/gl_font.h"
#include "gui/screen.h"
#include "gui/text_label_widget.h"
#include "gui/widget_style.h"
#include "platform/resources.h"

#include <GL/glew.h>

#include <algorithm>

double FormsRig::time = 0.0;
pointf FormsRig::mouse;
unsigned FormsRig::buttons = 0;
bool FormsRig::cursor_visible = true;

namespace {

constexpr double refresh_seconds = 0.01;

bool player_covers_screen() {
    return player_control && player_control->is_fullscreen();
}

// The size of every text; without a texture nothing is drawn.
void load_font() {
    if (default_font.find('A')) return;
    const unsigned char* data = nullptr;
    int size = 0;
    load_resource("GLF", "DEFAULT", &data, &size);
    default_font.Create(reinterpret_cast<const char*>(data), size, 0);
}

// A virtual screen of 800 x 600 around the origin, as large as the window lets it be.
void lay_out_gui(float w, float h) {
    const float s = std::min(h / 600.0F, w / 800.0F);
    gui.bounds = {-w / 2.0F, -h / 2.0F, w, h};
    gui.scale = {s, s};
    gui.offset = {w * 0.5F * s, h * 0.5F * s};
    screenRectangle = {-w / 2.0F / s, -h / 2.0F / s, w / s, h / s};
}

}  // namespace

bool FakePlayer::picture_size(int* w, int* h) const {
    if (width == 0) return false;
    *w = width;
    *h = height;
    return true;
}

void FakePlayer::toggle_pause() {
    calls.emplace_back("pause");
    paused = !paused;
    rewinding = fast_forwarding = false;
}

void FakePlayer::rewind() {
    calls.emplace_back("rewind");
    paused = rewinding = true;
}

void FakePlayer::fast_forward() {
    calls.emplace_back("fast forward");
    paused = fast_forwarding = true;
}

void FakePlayer::set_fullscreen(bool on) {
    note("fullscreen", on);
    fullscreen = on;
}

std::vector<std::string> FakePlayer::take_calls() {
    std::vector<std::string> taken;
    taken.swap(calls);
    return taken;
}

FakeChooser::FakeChooser() {
    title = "Files";
    bounds = {-400, -300, 800, 600};
    visible = false;
}

std::vector<Value*> all_settings() {
    Settings& s = master_settings;
    return {&s.brightness,
            &s.contrast,
            &s.spatial_upscaling_factor,
            &s.upscaling_algorithm,
            &s.temporal_upscaling_factor,
            &s.sharpening_level,
            &s.denoising_level,
            &s.spatial_zoom,
            &s.vsync,
            &s.status,
            &s.demo_mode,
            &s.show_original,
            &s.motion_interpolation_method,
            &s.offload_decoding,
            &s.inloop_deblocking,
            &s.recursive_filtering_threshold,
            &s.volume,
            &s.balance,
            &s.eq_low,
            &s.eq_mid,
            &s.eq_high,
            &s.stereo_enhancer,
            &s.audio_dnr_level,
            &s.audio_latency};
}

void reset_settings() {
    for (Value* value : all_settings())
        value->setValue(value->default_value());
}

FormsRig::FormsRig(float width, float height)
    : chooser(new FakeChooser), width_(width), height_(height), outside_(gui_environment) {
    time = 1000.0;
    mouse = {-1000, -1000};
    buttons = 0;
    cursor_visible = true;
    gui_environment = {[] { return time; }, [] { return mouse; }, [] { return buttons; },
                       [](bool visible) { cursor_visible = visible; }, player_covers_screen};
    player_control = &player;
    file_chooser = chooser;
    load_font();
    reset_settings();
    lay_out_gui(width, height);
    if (defaultStyle.IsNull()) defaultStyle = new WidgetStyle;
    formVideoSettings = new FormVideoSettings;
    formAudioSettings = new FormAudioSettings;
    formVideoAdvancedSettings = new FormVideoAdvancedSettings;
    formTransportBar = new FormTransportBar;
    formMenu = new FormMenu;
    for (FormWidget* form :
         {static_cast<FormWidget*>(formVideoSettings), static_cast<FormWidget*>(formAudioSettings),
          static_cast<FormWidget*>(formVideoAdvancedSettings),
          static_cast<FormWidget*>(formTransportBar), static_cast<FormWidget*>(formMenu),
          static_cast<FormWidget*>(chooser)})
        gui.add(form);
    formMenu->bounds.x = screenRectangle.x + 10;
    formMenu->bounds.y = screenRectangle.y + 10;
}

FormsRig::~FormsRig() {
    gui.children.clear();
    gui.captured = nullptr;
    formVideoSettings = nullptr;
    formAudioSettings = nullptr;
    formVideoAdvancedSettings = nullptr;
    formTransportBar = nullptr;
    formMenu = nullptr;
    file_chooser = nullptr;
    player_control = nullptr;
    gui_environment = outside_;
    reset_settings();
}

void FormsRig::advance(double seconds) {
    for (double left = seconds; left > 0.0; left -= refresh_seconds) {
        const double dt = std::min(left, refresh_seconds);
        time += dt;
        gui.tick(dt);
    }
}

void FormsRig::open(FormWidget& form) {
    form.show();
    advance(0.5);
}

WidgetBase* FormsRig::control(const FormWidget& form, const std::string& label) {
    for (std::size_t i = 0; i + 1 < form.children.size(); ++i) {
        WidgetBase* child = form.children[i];
        if (child->hastype(WidgetTypes::text_label) &&
            static_cast<TextLabelWidget*>(child)->text == label)
            return form.children[i + 1];
    }
    return nullptr;
}

SliderWidget* FormsRig::slider(const FormWidget& form, const std::string& label) {
    return dynamic_cast<SliderWidget*>(control(form, label));
}

OptionListWidget* FormsRig::options(const FormWidget& form, const std::string& label) {
    return dynamic_cast<OptionListWidget*>(control(form, label));
}

ButtonWidget* FormsRig::button(const FormWidget& form, const std::string& text) {
    for (const object_ref<WidgetBase>& child : form.children) {
        auto* found = dynamic_cast<ButtonWidget*>(static_cast<WidgetBase*>(child));
        if (found && found->text == text) return found;
    }
    return nullptr;
}

pointf FormsRig::in_window(const WidgetBase& widget, pointf p) {
    // Conversion is a scale and a shift for each axis; it is turned round here.
    pointf zero(0, 0);
    pointf one(1, 1);
    widget.screen2point(zero, false);
    widget.screen2point(one, false);
    const pointf step = one - zero;
    return {(p.x - zero.x) / step.x, (p.y - zero.y) / step.y};
}

pointf FormsRig::place(const WidgetBase& widget, float x, float y) {
    return in_window(widget, {widget.bounds.w * x, widget.bounds.h * y});
}

void FormsRig::move(pointf p) {
    mouse = p;
    gui.mousemove(p, static_cast<int>(buttons));
}

void FormsRig::press(pointf p) {
    mouse = p;
    buttons = 1;
    gui.mousedown(p, 1);
    gui.mousemove(p, 1);
}

void FormsRig::release() {
    buttons = 0;
    gui.mouseup(mouse, 1);
}

void FormsRig::click(pointf p) {
    press(p);
    release();
}

void FormsRig::click(const WidgetBase& widget) {
    click(place(widget));
}

void FormsRig::choose(OptionListWidget& list, int option) {
    list.layout();
    click(in_window(list, list.option_rectangles.at(static_cast<std::size_t>(option)).center()));
    advance(0.2);
}

void FormsRig::draw() const {
    glViewport(0, 0, static_cast<int>(width_), static_cast<int>(height_));
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, static_cast<double>(width_), static_cast<double>(height_), 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gui.draw();
}
