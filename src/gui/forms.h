// SPDX-License-Identifier: MIT
#pragma once

#include "gui/form_audio_settings.h"
#include "gui/form_media_browser.h"
#include "gui/form_menu.h"
#include "gui/form_transport_bar.h"
#include "gui/form_video_advanced_settings.h"
#include "gui/form_video_settings.h"

// The forms of the player; null until it starts. [main]

extern object_ref<FormVideoSettings> formVideoSettings;
extern object_ref<FormVideoAdvancedSettings> formVideoAdvancedSettings;
extern object_ref<FormAudioSettings> formAudioSettings;
extern object_ref<FormTransportBar> formTransportBar;
extern object_ref<FormMenu> formMenu;
