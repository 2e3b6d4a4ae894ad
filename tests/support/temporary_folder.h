// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>

/// A folder of a test's own, gone with everything in it when the scope ends. Its path is short.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        char name[] = "/tmp/vyx_XXXXXX";
        if (!mkdtemp(name)) throw std::runtime_error("no temporary folder");
        folder_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    const std::filesystem::path& folder() const { return folder_; }
    /// How many files there are.
    std::ptrdiff_t files() const {
        const std::filesystem::directory_iterator all(folder_);
        return std::distance(begin(all), end(all));
    }

  private:
    std::filesystem::path folder_;
};

/// The working folder is another one while this exists.
class WorkingFolder {
  public:
    explicit WorkingFolder(const TemporaryFolder& folder)
        : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder.folder());
    }
    ~WorkingFolder() { std::filesystem::current_path(before_); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

  private:
    std::filesystem::path before_;
};
