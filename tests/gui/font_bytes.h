// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

/// A font file in the making.
struct FontBytes {
    struct Record {
        float width = 0.25F;
        float height = 0.5F;
        float left = 0.0F;
        float top = 0.25F;
        float right = 0.25F;
        float bottom = 0.75F;
    };

    std::int32_t width = 8;
    std::int32_t height = 4;
    std::int32_t first = 65;
    std::int32_t last = 67;
    std::vector<Record> records = std::vector<Record>(3);
    std::vector<std::uint8_t> texels = std::vector<std::uint8_t>(64);

    /// `header_size` is 24 in memory and 32 in a file.
    std::vector<char> bytes(std::size_t header_size = 24) const {
        std::vector<char> all(header_size, char{0x55});
        const std::int32_t header[] = {12345, width, height, first, last};
        std::memcpy(all.data(), header, sizeof header);
        append(all, records);
        append(all, texels);
        return all;
    }

  private:
    template <class T>
    static void append(std::vector<char>& all, const std::vector<T>& more) {
        const auto* start = reinterpret_cast<const char*>(more.data());
        all.insert(all.end(), start, start + more.size() * sizeof(T));
    }
};
