// SPDX-License-Identifier: MIT
#include "player/command_line.h"

#include <getopt.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// The short forms of "denoising" and "preload" have it the other way round than the long ones.
constexpr char short_options[] = "lfdgp:s:c:b:t:";

const option long_options[] = {
    {"loop", no_argument, nullptr, 'l'},
    {"preload", no_argument, nullptr, 'p'},
    {"fullscreen", no_argument, nullptr, 'f'},
    {"denoising", required_argument, nullptr, 'd'},
    {"sharpening", required_argument, nullptr, 's'},
    {"contrast", required_argument, nullptr, 'c'},
    {"brightness", required_argument, nullptr, 'b'},
    {"temp_thresh", required_argument, nullptr, 't'},
    {"demo", no_argument, nullptr, 'g'},
    {nullptr, 0, nullptr, 0},
};

// The option's number; words count as 0, not-a-number as the lower bound.
float number(const char* text, double scale, double lower, double upper) {
    const double value = std::atof(text) * scale;
    if (!(value > lower)) return static_cast<float>(lower);
    return static_cast<float>(value < upper ? value : upper);
}

void read_number(int code, const char* text, PlayVideoArgs* args) {
    switch (code) {
        case 'd':
            args->denoising = number(text, 1.0, 0.0, 60.0);
            break;
        case 's':
            args->sharpening = number(text, 0.01, 0.0, 1.0);
            break;
        case 'c':
            args->contrast = number(text, 0.01, -2.0, 2.0);
            break;
        case 'b':
            args->brightness = number(text, 0.01, -0.5, 0.5);
            break;
        case 't':
            args->temp_thresh = number(text, 1.0, 0.0, 40.0);
            break;
        default:
            break;
    }
}

void read_option(int code, const char* text, PlayVideoArgs* args) {
    switch (code) {
        case 'l':
            args->loop = true;
            break;
        case 'p':
            args->preload = true;
            break;
        case 'f':
            args->fullscreen = true;
            break;
        case 'g':
            args->demo = true;
            break;
        case 'd':
        case 's':
        case 'c':
        case 'b':
        case 't':
            if (text) read_number(code, text, args);
            break;
        case '?':
            break;
        default:
            std::printf("?? getopt returned character code 0%o ??\n", unsigned(code));
    }
}

void copy_text(char (&to)[256], const char* from) {
    std::strncpy(to, from, sizeof to - 1);
    to[sizeof to - 1] = '\0';
}

}  // namespace

PlayVideoArgs default_args() {
    PlayVideoArgs args;
    std::memset(&args, 0, sizeof args);
    args.size = sizeof args;
    copy_text(args.title, "VYX Video Player");
    args.width = 800;
    args.height = 600;
    args.center_window = true;
    args.show_banner = true;
    args.loop = true;
    args.rate = 1.0;
    return args;
}

void parse_command_line(int argc, char** argv, PlayVideoArgs* args) {
    opterr = 0;  // unknown options are passed over in silence
    optind = 0;  // start afresh, also on a second call
    for (;;) {
        const int code = getopt_long(argc, argv, short_options, long_options, nullptr);
        if (code == -1) break;
        read_option(code, optarg, args);
    }
    if (optind < argc) copy_text(args->filename, argv[optind]);
}
