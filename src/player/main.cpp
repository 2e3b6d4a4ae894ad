// SPDX-License-Identifier: MIT
#include "player/command_line.h"
#include "player/play_video.h"

int main(int argc, char** argv) {
    PlayVideoArgs args = default_args();
    parse_command_line(argc, argv, &args);
    return play_video(&args);
}
