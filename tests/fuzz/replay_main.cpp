// SPDX-License-Identifier: MIT
// Runs a fuzz target over files, without a fuzzer: replay [FILE or FOLDER]...
// Fails when there is no file at all.

#include "fuzz/fuzz_input.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" [[gnu::weak]] int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

int replayed = 0;

void replay(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    // On the heap and of exactly this size, so that reading beyond it is noticed.
    const auto size = static_cast<std::size_t>(bytes.size());
    std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
    std::printf("%s: %zu bytes\n", path.c_str(), size);
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(data.data(), size);
    ++replayed;
}

}  // namespace

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize) LLVMFuzzerInitialize(&argc, &argv);
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            replay(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
            replay(entry.path());
    }
    std::printf("%d inputs\n", replayed);
    return replayed > 0 ? 0 : 1;
}
