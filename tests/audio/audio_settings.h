// SPDX-License-Identifier: MIT
#pragma once

#include "core/settings.h"

/// Every setting of the sound away from its default, so that each stage has work to do.
inline void turn_all_sound_settings_on() {
    master_settings.volume.setValue(-1.0F);
    master_settings.balance.setValue(0.2F);
    master_settings.stereo_enhancer.setValue(0.7F);
    master_settings.eq_low.setValue(3.0F);
    master_settings.eq_mid.setValue(-2.0F);
    master_settings.eq_high.setValue(1.5F);
    master_settings.audio_dnr_level.setValue(16.0F);
}

/// Every setting of the sound back to exactly its default.
inline void restore_sound_settings() {
    for (Value* value :
         {&master_settings.volume, &master_settings.balance, &master_settings.stereo_enhancer,
          &master_settings.eq_low, &master_settings.eq_mid, &master_settings.eq_high,
          &master_settings.audio_dnr_level}) {
        value->setValue(value->default_value());
    }
}
