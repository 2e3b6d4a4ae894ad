// SPDX-License-Identifier: MIT
// Every global object that is constructed before `main`, in the order of construction.

#include "core/settings.h"
#include "gui/screen.h"
#include "player/infolabel.h"

Settings& master_settings = *new Settings;

std::string infolabel_text;

rectf screenRectangle;
