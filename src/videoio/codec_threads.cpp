// SPDX-License-Identifier: MIT
#include "videoio/codec_threads.h"

#include <algorithm>
#include <thread>

namespace {

constexpr int most_threads = 4;  // every one holds pictures

}  // namespace

int codec_threads() {
    const auto processors = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(processors, 1, most_threads);
}
