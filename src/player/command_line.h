// SPDX-License-Identifier: MIT
#pragma once

#include "player/play_video.h"

/// The start-up record without any option.
PlayVideoArgs default_args();

/// Reads the command line into `args`. Numbers are clamped to their ranges; unknown options and
/// options without their argument are passed over. The first other argument is the file name.
void parse_command_line(int argc, char** argv, PlayVideoArgs* args);
