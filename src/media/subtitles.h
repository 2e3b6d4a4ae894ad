// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

/// A text over the picture and its time. Times are microseconds from the start of the film.
struct Subtitle {
    std::uint64_t start = 0;
    std::uint64_t end = 0;  ///< the last moment at which it is shown
    std::string text;       ///< lines separated by "\n", with one at the end; without italic tags
};

/// The subtitles of the open film: what the SubRip file beside it holds, in its order.
///
/// The list belongs to [main]; only `seek` looks at it from another thread. The lookups expect
/// growing times, which nobody sorts.
class Subtitles {
  public:
    Subtitles() = default;
    Subtitles(const Subtitles&) = delete;
    Subtitles& operator=(const Subtitles&) = delete;

    /// Replaces the list by the subtitles of the film `media_path`: the file whose name has ".srt"
    /// in place of everything from the last "." on. A path without "." is read itself. Of a path
    /// that is longer the first 1023 bytes count. Without such a file the list is empty; nothing is
    /// ever reported. Only regular files are read, and of them the first 16 MiB. [main]
    void load(std::string media_path);

    /// Goes to the first subtitle that starts at `t` or later, to the very first when none does.
    /// [demux]
    void seek(unsigned long t);

    /// The subtitle to show at `t`, null for none. Only goes forwards: after a jump back `seek`
    /// comes first. Valid until the next `load`. [main]
    const Subtitle* get_subtitle(unsigned long t);

  private:
    std::vector<Subtitle> list_;
    std::atomic<std::int32_t> index_ = 0;  ///< where lookups search forwards from
    std::mutex mutex_;                     ///< held by `seek`, and while the list is replaced
};

/// Of the open film.
extern Subtitles subtitles;

/// The subtitles in the text of a SubRip file. What does not parse is left out. Of a line that is
/// longer the first 254 bytes count; a zero byte ends a line, too.
std::vector<Subtitle> parse_subtitles(std::string_view file);
