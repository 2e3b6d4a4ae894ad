// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Splits a path into drive ("D:"), directory (its last separator included), file name and
/// extension (its dot included). "/" and "\" separate; a colon after the drive ends the path. Any
/// output may be null.
void _splitpath(const char* path, std::string* drive, std::string* directory, std::string* name,
                std::string* extension);
