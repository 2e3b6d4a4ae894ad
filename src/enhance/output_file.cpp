// SPDX-License-Identifier: MIT
#include "enhance/output_file.h"

#include "enhance/enhance_error.h"

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

OutputFile::OutputFile(std::string path) : path_(std::move(path)), working_path_(path_ + ".part") {
    std::error_code ignored;
    const fs::file_status status = fs::status(path_, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status)) working_path_ = path_;
}

OutputFile::~OutputFile() {
    if (completed_ || working_path_ == path_) return;
    std::error_code ignored;
    fs::remove(working_path_, ignored);
}

void OutputFile::complete() {
    if (working_path_ != path_) {
        std::error_code error;
        fs::rename(working_path_, path_, error);
        if (error) {
            throw EnhanceError("cannot rename '" + working_path_ + "' to '" + path_ +
                               "': " + error.message());
        }
    }
    completed_ = true;
}
