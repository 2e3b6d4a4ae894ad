// SPDX-License-Identifier: MIT
#include "videoio/error_message.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

bool set_error(ErrorMessage& message, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    return false;
}

bool check_text(const char* text, unsigned size, ErrorMessage& message) {
    if (std::memchr(text, '\0', size)) return true;
    return set_error(message, "Name too long: it has no NUL!\n");
}
