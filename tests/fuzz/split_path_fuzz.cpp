// SPDX-License-Identifier: MIT
// A path: text up to a zero byte.

#include "core/split_path.h"
#include "fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = FuzzInput(data, size).text();
    std::string drive = "?";
    std::string directory = "?";
    std::string name = "?";
    std::string extension = "?";
    _splitpath(path.c_str(), &drive, &directory, &name, &extension);
    _splitpath(path.c_str(), nullptr, nullptr, nullptr, nullptr);

    require(drive.empty() || (drive.size() == 2 && drive[1] == ':'), "a drive");
    const std::string rest = path.substr(drive.size());
    require(directory.empty() || directory.back() == '/' || directory.back() == '\\',
            "a directory ends with its separator");
    require(name.find('/') == std::string::npos && name.find('\\') == std::string::npos,
            "a name without separators");
    if (rest.find(':') == std::string::npos) {
        require(directory + name + extension == rest, "nothing is lost");
    }
    require(extension.empty() || extension.front() == '.' || extension.front() == ':',
            "an extension begins with its dot");
    return 0;
}
