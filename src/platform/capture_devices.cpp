// SPDX-License-Identifier: MIT
#include "platform/capture_devices.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace {

constexpr const char* prefixes[] = {"video", "radio", "vbi", "v4l-subdev"};
constexpr int numbers_per_prefix = 256;

struct DirCloser {
    void operator()(DIR* dir) const { closedir(dir); }
};

std::vector<std::string> collect(const std::string& folder) {
    std::vector<std::string> paths;
    const std::unique_ptr<DIR, DirCloser> dir(opendir(folder.c_str()));
    if (!dir) {
        std::perror("Couldn't open the directory");
        return paths;
    }
    while (const dirent* entry = readdir(dir.get())) {
        if (is_v4l_dev(entry->d_name)) paths.push_back(folder + "/" + entry->d_name);
    }
    return paths;
}

// Where a symbolic link leads, absolute; empty for anything that is no link.
std::string link_target(const std::string& path, const std::string& folder) {
    char target[64];
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    if (length < 0) return {};
    std::string name(target, static_cast<std::size_t>(length));
    return name.starts_with('/') ? name : folder + "/" + name;
}

// Drops every path that is only another name for one that is listed too.
void drop_aliases(std::vector<std::string>& paths, const std::string& folder) {
    std::map<std::string, std::string> aliases;
    for (const std::string& path : paths) {
        const std::string target = link_target(path, folder);
        if (std::find(paths.begin(), paths.end(), target) == paths.end()) continue;
        std::string& names = aliases[target];
        if (!names.empty()) names += ", ";
        names += path;
    }
    std::erase_if(paths, [&](const std::string& path) {
        const auto known = aliases.find(link_target(path, folder));
        return known != aliases.end() && known->first != path;
    });
}

}  // namespace

bool is_v4l_dev(const char* name) {
    return std::any_of(std::begin(prefixes), std::end(prefixes), [&](const char* prefix) {
        return std::string_view(name).starts_with(prefix);
    });
}

int calc_node_val(const char* path) {
    const char* slash = std::strrchr(path, '/');
    const std::string name = slash ? slash + 1 : path;
    int base = 0;
    for (std::size_t i = 0; i < std::size(prefixes); ++i) {
        if (name.starts_with(prefixes[i])) base = numbers_per_prefix * static_cast<int>(i);
    }
    const std::size_t digits = base < 2 * numbers_per_prefix ? 5 : 3;
    const long number = name.size() > digits ? std::atol(name.c_str() + digits) : 0;
    return base + static_cast<int>(number);
}

bool sort_on_device_name(const std::string& first, const std::string& second) {
    return calc_node_val(first.c_str()) < calc_node_val(second.c_str());
}

int list_video_inputs(char*** out, const char* folder) {
    *out = nullptr;
    std::vector<std::string> paths = collect(folder);
    drop_aliases(paths, folder);
    if (paths.empty()) return 0;
    std::stable_sort(paths.begin(), paths.end(), sort_on_device_name);
    auto** names = static_cast<char**>(std::calloc(paths.size(), sizeof(char*)));
    if (!names) return 0;
    for (std::size_t i = 0; i < paths.size(); ++i)
        names[i] = strdup(paths[i].c_str());
    *out = names;
    return static_cast<int>(paths.size());
}
