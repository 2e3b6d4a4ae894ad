// SPDX-License-Identifier: MIT
#include "gui/player_control.h"

#include "gui/file_chooser.h"

constinit PlayerControl* player_control = nullptr;
constinit FileChooser* file_chooser = nullptr;
