// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

// What the media browser knows of the file system. Paths are bytes as the system has them.

/// One row of a folder.
struct DirectoryEntry {
    std::string name;  ///< as on disk
    bool is_directory = false;

    /// What the row says: a folder's name stands in square brackets.
    std::string label() const { return is_directory ? "[" + name + "]" : name; }
};

/// What lies in a folder, as far as the browser shows it.
struct DirectoryListing {
    /// Folders but the folder itself, and media files, in the order in which the system tells them.
    /// Of a folder that cannot be opened: the one above it.
    std::vector<DirectoryEntry> entries;
    /// Folders that the system told of, the folder itself and the one above it included; 0 where it
    /// could not be opened.
    int directories = 0;
};

/// Reads a folder. Links count as what they lead to; neither pipes nor devices are opened. Any
/// thread.
DirectoryListing list_directory(const std::string& path);

/// The extension of a file's name or path, dot included, as `_splitpath` has it.
std::string get_extension(const std::string& path);

/// Whether a file of this name is listed. Parts of known extensions count as well, the empty one
/// among them.
bool is_media_name(const std::string& name);

/// The path of `name` in `directory`, with one separator between them. Neither has to exist.
std::string joined_path(const std::string& directory, const std::string& name);

/// The real path of the folder `name` in `directory`, links resolved. Where that cannot be told
/// and `name` is "..", the nearest folder above that still exists; otherwise empty.
std::string entered_directory(const std::string& directory, const std::string& name);

/// The real path of the folder in which `file` lies. The working folder where `file` is empty or
/// its folder does not exist; the root where there is no working folder, either.
std::string directory_of(const std::string& file);
