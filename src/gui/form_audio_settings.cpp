// SPDX-License-Identifier: MIT
#include "gui/form_audio_settings.h"

#include "core/settings.h"
#include "gui/form_layout.h"

FormAudioSettings::FormAudioSettings()
    : watch_{&master_settings.volume,          &master_settings.balance,
             &master_settings.eq_low,          &master_settings.eq_mid,
             &master_settings.eq_high,         &master_settings.stereo_enhancer,
             &master_settings.audio_dnr_level, &master_settings.audio_latency} {
    Settings& s = master_settings;
    constexpr NumberLabel shown = NumberLabel::shown;
    title = "Audio settings";
    bounds = rectf(-200, -165, 400, 360);
    visible = false;
    const FormRow rows[] = {
        {make_slider(s.volume, shown), {150, 50, 230, 24}, "Volume:", {10, 50, 140, 24}},
        {make_slider(s.balance), {150, 80, 170, 24}, "Balance:", {10, 80, 140, 24}},
        {make_slider(s.eq_low, shown), {150, 110, 230, 24}, "Bass:", {10, 110, 140, 24}},
        {make_slider(s.eq_mid, shown), {150, 140, 230, 24}, "Mid:", {10, 140, 140, 24}},
        {make_slider(s.eq_high, shown), {150, 170, 230, 24}, "Treble:", {10, 170, 140, 24}},
        {make_slider(s.stereo_enhancer),
         {150, 200, 230, 24},
         "Enhance stereo:",
         {10, 200, 140, 24}},
        {make_slider(s.audio_dnr_level),
         {150, 230, 200, 24},
         "Noise reduction:",
         {10, 230, 140, 24}},
        {make_slider(s.audio_latency, shown),
         {150, 260, 230, 24},
         "Audio latency:",
         {10, 260, 140, 24}},
        {make_button("Close", EventTypes::close_request), {150, 310, 100, 24}},
    };
    add_rows(*this, rows);
}

void FormAudioSettings::tick(double dt) {
    if (watch_.changed()) invalidate();
    FormWidget::tick(dt);
}
