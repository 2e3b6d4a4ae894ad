// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A file that has its name only once it is complete.
///
/// It is written as NAME.part beside it; `complete` renames that, and without it the destructor
/// removes it. What exists and is no regular file (a device, a pipe) is written directly.
class OutputFile {
  public:
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// The name to write under.
    const std::string& working_path() const { return working_path_; }

    /// Gives the file its name. Throws `EnhanceError` when that fails.
    void complete();

  private:
    std::string path_;
    std::string working_path_;
    bool completed_ = false;
};
