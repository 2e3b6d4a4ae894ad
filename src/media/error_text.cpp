// SPDX-License-Identifier: MIT
#include "media/error_text.h"

extern "C" {
#include <libavutil/error.h>
}

std::string error_text(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}
