// SPDX-License-Identifier: MIT
// How paths of folders are made.
#include "gui/directory_listing.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;

TEST(JoinedPath, OneSeparatorStandsBetween) {
    EXPECT_EQ(joined_path("/films", "a.mp4"), "/films/a.mp4");
    EXPECT_EQ(joined_path("/", "a.mp4"), "/a.mp4");
    EXPECT_EQ(joined_path("/films/", "a.mp4"), "/films/a.mp4");
}

class Entering : public ::testing::Test {
  protected:
    std::string path(const std::string& name) const { return folder_.path(name); }
    std::string top() const { return folder_.folder().string(); }

    TemporaryFolder folder_;
};

TEST_F(Entering, GoesDownAndUp) {
    fs::create_directories(path("a/b"));
    EXPECT_EQ(entered_directory(path("a"), "b"), path("a/b"));
    EXPECT_EQ(entered_directory(path("a/b"), ".."), path("a"));
    EXPECT_EQ(entered_directory("/", ".."), "/");
}

TEST_F(Entering, LinksAreResolved) {
    fs::create_directories(path("a/b"));
    fs::create_symlink("a/b", path("link"));
    fs::create_symlink(".", path("loop"));
    EXPECT_EQ(entered_directory(top(), "link"), path("a/b"));
    EXPECT_EQ(entered_directory(top(), "loop"), top());
}

TEST_F(Entering, WhatIsGoneCannotBeEntered) {
    EXPECT_EQ(entered_directory(top(), "gone"), "");
    fs::create_symlink("one", path("other"));
    fs::create_symlink("other", path("one"));
    EXPECT_EQ(entered_directory(top(), "one"), "");
}

TEST_F(Entering, FromARemovedFolderUpIsTheNearestThatExists) {
    EXPECT_EQ(entered_directory(path("a/b/c"), ".."), top());
    fs::create_directory(path("a"));
    EXPECT_EQ(entered_directory(path("a/b/c"), ".."), path("a"));
    std::ofstream(path("file")) << "x";
    EXPECT_EQ(entered_directory(path("file"), ".."), top());
    EXPECT_EQ(entered_directory("/no such folder", ".."), "/");
    EXPECT_EQ(entered_directory("", ".."), "/");
    EXPECT_EQ(entered_directory("relative", ".."), "/");
}

TEST_F(Entering, StartIsTheFolderOfTheFile) {
    fs::create_directory(path("a"));
    EXPECT_EQ(directory_of(path("a/film.mp4")), path("a"));
    EXPECT_EQ(directory_of(path("a/../a/")), path("a"));
    EXPECT_EQ(directory_of("/film.mp4"), "/");
    fs::create_directory(path("c: d"));
    EXPECT_EQ(directory_of(path("c: d/film.mp4")), path("c: d"));
}

TEST_F(Entering, WithoutAFolderItIsTheWorkingFolder) {
    const WorkingFolder here(folder_);
    EXPECT_EQ(directory_of(""), top());
    EXPECT_EQ(directory_of("film.mp4"), top());
    EXPECT_EQ(directory_of("/no such folder/film.mp4"), top());
    EXPECT_EQ(directory_of("cam:/dev/video0"), top());
    fs::create_directory(path("sub"));
    EXPECT_EQ(directory_of("sub/film.mp4"), path("sub"));
}

TEST_F(Entering, WithoutAWorkingFolderItIsTheRoot) {
    const fs::path before = fs::current_path();
    fs::create_directory(path("sub"));
    fs::current_path(path("sub"));
    fs::remove(path("sub"));
    const std::string start = directory_of("");
    fs::current_path(before);
    EXPECT_EQ(start, "/");
}

}  // namespace
