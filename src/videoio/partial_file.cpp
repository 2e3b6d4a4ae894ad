// SPDX-License-Identifier: MIT
#include "videoio/partial_file.h"

#include <sys/stat.h>
#include <unistd.h>

PartialFile::~PartialFile() {
    struct stat status {};
    const bool exists = !path_.empty() && stat(path_.c_str(), &status) == 0;
    if (exists && S_ISREG(status.st_mode)) unlink(path_.c_str());
}
