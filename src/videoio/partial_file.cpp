// SPDX-License-Identifier: MIT
#include "videoio/partial_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

namespace {

struct Freer {
    void operator()(char* text) const { std::free(text); }
};

}  // namespace

void PartialFile::begin(const char* path) {
    struct stat status {};
    const std::unique_ptr<char, Freer> real(realpath(path, nullptr));
    if (!real || stat(real.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    path_ = real.get();
    device_ = status.st_dev;
    number_ = status.st_ino;
}

PartialFile::~PartialFile() {
    struct stat status {};
    if (path_.empty() || lstat(path_.c_str(), &status) != 0) return;
    if (status.st_dev == device_ && status.st_ino == number_) unlink(path_.c_str());
}
