// SPDX-License-Identifier: MIT
#include "player/command_line.h"
#include "player/play_video.h"

#include <unistd.h>

#include <cstdio>
#include <new>

int main(int argc, char** argv) {
    try {
        PlayVideoArgs args = default_args();
        parse_command_line(argc, argv, &args);
        return play_video(&args);
    } catch (const std::bad_alloc&) {
        // At once: threads are running, which the end of `main` and its objects would not wait for.
        std::fflush(stdout);
        std::fputs("Out of memory - exiting\n", stderr);
        _exit(1);
    }
}
