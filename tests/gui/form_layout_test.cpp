// SPDX-License-Identifier: MIT
#include "gui/form_layout.h"
#include "core/settings.h"
#include "gui/forms.h"
#include "gui/text_label_widget.h"

#include "gui/forms_rig.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

using Texts = std::vector<std::string>;

enum class Kind { slider, labelled_slider, options, button };

// A control as it has to be, in the order in which controls are added.
struct Expected {
    Kind kind;
    std::string text;  // of the label, or on the button
    rectf label;
    rectf bounds;
    const Value* setting = nullptr;
    Texts options{};
    int action = 0;
};

void expect_rect(const rectf& found, const rectf& wanted, const std::string& what) {
    EXPECT_EQ(found.x, wanted.x) << what;
    EXPECT_EQ(found.y, wanted.y) << what;
    EXPECT_EQ(found.w, wanted.w) << what;
    EXPECT_EQ(found.h, wanted.h) << what;
}

void expect_slider(const SliderWidget* slider, const Expected& wanted) {
    ASSERT_NE(slider, nullptr) << wanted.text;
    EXPECT_EQ(static_cast<Value*>(slider->value), wanted.setting) << wanted.text;
    EXPECT_EQ(slider->show_value_label, wanted.kind == Kind::labelled_slider) << wanted.text;
    EXPECT_EQ(slider->value_label_width, 60.0F);
    EXPECT_FALSE(slider->update_on_release);
    EXPECT_TRUE(slider->snap_to_default);
    EXPECT_FALSE(slider->custom_draw);
}

void expect_options(const OptionListWidget* list, const Expected& wanted) {
    ASSERT_NE(list, nullptr) << wanted.text;
    EXPECT_EQ(static_cast<Value*>(list->value), wanted.setting) << wanted.text;
    EXPECT_EQ(list->option_texts, wanted.options) << wanted.text;
    EXPECT_EQ(list->option_enabled, std::vector<bool>(wanted.options.size(), true)) << wanted.text;
    // The first option stands for the smallest value, the last for the largest.
    EXPECT_EQ(wanted.setting->minimum(), 0.0F);
    EXPECT_EQ(wanted.setting->maximum(), static_cast<float>(wanted.options.size() - 1));
}

void expect_control(const WidgetBase* found, const Expected& wanted) {
    expect_rect(found->bounds, wanted.bounds, wanted.text);
    EXPECT_TRUE(found->visible) << wanted.text;
    switch (wanted.kind) {
        case Kind::slider:
        case Kind::labelled_slider:
            expect_slider(dynamic_cast<const SliderWidget*>(found), wanted);
            break;
        case Kind::options:
            expect_options(dynamic_cast<const OptionListWidget*>(found), wanted);
            break;
        case Kind::button: {
            const auto* button = dynamic_cast<const ButtonWidget*>(found);
            ASSERT_NE(button, nullptr) << wanted.text;
            EXPECT_EQ(button->text, wanted.text);
            EXPECT_EQ(button->action_code, wanted.action) << wanted.text;
            EXPECT_FALSE(button->custom_draw);
        }
    }
}

void expect_label(const WidgetBase* found, const Expected& wanted) {
    const auto* label = dynamic_cast<const TextLabelWidget*>(found);
    ASSERT_NE(label, nullptr) << wanted.text;
    EXPECT_EQ(label->text, wanted.text);
    expect_rect(label->bounds, wanted.label, wanted.text);
    EXPECT_EQ(label->horizontal_alignment, TextLabelWidget::left);
    EXPECT_EQ(label->vertical_alignment, TextLabelWidget::middle);
}

// Every child is one of the controls or its label.
void expect_controls(const FormWidget& form, const std::vector<Expected>& wanted) {
    std::size_t child = 0;
    for (const Expected& control : wanted) {
        const bool labelled = control.kind != Kind::button;
        ASSERT_LT(child + (labelled ? 1 : 0), form.children.size()) << control.text;
        if (labelled) expect_label(form.children[child++], control);
        expect_control(form.children[child++], control);
    }
    EXPECT_EQ(child, form.children.size());
    for (const object_ref<WidgetBase>& c : form.children)
        EXPECT_EQ(c->parent, &form);
}

void expect_form(const FormWidget& form, const std::string& title, const rectf& bounds) {
    EXPECT_EQ(form.title, title);
    expect_rect(form.bounds, bounds, title);
    EXPECT_EQ(form.getType(), 6);
    EXPECT_FALSE(form.visible);
    EXPECT_FALSE(form.full_width);
}

void expect_settings_form(const FormWidget& form) {
    EXPECT_FALSE(form.auto_hide);
    EXPECT_TRUE(form.has_title_bar);
    EXPECT_TRUE(form.has_frame);
}

TEST(FormLayout, VideoSettings) {
    const FormsRig rig;
    const Settings& s = master_settings;
    expect_form(*formVideoSettings, "Video settings", {-252, -160, 504, 320});
    expect_settings_form(*formVideoSettings);
    expect_controls(
        *formVideoSettings,
        {{Kind::slider, "Brightness:", {10, 50, 140, 24}, {150, 50, 340, 24}, &s.brightness},
         {Kind::slider, "Contrast:", {10, 80, 140, 24}, {150, 80, 340, 24}, &s.contrast},
         {Kind::slider, "Sharpness:", {10, 110, 140, 24}, {150, 110, 340, 24}, &s.sharpening_level},
         {Kind::options,
          "Spatial upscaling:",
          {10, 140, 140, 24},
          {150, 140, 150, 24},
          &s.spatial_upscaling_factor,
          {"OFF", "2x", "3x", "4x"}},
         {Kind::options,
          "Algo:",
          {320, 140, 65, 24},
          {385, 140, 150, 24},
          &s.upscaling_algorithm,
          {"SR", "Denoising"}},
         {Kind::button, "Advanced", {}, {375, 170, 115, 24}, nullptr, {}, 0},
         {Kind::options,
          "Temporal upscaling:",
          {10, 170, 140, 24},
          {150, 170, 150, 24},
          &s.temporal_upscaling_factor,
          {"OFF", "2x", "3x", "4x", "MAX"}},
         {Kind::options,
          "Spatial zoom:",
          {10, 200, 140, 24},
          {150, 200, 150, 24},
          &s.spatial_zoom,
          {"FIT", "CROP", "1x", "2x", "4x"}},
         {Kind::options,
          "VSync:",
          {10, 230, 140, 24},
          {150, 230, 150, 24},
          &s.vsync,
          {"OFF", "ON", "ADAPTIVE"}},
         {Kind::options,
          "Status:",
          {320, 230, 80, 24},
          {415, 230, 150, 24},
          &s.status,
          {"OFF", "ON"}},
         {Kind::options,
          "Demo mode:",
          {320, 260, 90, 24},
          {415, 260, 150, 24},
          &s.demo_mode,
          {"OFF", "ON"}},
         {Kind::button, "Close", {}, {200, 280, 100, 24}, nullptr, {}, 4}});
}

TEST(FormLayout, AudioSettings) {
    const FormsRig rig;
    const Settings& s = master_settings;
    constexpr Kind shown = Kind::labelled_slider;
    expect_form(*formAudioSettings, "Audio settings", {-200, -165, 400, 360});
    expect_settings_form(*formAudioSettings);
    const auto row = [](Kind kind, float y, float width, const char* text, const Value& setting) {
        return Expected{kind, text, {10, y, 140, 24}, {150, y, width, 24}, &setting};
    };
    expect_controls(*formAudioSettings,
                    {row(shown, 50, 230, "Volume:", s.volume),
                     row(Kind::slider, 80, 170, "Balance:", s.balance),
                     row(shown, 110, 230, "Bass:", s.eq_low),
                     row(shown, 140, 230, "Mid:", s.eq_mid),
                     row(shown, 170, 230, "Treble:", s.eq_high),
                     row(Kind::slider, 200, 230, "Enhance stereo:", s.stereo_enhancer),
                     row(Kind::slider, 230, 200, "Noise reduction:", s.audio_dnr_level),
                     row(shown, 260, 230, "Audio latency:", s.audio_latency),
                     {Kind::button, "Close", {}, {150, 310, 100, 24}, nullptr, {}, 4}});
}

TEST(FormLayout, AudioNumbersHaveTheirUnits) {
    const FormsRig rig;
    const auto label = [](const char* name) {
        return FormsRig::slider(*formAudioSettings, name)->get_valuelabel();
    };
    master_settings.volume.setValue(3);
    master_settings.eq_low.setValue(-40);
    master_settings.audio_latency.setValue(-0.25F);
    EXPECT_EQ(label("Volume:"), "3.00dB");
    EXPECT_EQ(label("Bass:"), "-40.00dB");
    EXPECT_EQ(label("Mid:"), "0.00dB");
    EXPECT_EQ(label("Treble:"), "0.00dB");
    EXPECT_EQ(label("Audio latency:"), "-0.25s");
}

TEST(FormLayout, VideoAdvancedSettings) {
    const FormsRig rig;
    const Settings& s = master_settings;
    expect_form(*formVideoAdvancedSettings, "Advanced settings", {-250, -130, 500, 260});
    expect_settings_form(*formVideoAdvancedSettings);
    expect_controls(*formVideoAdvancedSettings,
                    {{Kind::options,
                      "Upscaling algorithm:",
                      {10, 50, 220, 24},
                      {230, 50, 150, 24},
                      &s.upscaling_algorithm,
                      {"SR", "Denoising"}},
                     {Kind::slider,
                      "Denoising/deblocking level:",
                      {10, 80, 220, 24},
                      {230, 80, 260, 24},
                      &s.denoising_level},
                     {Kind::options,
                      "Motion interpolation method:",
                      {10, 110, 220, 24},
                      {230, 110, 180, 24},
                      &s.motion_interpolation_method,
                      {"Blending", "4nb", "8nb"}},
                     {Kind::options,
                      "Offload decoding tasks to GPU:",
                      {10, 140, 220, 24},
                      {280, 140, 150, 24},
                      &s.offload_decoding,
                      {"OFF", "ON"}},
                     {Kind::options,
                      "MPEG4/H264 inloop deblocking filter:",
                      {10, 170, 270, 24},
                      {280, 170, 150, 24},
                      &s.inloop_deblocking,
                      {"OFF", "ON"}},
                     {Kind::button, "Close", {}, {200, 210, 100, 24}, nullptr, {}, 4}});
}

TEST(FormLayout, TransportBar) {
    const FormsRig rig;
    const FormTransportBar& bar = *formTransportBar;
    expect_form(bar, "Transport bar", {-250, 235, 500, 50});
    EXPECT_TRUE(bar.auto_hide);
    EXPECT_FALSE(bar.has_title_bar);
    EXPECT_TRUE(bar.has_frame);
    const std::vector<std::pair<const WidgetBase*, rectf>> wanted = {
        {bar.previous, {10, 15, 30, 24}},      {bar.rewind, {45, 15, 30, 24}},
        {bar.pause, {80, 15, 30, 24}},         {bar.play, {115, 15, 30, 24}},
        {bar.fast_forward, {150, 15, 30, 24}}, {bar.next, {185, 15, 30, 24}},
        {bar.position, {220, 15, 220, 24}},    {bar.balloon, {220, -28, 100, 20}},
        {bar.volume, {445, 15, 50, 24}}};
    ASSERT_EQ(bar.children.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_EQ(static_cast<WidgetBase*>(bar.children[i]), wanted[i].first) << i;
        expect_rect(bar.children[i]->bounds, wanted[i].second, "child " + std::to_string(i));
    }
    for (const ButtonWidget* button :
         {static_cast<ButtonWidget*>(bar.previous), static_cast<ButtonWidget*>(bar.rewind),
          static_cast<ButtonWidget*>(bar.pause), static_cast<ButtonWidget*>(bar.play),
          static_cast<ButtonWidget*>(bar.fast_forward), static_cast<ButtonWidget*>(bar.next)}) {
        EXPECT_TRUE(button->custom_draw);
        EXPECT_EQ(button->action_code, 0);
    }
}

TEST(FormLayout, TransportBarSlidersAndBalloon) {
    const FormsRig rig;
    const FormTransportBar& bar = *formTransportBar;
    EXPECT_TRUE(bar.position->update_on_release);
    EXPECT_FALSE(bar.position->snap_to_default);
    EXPECT_FALSE(bar.position->custom_draw);
    EXPECT_EQ(bar.position->value->minimum(), 0.0F);
    EXPECT_EQ(bar.position->value->default_value(), 0.0F);
    EXPECT_EQ(bar.balloon->text, "00:00:00:000");
    EXPECT_EQ(bar.balloon->horizontal_alignment, TextLabelWidget::center);
    EXPECT_EQ(static_cast<Value*>(bar.volume->value), &master_settings.volume);
    EXPECT_FALSE(bar.volume->update_on_release);
    EXPECT_FALSE(bar.volume->snap_to_default);
    EXPECT_TRUE(bar.volume->custom_draw);
}

TEST(FormLayout, Menu) {
    // Made by itself: the owner moves the one in the window to a corner.
    const object_ref<FormMenu> menu(new FormMenu);
    expect_form(*menu, "Menu", {-390, -290, 174, 43});
    EXPECT_TRUE(menu->auto_hide);
    EXPECT_FALSE(menu->has_title_bar);
    EXPECT_FALSE(menu->has_frame);
    const float xs[] = {10, 49, 88, 127};
    ASSERT_EQ(menu->children.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        const auto* button =
            dynamic_cast<ButtonWidget*>(static_cast<WidgetBase*>(menu->children[i]));
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(button, static_cast<ButtonWidget*>(menu->buttons[i]));
        expect_rect(button->bounds, {xs[i], 5, 34, 34}, "button " + std::to_string(i));
        EXPECT_TRUE(button->custom_draw);
        EXPECT_EQ(button->action_code, 0);
        EXPECT_EQ(menu->phases[i], 0.0F);
    }
}

}  // namespace
