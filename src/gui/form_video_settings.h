// SPDX-License-Identifier: MIT
#pragma once

#include "gui/button_widget.h"
#include "gui/form_widget.h"
#include "gui/option_list_widget.h"
#include "gui/setting_watch.h"

/// Settings of the picture, each bound to its control. Starts hidden. [main]
class FormVideoSettings : public FormWidget {
  public:
    FormVideoSettings();

    void onevent(EventArgs& event) override;
    void tick(double dt) override;

    object_ref<OptionListWidget> spatial_upscaling;
    object_ref<OptionListWidget> algorithm;
    object_ref<OptionListWidget> vsync;
    object_ref<ButtonWidget> advanced;

  private:
    void enable_upscaling_factors();

    SettingWatch watch_;
};
