// SPDX-License-Identifier: MIT
#pragma once

#include "gui/form_widget.h"
#include "gui/option_list_widget.h"
#include "gui/setting_watch.h"

/// Settings of the picture that few people need. Starts hidden. [main]
class FormVideoAdvancedSettings : public FormWidget {
  public:
    FormVideoAdvancedSettings();

    void onevent(EventArgs& event) override;
    void tick(double dt) override;

    object_ref<OptionListWidget> upscaling_algorithm;
    object_ref<OptionListWidget> inloop_deblocking;

  private:
    SettingWatch watch_;
};
