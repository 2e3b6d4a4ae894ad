// SPDX-License-Identifier: MIT
#include "player/hud.h"

#include "core/settings.h"
#include "core/text.h"
#include "gui/screen.h"
#include "gui/widget_text.h"
#include "player/clocks.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float margin = 50.0F;             // pixels
constexpr float subtitle_height = 80.0F;    // of the first line's lower edge over the window's
constexpr std::uint64_t hour = 3600000000;  // microseconds
constexpr std::int64_t minute = 60000000;
constexpr std::int64_t second = 1000000;
constexpr std::int64_t millisecond = 1000;

std::string seek_time(std::int64_t position) {
    return formatted(
        "%02d:%02d:%02d:%03d", status_hours(position), static_cast<int>(position / minute % 60),
        static_cast<int>(position / second % 60), static_cast<int>(position / millisecond % 1000));
}

OverlayText right_aligned(const std::string& text, float width) {
    return {text, width - margin - text_size(text).x, margin};
}

}  // namespace

std::int64_t playing_position(const VideoState* is) {
    if (is->video_stream_index < 0 && is->audio_stream_index < 0) return 0;
    const StreamInfo& info = is->video_stream_index >= 0 ? is->video_info : is->audio_info;
    const std::int64_t pts = global_video_pkt_pts;
    if (pts == AV_NOPTS_VALUE) return 0;
    return time_in_film(is, timestamp_microseconds(pts, info.time_base));
}

std::int32_t status_hours(std::int64_t position) {
    const auto low = static_cast<std::int32_t>(position);
    const auto widened = static_cast<std::uint64_t>(std::int64_t{low});
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(widened / hour));
}

std::string status_line(const HudStatus& status) {
    if (status.wanted) {
        return formatted("AUDIO:%+.03f VIDEO:%+.03f [FPS:%03d]", status.audio_ahead,
                         status.video_ahead, status.fps);
    }
    return status.scanning ? seek_time(status.position) : std::string();
}

HudStatus hud_status(const VideoState* is, int fps) {
    const double master = get_master_clock(is);
    HudStatus status;
    status.wanted = master_settings.status.toBool();
    status.scanning = is->rewind || is->fast_forward;
    status.position = playing_position(is);
    if (is->audio_stream_index >= 0) status.audio_ahead = get_audio_clock(is) - master;
    if (is->video_stream_index >= 0) status.video_ahead = get_video_clock(is) - master;
    status.fps = fps;
    return status;
}

bool vsync_is_wanted(int fps, int refresh_rate) {
    return fps >= refresh_rate - 1;
}

float subtitle_fade(std::uint64_t end, std::int64_t position) {
    const double left = static_cast<double>(end) - static_cast<double>(position);
    return static_cast<float>(std::pow(std::clamp(left * 2e-6, 0.0, 1.0), 0.25));
}

std::vector<OverlayText> layout_subtitle(const Subtitle& subtitle, std::int64_t position,
                                         float width, float height) {
    const float scale = gui_scale(width, height);
    const float alpha = subtitle_fade(subtitle.end, position);
    const std::string& text = subtitle.text;
    std::vector<OverlayText> lines;
    std::size_t start = text.find_first_not_of('\n');
    while (start != std::string::npos) {
        const std::size_t end = text.find('\n', start);
        const std::string line = text.substr(start, end - start);
        const pointf size = text_size(line);
        const float line_height = scale * size.y;
        const float y = height - subtitle_height + static_cast<float>(lines.size()) * line_height;
        if (y - line_height > height) break;
        lines.push_back({line, (width - size.x * scale) * 0.5F, y, scale, alpha, true});
        start = text.find_first_not_of('\n', end);
    }
    return lines;
}

std::vector<OverlayText> hud_texts(const HudInput& input) {
    std::vector<OverlayText> texts;
    if (!input.label.empty()) {
        texts.push_back({input.label, margin, margin, 1.0F, input.label_alpha});
    }
    const std::string line = status_line(input.status);
    if (!line.empty()) texts.push_back(right_aligned(line, input.width));
    if (input.subtitle) {
        const std::vector<OverlayText> lines =
            layout_subtitle(*input.subtitle, input.status.position, input.width, input.height);
        texts.insert(texts.end(), lines.begin(), lines.end());
    }
    return texts;
}

const Subtitle* current_subtitle(const VideoState* is) {
    const bool arrived = !is->seek_request && !is->seeking && is->seeks_seen == is->seeks_done;
    if (!arrived) return nullptr;
    return subtitles.get_subtitle(static_cast<unsigned long>(playing_position(is)));
}
