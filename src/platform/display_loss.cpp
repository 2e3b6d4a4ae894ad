// SPDX-License-Identifier: MIT
#include "platform/display_loss.h"

#include <X11/Xlib.h>
#include <unistd.h>

#include <cstdio>

namespace {

// At once: threads are running, which the end of `main` and its objects would not wait for.
[[noreturn]] void end() {
    std::fflush(stdout);
    _exit(1);
}

}  // namespace

void end_with_display() {
    // Somebody destroyed the window, for instance.
    XSetErrorHandler([](Display* display, XErrorEvent* error) {
        char text[256] = "";
        XGetErrorText(display, error->error_code, text, sizeof text);
        std::fprintf(stderr, "The display refused what the player asked for (%s) - exiting\n",
                     text);
        end();
        return 0;
    });
    XSetIOErrorHandler([](Display* display) {
        std::fprintf(stderr, "Connection to the display %s is broken - exiting\n",
                     DisplayString(display));
        end();
        return 0;
    });
}
