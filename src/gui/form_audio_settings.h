// SPDX-License-Identifier: MIT
#pragma once

#include "gui/form_widget.h"
#include "gui/setting_watch.h"

/// Settings of the sound, each bound to its slider. Starts hidden. [main]
class FormAudioSettings : public FormWidget {
  public:
    FormAudioSettings();

    void tick(double dt) override;

  private:
    SettingWatch watch_;
};
