// SPDX-License-Identifier: MIT
#include "platform/display_loss.h"

#include <X11/Xlib.h>
#include <unistd.h>

#include <cstdio>

void end_with_display() {
    XSetIOErrorHandler([](Display* display) {
        std::fprintf(stderr, "Connection to the display %s is broken - exiting\n",
                     DisplayString(display));
        std::fflush(stdout);
        _exit(1);
        return 0;
    });
}
