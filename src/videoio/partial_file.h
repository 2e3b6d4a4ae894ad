// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A file that is being made, and is removed when this ends before it is complete. What is no
/// regular file (a device, a pipe) stays.
class PartialFile {
  public:
    PartialFile() = default;
    ~PartialFile();
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    /// From here on there is a file that is not complete.
    void begin(const char* path) { path_ = path; }
    void complete() { path_.clear(); }

  private:
    std::string path_;
};
