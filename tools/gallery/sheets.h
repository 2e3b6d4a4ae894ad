// SPDX-License-Identifier: MIT
#pragma once

#include <string>

// Each draws one sheet into a PNG file of that name; false where it cannot be written. [main]

bool write_widgets(const std::string& path);
bool write_icons(const std::string& path);
bool write_forms(const std::string& path);
