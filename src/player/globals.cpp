// SPDX-License-Identifier: MIT
// Every global object that is constructed before `main`, in the order of construction.

#include "audio/eq3band.h"
#include "audio/noise_reduction.h"
#include "audio/vol_pan_control.h"
#include "core/settings.h"
#include "gui/forms.h"
#include "gui/gl_font.h"
#include "gui/screen.h"
#include "gui/widget_container.h"
#include "gui/widget_style.h"
#include "media/subtitles.h"
#include "player/infolabel.h"

// Before the first widget, which takes it up.
object_ref<WidgetStyle> defaultStyle;

object_ref<FormVideoSettings> formVideoSettings;
object_ref<FormVideoAdvancedSettings> formVideoAdvancedSettings;
object_ref<FormAudioSettings> formAudioSettings;
object_ref<FormTransportBar> formTransportBar;
object_ref<FormMediaBrowser> formMediaBrowser;
object_ref<FormMenu> formMenu;

glfont::GLFont default_font;

WidgetContainer gui;

Settings& master_settings = *new Settings;

VolPanControl vol_pan_control;
Eq3Band eq3band[2];
NoiseReduction audio_noisereduction;

Subtitles subtitles;

std::string infolabel_text;

rectf screenRectangle;
