// SPDX-License-Identifier: MIT
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

/// A regular file in memory that has a path.
class MemoryFile {
  public:
    explicit MemoryFile(std::span<const std::uint8_t> content = {})
        : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
        if (descriptor_ < 0) std::abort();
        for (std::size_t done = 0; done < content.size();) {
            const ssize_t count = write(descriptor_, content.data() + done, content.size() - done);
            if (count <= 0) std::abort();
            done += static_cast<std::size_t>(count);
        }
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int descriptor() const { return descriptor_; }
    /// Has no dot in it, and is good as long as this object.
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};
