// SPDX-License-Identifier: MIT
#include "gui/form_video_advanced_settings.h"

#include "core/settings.h"
#include "gui/form_layout.h"
#include "gui/forms.h"
#include "gui/player_control.h"

FormVideoAdvancedSettings::FormVideoAdvancedSettings()
    : watch_{&master_settings.upscaling_algorithm, &master_settings.denoising_level,
             &master_settings.motion_interpolation_method, &master_settings.offload_decoding,
             &master_settings.inloop_deblocking} {
    Settings& s = master_settings;
    title = "Advanced settings";
    bounds = rectf(-250, -130, 500, 260);
    visible = false;
    upscaling_algorithm = make_options(s.upscaling_algorithm, {"SR", "Denoising"});
    inloop_deblocking = make_options(s.inloop_deblocking, {"OFF", "ON"});
    const FormRow rows[] = {
        {upscaling_algorithm, {230, 50, 150, 24}, "Upscaling algorithm:", {10, 50, 220, 24}},
        {make_slider(s.denoising_level),
         {230, 80, 260, 24},
         "Denoising/deblocking level:",
         {10, 80, 220, 24}},
        {make_options(s.motion_interpolation_method, {"Blending", "4nb", "8nb"}),
         {230, 110, 180, 24},
         "Motion interpolation method:",
         {10, 110, 220, 24}},
        {make_options(s.offload_decoding, {"OFF", "ON"}),
         {280, 140, 150, 24},
         "Offload decoding tasks to GPU:",
         {10, 140, 220, 24}},
        {inloop_deblocking,
         {280, 170, 150, 24},
         "MPEG4/H264 inloop deblocking filter:",
         {10, 170, 270, 24}},
        {make_button("Close", EventTypes::close_request), {200, 210, 100, 24}},
    };
    add_rows(*this, rows);
}

void FormVideoAdvancedSettings::onevent(EventArgs& event) {
    if (event.action == EventTypes::value_changed && event.sender == upscaling_algorithm) {
        if (formVideoSettings) formVideoSettings->algorithm->invalidate();
    } else if (event.action == EventTypes::value_changed && event.sender == inloop_deblocking) {
        if (player_control)
            player_control->set_inloop_filter(master_settings.inloop_deblocking.toBool());
    } else {
        FormWidget::onevent(event);
    }
}

void FormVideoAdvancedSettings::tick(double dt) {
    if (watch_.changed()) invalidate();
    FormWidget::tick(dt);
}
