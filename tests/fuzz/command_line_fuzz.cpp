// SPDX-License-Identifier: MIT
// A command line: arguments that end with zero bytes.

#include "fuzz/fuzz_input.h"
#include "player/command_line.h"

#include <vector>

namespace {

void require_within(float value, float least, float most, const char* what) {
    require(value >= least && value <= most, what);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    std::vector<std::string> arguments = {"vyx"};
    while (!input.empty() && arguments.size() < 256)
        arguments.push_back(input.text());
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    PlayVideoArgs args = default_args();
    parse_command_line(static_cast<int>(arguments.size()), argv.data(), &args);
    require_within(args.denoising, 0.0F, 60.0F, "denoising");
    require_within(args.sharpening, 0.0F, 1.0F, "sharpening");
    require_within(args.contrast, -2.0F, 2.0F, "contrast");
    require_within(args.brightness, -0.5F, 0.5F, "brightness");
    require_within(args.temp_thresh, 0.0F, 40.0F, "temp_thresh");
    require(std::memchr(args.filename, '\0', sizeof args.filename) != nullptr, "the name ends");
    require(args.size == sizeof args && args.width == 800 && args.height == 600, "the rest stays");
    return 0;
}
