// SPDX-License-Identifier: MIT
#include "gui/form_video_settings.h"

#include "core/settings.h"
#include "gui/form_layout.h"
#include "gui/forms.h"
#include "gui/player_control.h"

#include <cstdint>

FormVideoSettings::FormVideoSettings()
    : watch_{&master_settings.brightness,
             &master_settings.contrast,
             &master_settings.sharpening_level,
             &master_settings.spatial_upscaling_factor,
             &master_settings.upscaling_algorithm,
             &master_settings.temporal_upscaling_factor,
             &master_settings.spatial_zoom,
             &master_settings.vsync,
             &master_settings.status,
             &master_settings.demo_mode} {
    Settings& s = master_settings;
    title = "Video settings";
    bounds = rectf(-252, -160, 504, 320);
    visible = false;
    spatial_upscaling = make_options(s.spatial_upscaling_factor, {"OFF", "2x", "3x", "4x"});
    algorithm = make_options(s.upscaling_algorithm, {"SR", "Denoising"});
    vsync = make_options(s.vsync, {"OFF", "ON", "ADAPTIVE"});
    advanced = make_button("Advanced", EventTypes::item_chosen);
    OptionListWidget* temporal =
        make_options(s.temporal_upscaling_factor, {"OFF", "2x", "3x", "4x", "MAX"});
    OptionListWidget* zoom = make_options(s.spatial_zoom, {"FIT", "CROP", "1x", "2x", "4x"});
    ButtonWidget* close = make_button("Close", EventTypes::close_request);
    const FormRow rows[] = {
        {make_slider(s.brightness), {150, 50, 340, 24}, "Brightness:", {10, 50, 140, 24}},
        {make_slider(s.contrast), {150, 80, 340, 24}, "Contrast:", {10, 80, 140, 24}},
        {make_slider(s.sharpening_level), {150, 110, 340, 24}, "Sharpness:", {10, 110, 140, 24}},
        {spatial_upscaling, {150, 140, 150, 24}, "Spatial upscaling:", {10, 140, 140, 24}},
        {algorithm, {385, 140, 150, 24}, "Algo:", {320, 140, 65, 24}},
        {advanced, {375, 170, 115, 24}},
        {temporal, {150, 170, 150, 24}, "Temporal upscaling:", {10, 170, 140, 24}},
        {zoom, {150, 200, 150, 24}, "Spatial zoom:", {10, 200, 140, 24}},
        {vsync, {150, 230, 150, 24}, "VSync:", {10, 230, 140, 24}},
        {make_options(s.status, {"OFF", "ON"}), {415, 230, 150, 24}, "Status:", {320, 230, 80, 24}},
        {make_options(s.demo_mode, {"OFF", "ON"}),
         {415, 260, 150, 24},
         "Demo mode:",
         {320, 260, 90, 24}},
        {close, {200, 280, 100, 24}},
    };
    add_rows(*this, rows);
}

void FormVideoSettings::enable_upscaling_factors() {
    int width = 0;
    int height = 0;
    if (!player_control || !player_control->picture_size(&width, &height)) return;
    const std::int64_t largest = player_control->largest_texture();
    // Option i stands for the factor i + 1.
    for (std::size_t i = 0; i < spatial_upscaling->option_enabled.size(); ++i) {
        const auto factor = static_cast<std::int64_t>(i) + 1;
        spatial_upscaling->option_enabled[i] =
            i == 0 || (factor * width <= largest && factor * height <= largest);
    }
    spatial_upscaling->invalidate();
}

void FormVideoSettings::onevent(EventArgs& event) {
    if (event.action == EventTypes::value_changed && event.sender == vsync) {
        if (player_control) player_control->set_vsync(master_settings.vsync.toBool());
    } else if (event.action == EventTypes::value_changed && event.sender == algorithm) {
        if (formVideoAdvancedSettings) formVideoAdvancedSettings->upscaling_algorithm->invalidate();
    } else if (event.action == EventTypes::shown) {
        enable_upscaling_factors();
    } else if (event.action == EventTypes::item_chosen && event.sender == advanced) {
        if (formVideoAdvancedSettings) formVideoAdvancedSettings->toggle();
    } else {
        FormWidget::onevent(event);
    }
}

void FormVideoSettings::tick(double dt) {
    if (watch_.changed()) invalidate();
    FormWidget::tick(dt);
}
