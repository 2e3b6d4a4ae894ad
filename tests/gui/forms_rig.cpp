// SPDX-License-Identifier: MIT
#include "gui/forms_rig.h"

#include "gui/gui_environment.h"
#include "gui/screen.h"
#include "gui/text_label_widget.h"

namespace {

bool player_covers_screen() {
    return player_control && player_control->is_fullscreen();
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

FormsRig::FormsRig(int width, int height) : GuiWorld(width, height), chooser(new FakeChooser) {
    gui_environment.fullscreen = player_covers_screen;
    player_control = &player;
    file_chooser = chooser;
    reset_settings();
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
    // Before the world, which lets go of them last.
    formVideoSettings = nullptr;
    formAudioSettings = nullptr;
    formVideoAdvancedSettings = nullptr;
    formTransportBar = nullptr;
    formMenu = nullptr;
    file_chooser = nullptr;
    player_control = nullptr;
    reset_settings();
}

void FormsRig::open(FormWidget& form) {
    form.show();
    pass(0.5);
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

pointf FormsRig::place(const WidgetBase& widget, float x, float y) {
    return in_window(widget, {widget.bounds.w * x, widget.bounds.h * y});
}

void FormsRig::choose(OptionListWidget& list, int option) {
    list.layout();
    click(in_window(list, list.option_rectangles.at(static_cast<std::size_t>(option)).center()));
    pass(0.2);
}
