// SPDX-License-Identifier: MIT
#include "gui/directory_listing.h"

#include "core/split_path.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace {

constexpr std::string_view media_extensions =
    ".mp4|.mp3|.mpg|.mpeg|.avi|.wav|.ogg|.mp3|.flac|.mkv|.flv|.mts|.m2ts|.wmv";

enum class EntryKind { directory, file, other };

struct CloseDirectory {
    void operator()(DIR* folder) const { closedir(folder); }
};

EntryKind followed_kind(int folder, const char* name) {
    struct stat status {};
    // Not for pipes and devices, which would be waited for: nothing is opened here.
    if (fstatat(folder, name, &status, 0) != 0) return EntryKind::other;
    if (S_ISDIR(status.st_mode)) return EntryKind::directory;
    return S_ISREG(status.st_mode) ? EntryKind::file : EntryKind::other;
}

// Asks about links, and where the file system did not tell with the name.
EntryKind kind_of(int folder, const dirent& entry) {
    switch (entry.d_type) {
        case DT_DIR:
            return EntryKind::directory;
        case DT_REG:
            return EntryKind::file;
        case DT_LNK:
        case DT_UNKNOWN:
            return followed_kind(folder, entry.d_name);
        default:
            return EntryKind::other;
    }
}

void add_entry(DirectoryListing& listing, EntryKind kind, const char* name) {
    if (kind == EntryKind::directory) {
        ++listing.directories;
        if (std::string_view(name) != ".") listing.entries.push_back({name, true});
    } else if (kind == EntryKind::file && is_media_name(name)) {
        listing.entries.push_back({name, false});
    }
}

// Empty where there is none.
std::string real_path(const std::string& path) {
    char* resolved = realpath(path.c_str(), nullptr);
    std::string real(resolved ? resolved : "");
    std::free(resolved);
    return real;
}

std::string nearest_folder_above(std::string path) {
    while (path.size() > 1) {
        const std::size_t separator = path.rfind('/');
        path.resize(separator == std::string::npos ? 0 : separator);
        std::string real = path.empty() ? "" : real_path(path);
        if (!real.empty()) return real;
    }
    return "/";
}

}  // namespace

DirectoryListing list_directory(const std::string& path) {
    DirectoryListing listing;
    const std::unique_ptr<DIR, CloseDirectory> folder(opendir(path.c_str()));
    if (!folder) {
        listing.entries.push_back({"..", true});
        return listing;
    }
    while (const dirent* entry = readdir(folder.get()))
        add_entry(listing, kind_of(dirfd(folder.get()), *entry), entry->d_name);
    return listing;
}

std::string get_extension(const std::string& path) {
    std::string extension;
    _splitpath(path.c_str(), nullptr, nullptr, nullptr, &extension);
    return extension;
}

bool is_media_name(const std::string& name) {
    std::string extension = get_extension(name);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return media_extensions.find(extension) != std::string_view::npos || extension == ".ts";
}

std::string joined_path(const std::string& directory, const std::string& name) {
    const bool separated = !directory.empty() && directory.back() == '/';
    return directory + (separated ? "" : "/") + name;
}

std::string entered_directory(const std::string& directory, const std::string& name) {
    std::string real = real_path(joined_path(directory, name));
    if (!real.empty() || name != "..") return real;
    return nearest_folder_above(directory);
}

std::string directory_of(const std::string& file) {
    const std::size_t separator = file.rfind('/');
    std::string real =
        separator == std::string::npos ? "" : real_path(file.substr(0, separator + 1));
    if (!real.empty()) return real;
    const std::string working = real_path(".");
    return working.empty() ? "/" : working;
}
