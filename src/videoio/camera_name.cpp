// SPDX-License-Identifier: MIT
#include "videoio/camera_name.h"

#include "media/capture_formats.h"

#include <algorithm>

namespace {

// The text up to a character, which is passed over as well; all of it where there is none.
std::string_view take_until(std::string_view& text, char end) {
    const std::size_t length = text.find(end);
    const std::string_view token = text.substr(0, length);
    text.remove_prefix(length == std::string_view::npos ? text.size() : length + 1);
    return token;
}

}  // namespace

bool parse_camera_name(std::string_view text, CameraName& camera) {
    text.remove_prefix(std::min(camera_prefix.size(), text.size()));
    const std::size_t first = text.find_first_of(",\"");
    const bool quoted = first != std::string_view::npos && text[first] == '"';
    if (quoted) text.remove_prefix(first + 1);
    if (quoted && text.find_first_not_of('"') == std::string_view::npos) return false;
    camera.device = take_until(text, quoted ? '"' : ',');
    while (!text.empty()) {
        std::string_view token = take_until(text, ',');
        if (token.find('=') == std::string_view::npos) continue;
        const std::string_view key = take_until(token, '=');
        camera.options.emplace_back(key, token);
    }
    return true;
}
