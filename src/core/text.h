// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A printf-style text as a string. The compiler checks the arguments.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);
