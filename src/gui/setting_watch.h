// SPDX-License-Identifier: MIT
#pragma once

#include "core/settings.h"

#include <initializer_list>
#include <vector>

/// Notices settings that change behind a form's back: by keys, or by a film that is opened. [main]
class SettingWatch {
  public:
    /// The settings outlive the watch.
    SettingWatch(std::initializer_list<const Value*> settings) {
        for (const Value* setting : settings)
            seen_.push_back({setting, setting->getValue()});
    }

    /// Whether any of them changed since the last call.
    bool changed() {
        bool any = false;
        for (Seen& seen : seen_) {
            const float value = seen.setting->getValue();
            any |= value != seen.value;
            seen.value = value;
        }
        return any;
    }

  private:
    struct Seen {
        const Value* setting;
        float value;
    };
    std::vector<Seen> seen_;
};
