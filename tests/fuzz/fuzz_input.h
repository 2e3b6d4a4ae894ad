// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>

/// Called by the fuzzer, or by the program that replays files, with one input after the other. Also
/// defined without a prototype of its own by every target.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
/// Called once, before the first input; where a target has one.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

/// Takes values off the front of an input. What lies beyond its end is zero.
class FuzzInput {
  public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    bool empty() const { return rest_.empty(); }

    /// A number or a record, from its bytes as they lie.
    template <class T>
    T take() {
        static_assert(std::is_trivially_copyable_v<T>);
        T value{};
        const std::span<const std::uint8_t> from = bytes(sizeof value);
        if (!from.empty()) std::memcpy(&value, from.data(), from.size());
        return value;
    }

    /// A number from `least` to `most`, both included, out of two bytes.
    int between(int least, int most) { return least + take<std::uint16_t>() % (most - least + 1); }

    /// The next `count` bytes, or what is left of them.
    std::span<const std::uint8_t> bytes(std::size_t count) {
        const std::span<const std::uint8_t> taken = rest_.first(std::min(count, rest_.size()));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

    /// Text up to a zero byte, which is passed over, or to the end.
    std::string text() {
        const auto end = std::find(rest_.begin(), rest_.end(), std::uint8_t{0});
        std::string taken(rest_.begin(), end);
        bytes(taken.size() + 1);
        return taken;
    }

    std::span<const std::uint8_t> rest() { return bytes(rest_.size()); }

  private:
    std::span<const std::uint8_t> rest_;
};

/// Ends the process, so that the input counts as a finding, when something does not hold.
inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}
