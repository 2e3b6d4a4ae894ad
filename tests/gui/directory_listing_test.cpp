// SPDX-License-Identifier: MIT
#include "gui/directory_listing.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <set>

namespace {

namespace fs = std::filesystem;

struct MediaName {
    const char* name;
    bool listed;
};

// The extensions by name, parts of them, and what is none of them.
const MediaName media_names[] = {
    {"a.mp4", true},       {"a.mp3", true},    {"a.mpg", true},     {"a.mpeg", true},
    {"a.avi", true},       {"a.wav", true},    {"a.ogg", true},     {"a.flac", true},
    {"a.mkv", true},       {"a.flv", true},    {"a.mts", true},     {"a.m2ts", true},
    {"a.wmv", true},       {"clip.MKV", true}, {"a.FlAc", true},    {"a.mp", true},
    {"a.m", true},         {"a.m2", true},     {"a.wm", true},      {"a.ts", true},
    {"a.TS", true},        {"a.", true},       {"README", true},    {"a.b.mp4", true},
    {".mp4", true},        {"a b.mp4", true},  {"[a] b.mp4", true}, {"notes.txt", false},
    {"a.mp44", false},     {"a.p4", false},    {"a.4", false},      {"a.m4v", false},
    {"a.mp4.txt", false},  {"a.s", false},     {"a.tsx", false},    {"a.mp4 ", false},
    {"a.mp4~", false},     {"a.srt", false},   {"a.jpg", false},    {".hidden", false},
    {"two: b.mp4", false},
};

TEST(DirectoryListing, NamesThatAreListed) {
    for (const MediaName& media : media_names)
        EXPECT_EQ(is_media_name(media.name), media.listed) << media.name;
}

TEST(DirectoryListing, ExtensionIsWhatSplittingSays) {
    EXPECT_EQ(get_extension("/films/a.b/clip.MKV"), ".MKV");
    EXPECT_EQ(get_extension("/films/a.b/clip"), "");
    EXPECT_EQ(get_extension("name.tar.gz"), ".gz");
}

class FolderTest : public ::testing::Test {
  protected:
    void file(const std::string& name) { std::ofstream(folder_.path(name)) << "x"; }
    void folder(const std::string& name) { fs::create_directory(folder_.path(name)); }
    void link(const std::string& target, const std::string& name) {
        fs::create_symlink(target, folder_.path(name));
    }
    DirectoryListing listed() { return list_directory(folder_.folder().string()); }
    // What the rows say, sorted.
    std::multiset<std::string> labels() {
        std::multiset<std::string> all;
        for (const DirectoryEntry& entry : listed().entries)
            all.insert(entry.label());
        return all;
    }

    TemporaryFolder folder_;
};

using Labels = std::multiset<std::string>;

TEST_F(FolderTest, FoldersAreInBracketsAndFilesByName) {
    folder("sub");
    folder("notes.txt");
    file("clip.MKV");
    file("notes");
    file("other.txt");
    EXPECT_EQ(labels(), (Labels{"[..]", "[notes.txt]", "[sub]", "clip.MKV", "notes"}));
}

TEST_F(FolderTest, EveryFolderCountsItselfIncluded) {
    EXPECT_EQ(listed().directories, 2);
    folder("a");
    folder("b");
    file("a.mp4");
    EXPECT_EQ(listed().directories, 4);
    EXPECT_EQ(listed().entries.size(), 4U);
}

TEST_F(FolderTest, OrderIsTheSystems) {
    for (const char* name : {"z", "m", "a", "k", "b"})
        file(std::string(name) + ".mp4");
    std::vector<std::string> expected;
    DIR* all = opendir(folder_.folder().c_str());
    while (const dirent* entry = readdir(all)) {
        const std::string name = entry->d_name;
        if (name != ".") expected.push_back(name);
    }
    closedir(all);
    std::vector<std::string> found;
    for (const DirectoryEntry& entry : listed().entries)
        found.push_back(entry.name);
    EXPECT_EQ(found, expected);
}

TEST_F(FolderTest, LinksAreWhatTheyLeadTo) {
    folder("sub");
    file("film.mp4");
    link("sub", "to_folder");
    link("film.mp4", "to_film.mkv");
    link("film.mp4", "to_film.txt");
    EXPECT_EQ(labels(), (Labels{"[..]", "[sub]", "[to_folder]", "film.mp4", "to_film.mkv"}));
    EXPECT_EQ(listed().directories, 4);
}

TEST_F(FolderTest, LinksThatLeadNowhereAreSkipped) {
    link("gone.mp4", "broken.mp4");
    link("there.mp4", "here.mp4");
    link("here.mp4", "there.mp4");
    link("itself.mp4", "itself.mp4");
    EXPECT_EQ(labels(), Labels{"[..]"});
}

TEST_F(FolderTest, PipesAreSkipped) {
    ASSERT_EQ(mkfifo(folder_.path("pipe.mp4").c_str(), 0600), 0);
    EXPECT_EQ(labels(), Labels{"[..]"});
}

TEST_F(FolderTest, NamesMayBeAnything) {
    const Labels names{" ",
                       "a b.mp4",
                       "[a].mp4",
                       "[x]",
                       "a\nb.mp4",
                       "\xFF\xFE\x80.mp4",
                       "\x01\x7F.mp4",
                       "%s%n.mp4",
                       "a\\b.mp4",
                       std::string(251, 'n') + ".mp4"};
    for (const std::string& name : names)
        file(name);
    Labels expected = names;
    expected.insert("[..]");
    EXPECT_EQ(labels(), expected);
}

TEST_F(FolderTest, FileInBracketsIsNoFolder) {
    file("[x]");
    folder("x");
    int files = 0;
    for (const DirectoryEntry& entry : listed().entries) {
        if (entry.label() == "[x]" && !entry.is_directory) {
            ++files;
            EXPECT_EQ(entry.name, "[x]");
        }
    }
    EXPECT_EQ(files, 1);
}

TEST_F(FolderTest, WhatCannotBeOpenedHasOnlyTheWayUp) {
    file("film.mp4");
    for (const std::string& path :
         {folder_.path("gone"), folder_.path("film.mp4"), std::string()}) {
        const DirectoryListing listing = list_directory(path);
        ASSERT_EQ(listing.entries.size(), 1U) << path;
        EXPECT_EQ(listing.entries[0].label(), "[..]");
        EXPECT_TRUE(listing.entries[0].is_directory);
        EXPECT_EQ(listing.directories, 0);
    }
}

TEST_F(FolderTest, FiveThousandFilesAreAllThere) {
    for (int i = 0; i < 5000; ++i)
        file("film " + std::to_string(i) + ".mp4");
    const Labels all = labels();
    EXPECT_EQ(all.size(), 5001U);
    EXPECT_EQ(all.count("film 4999.mp4"), 1U);
}

}  // namespace
