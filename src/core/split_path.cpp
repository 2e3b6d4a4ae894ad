// SPDX-License-Identifier: MIT
#include "core/split_path.h"

#include <cstring>

namespace {

bool is_separator(char c) {
    return c == '\\' || c == '/';
}

void assign(std::string* out, const char* first, const char* last) {
    if (out) out->assign(first, last);
}

}  // namespace

void _splitpath(const char* path, std::string* drive, std::string* directory, std::string* name,
                std::string* extension) {
    const bool has_drive = path[0] != '\0' && path[1] == ':';
    const char* rest = has_drive ? path + 2 : path;
    assign(drive, path, rest);

    const char* terminator = rest + std::strlen(rest);
    const char* colon = std::strchr(rest, ':');
    const char* end = colon ? colon : terminator;

    const char* dot = end;
    const char* base = end;
    while (base > rest && !is_separator(base[-1])) {
        --base;
        if (*base == '.' && dot == end) dot = base;
    }
    // What follows a later colon belongs to neither the name nor, without a dot, anything before
    // it.
    assign(extension, dot, terminator);
    assign(name, base, dot);
    assign(directory, rest, base);
}
