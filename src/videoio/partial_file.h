// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <string>

/// A file that is being made, and is removed when this ends before it is complete. What is no
/// regular file (a device, a pipe) stays, and so does whatever has taken the file's place since.
class PartialFile {
  public:
    PartialFile() = default;
    ~PartialFile();
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    /// From here on there is a file that is not complete: the one that has just been opened at
    /// `path`. Where the working folder or a symbolic link lead later does not matter.
    void begin(const char* path);
    void complete() { path_.clear(); }

  private:
    std::string path_;  ///< absolute and without links; empty when there is nothing to remove
    dev_t device_ = 0;
    ino_t number_ = 0;
};
