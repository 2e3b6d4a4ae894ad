// SPDX-License-Identifier: MIT
#include "enhance/options.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <deque>

namespace {

// The arguments as they are used up, and the first thing found wrong with them.
class Arguments {
  public:
    Arguments(const std::vector<std::string>& all, std::string& error)
        : rest_(all.begin(), all.end()), error_(error) {}

    bool empty() const { return rest_.empty(); }
    bool ok() const { return error_.empty(); }
    void fail(const std::string& why) {
        if (ok()) error_ = why;
    }

    // The next argument. "--name=value" is cut in two.
    std::string take() {
        std::string argument = rest_.front();
        rest_.pop_front();
        const std::size_t equals = argument.find('=');
        if (argument.starts_with("--") && equals != std::string::npos) {
            rest_.push_front(argument.substr(equals + 1));
            argument.resize(equals);
            value_attached_ = true;
        } else {
            value_attached_ = false;
        }
        return argument;
    }

    std::string take_value(const std::string& option) {
        if (rest_.empty()) {
            fail(option + " needs a value");
            return {};
        }
        std::string value = rest_.front();
        rest_.pop_front();
        value_attached_ = false;
        return value;
    }

    float number(const std::string& option, float lowest, float highest) {
        const std::string text = take_value(option);
        char* end = nullptr;
        const float value = std::strtof(text.c_str(), &end);
        if (text.empty() || *end != '\0' || !(value >= lowest && value <= highest)) {
            fail(option + " takes a number from " + std::to_string(std::lround(lowest)) + " to " +
                 std::to_string(std::lround(highest)) + ", not '" + text + "'");
        }
        return value;
    }

    long whole_number(const std::string& option, long lowest, long highest) {
        const std::string text = take_value(option);
        long value = 0;
        const auto [end, status] =
            std::from_chars(text.data(), text.data() + text.size(), value, 10);
        if (status != std::errc() || end != text.data() + text.size() || value < lowest ||
            value > highest) {
            fail(option + " takes a whole number from " + std::to_string(lowest) + " to " +
                 std::to_string(highest) + ", not '" + text + "'");
        }
        return value;
    }

    // The place of the value among `names`.
    int choice(const std::string& option, const std::vector<std::string>& names) {
        const std::string text = take_value(option);
        std::string list;
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (text == names[i]) return static_cast<int>(i);
            list += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + names[i];
        }
        fail(option + " takes " + list + ", not '" + text + "'");
        return 0;
    }

    // After an option without a value.
    void expect_no_value(const std::string& option) {
        if (value_attached_) fail(option + " takes no value");
    }

  private:
    std::deque<std::string> rest_;
    std::string& error_;
    bool value_attached_ = false;
};

// Which options were given that say something about each other.
struct Given {
    bool algorithm = false;
    bool denoise = false;
};

void read_option(const std::string& name, Arguments& from, EnhanceOptions& options, Given& given) {
    if (name == "--help" || name == "-h") {
        options.help = true;
        from.expect_no_value(name);
    } else if (name == "--demo") {
        options.demo = true;
        from.expect_no_value(name);
    } else if (name == "--spatial") {
        options.spatial = static_cast<int>(from.whole_number(name, 1, 4));
    } else if (name == "--temporal") {
        options.temporal = static_cast<int>(from.whole_number(name, 1, 5));
    } else if (name == "--frames") {
        options.pictures = from.whole_number(name, 1, 1000000000);
    } else if (name == "--algorithm") {
        options.algorithm = static_cast<Algorithm>(from.choice(name, {"sr", "denoise"}));
        given.algorithm = true;
    } else if (name == "--method") {
        options.method = static_cast<Method>(from.choice(name, {"blend", "4nb", "8nb"}));
    } else if (name == "--denoise") {
        options.denoising_level = from.number(name, 0.0F, 60.0F);
        given.denoise = true;
    } else if (name == "--sharpen") {
        options.sharpening_level = from.number(name, 0.0F, 100.0F) / 100.0F;
    } else {
        from.fail("there is no option '" + name + "'");
    }
}

void read_name(const std::string& name, Arguments& from, EnhanceOptions& options) {
    if (options.input.empty()) {
        options.input = name;
    } else if (options.output.empty()) {
        options.output = name;
    } else {
        from.fail("one INPUT and one OUTPUT, but there is also '" + name + "'");
    }
}

}  // namespace

EnhanceOptions parse_options(const std::vector<std::string>& arguments, std::string& error) {
    error.clear();
    EnhanceOptions options;
    Given given;
    Arguments from(arguments, error);
    bool names_only = false;
    while (!from.empty() && from.ok()) {
        const std::string argument = names_only ? from.take_value("") : from.take();
        if (!names_only && argument == "--") {
            names_only = true;
        } else if (!names_only && argument.size() > 1 && argument.front() == '-') {
            read_option(argument, from, options, given);
        } else if (argument.empty()) {
            from.fail("a file name is empty");
        } else {
            read_name(argument, from, options);
        }
    }
    if (options.help && from.ok()) return options;
    if (given.denoise && given.algorithm && options.algorithm != Algorithm::denoise) {
        from.fail("--denoise has no effect with --algorithm sr");
    }
    if (given.denoise) options.algorithm = Algorithm::denoise;
    if (options.output.empty()) from.fail("INPUT and OUTPUT must be given");
    return options;
}

const char* options_help() {
    return R"(usage: vyx-enhance [options] INPUT OUTPUT

Enhances the film INPUT as the player shows it and writes the result to OUTPUT: a film, whose
container and encoder follow from the name, or numbered pictures where the name holds a pattern
such as %05d and ends in .png. No display is needed. Without options the pictures stay as they
are. Sound is not copied.

  --spatial N        enlarge N times, 1 to 4 (1)
  --algorithm NAME   sr: super-resolution, denoise: deblocking and denoising (sr)
  --denoise LEVEL    0 to 60 (20); asks for --algorithm denoise. The higher, the more detail
                     stays and the less is smoothed
  --sharpen PERCENT  0 to 100 (0)
  --temporal N       N pictures for each picture, 1 to 5 (1); the film lasts as long as before
  --method NAME      how pictures in between are made: blend, or along the motion of blocks and
                     their 4 or 8 neighbours, 4nb or 8nb (4nb)
  --demo             leave the left half as it was, behind a red line
  --frames N         take only the first N pictures of INPUT
  --help             print this and exit

A film is written under another name first and gets its own when it is complete. The exit status
is 0 when OUTPUT is complete, otherwise 1.
)";
}
