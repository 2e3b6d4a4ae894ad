// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"

/// What widgets ask of the world. Tests put their own functions here. [main]
struct GuiEnvironment {
    /// Seconds since some moment. Does not run backwards, but a jump back does no harm.
    double (*now)();
    /// Where the pointer is, in window pixels.
    pointf (*mouse_position)();
    /// One bit for each button held: 1 is the left one.
    unsigned (*mouse_buttons)();
    void (*show_cursor)(bool visible);
    /// Whether the window covers the screen.
    bool (*fullscreen)();
};

/// SDL and the platform, until someone puts something else here.
extern GuiEnvironment gui_environment;
