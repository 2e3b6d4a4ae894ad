// SPDX-License-Identifier: MIT
#include "media/subtitles.h"

#include <array>
#include <limits>
#include <optional>

namespace {

constexpr std::size_t longest_line = 254;
constexpr std::uint64_t shown_longer = 500000;  // microseconds

bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Takes lines off the front of a text.
class Lines {
  public:
    explicit Lines(std::string_view text) : text_(text) {}

    bool at_end() const { return text_.empty(); }

    // At the end of the text: an empty line.
    std::string_view next() {
        const std::size_t end = text_.find('\n');
        std::string_view line = text_.substr(0, end).substr(0, longest_line);
        text_.remove_prefix(end == std::string_view::npos ? text_.size() : end + 1);
        return line.substr(0, line.find('\0'));
    }

  private:
    std::string_view text_;
};

// Reads numbers and words off the front of a line, white space before them skipped.
class Scanner {
  public:
    explicit Scanner(std::string_view line) : rest_(line) {}

    // A decimal number with or without a sign; beyond 64 bits the nearest one, of which then the
    // low 32 bits remain.
    std::optional<std::int32_t> number() {
        skip_space();
        const bool negative = rest_.starts_with('-');
        if (negative || rest_.starts_with('+')) rest_.remove_prefix(1);
        if (rest_.empty() || !is_digit(rest_.front())) return std::nullopt;
        constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
        const std::uint64_t limit = negative ? largest + 1 : largest;
        std::uint64_t value = 0;
        while (!rest_.empty() && is_digit(rest_.front())) {
            const auto digit = static_cast<std::uint64_t>(rest_.front() - '0');
            value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
            rest_.remove_prefix(1);
        }
        const auto low = static_cast<std::uint32_t>(value);
        return static_cast<std::int32_t>(negative ? 0U - low : low);
    }

    bool word(std::string_view wanted) {
        if (!rest_.starts_with(wanted)) return false;
        rest_.remove_prefix(wanted.size());
        return true;
    }

    void skip_space() {
        while (!rest_.empty() && is_space(rest_.front()))
            rest_.remove_prefix(1);
    }

  private:
    std::string_view rest_;
};

// Hours, minutes and seconds add up in 32 bits.
std::uint64_t microseconds(const std::int32_t* fields) {
    const auto part = [fields](int i) { return static_cast<std::uint32_t>(fields[i]); };
    const auto seconds = static_cast<std::int32_t>((part(0) * 60 + part(1)) * 60 + part(2));
    const std::int64_t ms = std::int64_t{seconds} * 1000 + fields[3];
    return static_cast<std::uint64_t>(ms * 1000);
}

// "hours:minutes:seconds,milliseconds --> hours:minutes:seconds,milliseconds"
bool parse_times(std::string_view line, Subtitle& cue) {
    constexpr std::string_view separators[] = {":", ":", ",", "-->", ":", ":", ",", ""};
    std::array<std::int32_t, 8> fields{};
    Scanner scanner(line);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::optional<std::int32_t> field = scanner.number();
        if (!field) return false;
        fields[i] = *field;
        if (separators[i] == "-->") scanner.skip_space();
        if (!scanner.word(separators[i])) return false;
    }
    cue.start = microseconds(fields.data());
    cue.end = microseconds(fields.data() + 4) + shown_longer;
    return true;
}

std::string without(std::string_view tag, const std::string& text) {
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = text.find(tag); at != std::string::npos; at = text.find(tag, from)) {
        result.append(text, from, at - from);
        from = at + tag.size();
    }
    return result.append(text, from);
}

// Everything up to an empty line or the end of the file.
std::string parse_text(Lines& lines) {
    std::string text;
    for (;;) {
        const std::string_view line = lines.next();
        if (!text.empty()) text += '\n';
        text += line;
        if (line.empty()) break;
    }
    if (text.find('<') == std::string::npos) return text;
    return without("</i>", without("<i>", text));
}

}  // namespace

std::vector<Subtitle> parse_subtitles(std::string_view file) {
    std::vector<Subtitle> list;
    Lines lines(file);
    while (!lines.at_end()) {
        if (!Scanner(lines.next()).number()) continue;
        Subtitle cue;
        if (!parse_times(lines.next(), cue)) continue;
        cue.text = parse_text(lines);
        list.push_back(std::move(cue));
    }
    return list;
}
