// SPDX-License-Identifier: MIT
#include "core/split_path.h"

#include <gtest/gtest.h>

namespace {

struct Parts {
    std::string drive, directory, name, extension;
    bool operator==(const Parts&) const = default;
};

Parts split(const char* path) {
    Parts parts;
    _splitpath(path, &parts.drive, &parts.directory, &parts.name, &parts.extension);
    return parts;
}

TEST(SplitPath, AllParts) {
    EXPECT_EQ(split("D:\\dir/sub\\name.tar.gz"), (Parts{"D:", "\\dir/sub\\", "name.tar", ".gz"}));
    EXPECT_EQ(split("/films/a.b/movie.mkv"), (Parts{"", "/films/a.b/", "movie", ".mkv"}));
}

TEST(SplitPath, WithoutSeparators) {
    EXPECT_EQ(split("movie.mkv"), (Parts{"", "", "movie", ".mkv"}));
    EXPECT_EQ(split("movie"), (Parts{"", "", "movie", ""}));
    EXPECT_EQ(split("C:movie.mkv"), (Parts{"C:", "", "movie", ".mkv"}));
}

TEST(SplitPath, WithoutName) {
    EXPECT_EQ(split(""), (Parts{"", "", "", ""}));
    EXPECT_EQ(split("/"), (Parts{"", "/", "", ""}));
    EXPECT_EQ(split("/films/"), (Parts{"", "/films/", "", ""}));
    EXPECT_EQ(split("C:"), (Parts{"C:", "", "", ""}));
    EXPECT_EQ(split("/films/.hidden"), (Parts{"", "/films/", "", ".hidden"}));
}

TEST(SplitPath, DotInADirectoryIsNoExtension) {
    EXPECT_EQ(split("/a.b/movie"), (Parts{"", "/a.b/", "movie", ""}));
}

TEST(SplitPath, LaterColonEndsThePath) {
    // What follows it is only seen in the extension, which goes to the end of the text.
    EXPECT_EQ(split("/a/b.c:d.e"), (Parts{"", "/a/", "b", ".c:d.e"}));
    EXPECT_EQ(split("/a/b:d.e"), (Parts{"", "/a/", "b", ":d.e"}));
    EXPECT_EQ(split("cam:/dev/video0"), (Parts{"", "", "cam", ":/dev/video0"}));
}

TEST(SplitPath, OutputsMayBeLeftOut) {
    std::string name;
    _splitpath("/a/b.c", nullptr, nullptr, &name, nullptr);
    EXPECT_EQ(name, "b");
    _splitpath("/a/b.c", nullptr, nullptr, nullptr, nullptr);
}

}  // namespace
