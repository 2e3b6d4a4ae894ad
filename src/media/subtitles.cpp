// SPDX-License-Identifier: MIT
#include "media/subtitles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t longest_path = 1023;
// A film without an extension stands for its own subtitles, however large it is.
constexpr std::size_t largest_file = std::size_t{16} << 20;

std::string subtitle_path(std::string path) {
    path.resize(std::min(path.size(), longest_path));
    const std::size_t dot = path.rfind('.');
    return dot == std::string::npos ? path : path.substr(0, dot) + ".srt";
}

// Reads into `content` what the file holds, as far as it can be read.
void read_all(int file, std::size_t size, std::string& content) {
    content.resize(std::min(size, largest_file));
    std::size_t filled = 0;
    while (filled < content.size()) {
        const ssize_t got = read(file, content.data() + filled, content.size() - filled);
        if (got <= 0) break;
        filled += static_cast<std::size_t>(got);
    }
    content.resize(filled);
}

// Opening anything but a regular file could wait for ever.
std::string read_regular_file(const std::string& path) {
    std::string content;
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return content;
    struct stat status {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
        read_all(file, static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)), content);
    }
    close(file);
    return content;
}

}  // namespace

void Subtitles::load(std::string media_path) {
    std::vector<Subtitle> list =
        parse_subtitles(read_regular_file(subtitle_path(std::move(media_path))));
    const std::lock_guard lock(mutex_);
    list_ = std::move(list);
    index_ = 0;
}

void Subtitles::seek(unsigned long t) {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(list_.begin(), list_.end(),
                                    [t](const Subtitle& cue) { return cue.start >= t; });
    index_ = found == list_.end() ? 0 : static_cast<std::int32_t>(found - list_.begin());
}

const Subtitle* Subtitles::get_subtitle(unsigned long t) {
    const std::int32_t from = index_;
    const auto count = static_cast<std::int32_t>(list_.size());
    if (from < 0 || from >= count) return nullptr;
    const auto cue = [this](std::int32_t i) { return &list_[static_cast<std::size_t>(i)]; };
    std::int32_t index = from;
    while (cue(index)->end < t && index + 1 < count)
        ++index;
    // A seek in between knows better; what to show then is asked for at the next redraw.
    std::int32_t expected = from;
    if (!index_.compare_exchange_strong(expected, index)) return nullptr;
    const bool covers = cue(index)->start <= t && t <= cue(index)->end;
    return covers ? cue(index) : nullptr;
}
