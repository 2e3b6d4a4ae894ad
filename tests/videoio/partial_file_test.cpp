// SPDX-License-Identifier: MIT
// The file that could not be completed is removed, and no other.

#include "videoio/partial_file.h"

#include "videoio/file_size_limit.h"
#include "videoio/video_fixture.h"

#include <fstream>

namespace {

namespace fs = std::filesystem;

void write_text(const std::string& path, const char* text) {
    std::ofstream(path) << text;
}

std::string text_of(const std::string& path) {
    const Bytes bytes = file_bytes(path);
    return {bytes.begin(), bytes.end()};
}

class PartialFiles : public ::testing::TestWithParam<const char*> {
  protected:
    // A film that the disk has no room for; something happens while it is written.
    template <class Meanwhile>
    static void fail_to_write(const std::string& path, Meanwhile meanwhile) {
        const FileSizeLimit limit(100000);
        WrittenFilm film(save_args(path, GetParam(), 64, 32));
        EXPECT_EQ(film.frame(noise(64 * 32 * 3, 0), 0.0), 0) << film.write.errorMsg;
        meanwhile();
        for (unsigned i = 1; i < 100; ++i) {
            if (film.frame(noise(64 * 32 * 3, i), i * 0.04) != 0) break;
        }
        EXPECT_STRNE(film.write.errorMsg, "");
    }

    const TemporaryFolder folder_;
};

TEST_P(PartialFiles, RelativeNamesStayWhereTheyWere) {
    const TemporaryFolder other;
    write_text(other.path("film.avi"), "another film");
    const WorkingFolder here(folder_);
    fail_to_write("film.avi", [&] { fs::current_path(other.folder()); });
    EXPECT_EQ(text_of(other.path("film.avi")), "another film");
    EXPECT_EQ(folder_.files(), 0);
}

TEST_P(PartialFiles, SymbolicLinksStayAndTheirFileGoes) {
    fs::create_symlink("film.avi", folder_.path("link.avi"));
    fail_to_write(folder_.path("link.avi"), [] {});
    EXPECT_FALSE(fs::exists(fs::symlink_status(folder_.path("film.avi"))));
    EXPECT_TRUE(fs::is_symlink(folder_.path("link.avi")));
}

TEST_P(PartialFiles, LinksThatLeadElsewhereMeanwhile) {
    write_text(folder_.path("other.avi"), "another film");
    fs::create_symlink("film.avi", folder_.path("link.avi"));
    fail_to_write(folder_.path("link.avi"), [&] {
        fs::remove(folder_.path("link.avi"));
        fs::create_symlink("other.avi", folder_.path("link.avi"));
    });
    EXPECT_EQ(text_of(folder_.path("other.avi")), "another film");
    EXPECT_FALSE(exists(folder_.path("film.avi")));
}

TEST_P(PartialFiles, WhatHasTakenTheirPlaceStays) {
    write_text(folder_.path("new.avi"), "another film");
    fail_to_write(folder_.path("film.avi"),
                  [&] { fs::rename(folder_.path("new.avi"), folder_.path("film.avi")); });
    EXPECT_EQ(text_of(folder_.path("film.avi")), "another film");
}

TEST_P(PartialFiles, NamesThatBeginWithFile) {
    const WorkingFolder here(folder_);
    fail_to_write("file:film.avi", [] {});
    EXPECT_EQ(folder_.files(), 0) << "a prefix for FFmpeg, part of the name for others";
}

INSTANTIATE_TEST_SUITE_P(Codecs, PartialFiles, ::testing::Values("avi", "mpeg4"),
                         film_test_name_of<const char*>);

TEST(PartialFile, HeadersThatCannotBeWritten) {
    const TemporaryFolder folder;
    const TemporaryFolder other;
    const WorkingFolder here(folder);
    fs::create_symlink(other.path("film.aiff"), folder.path("link.aiff"));
    VYX_SaveVideoArgs args = save_args("file:link.aiff", "png", 64, 32);
    EXPECT_EQ(save_video(&args), -1);
    EXPECT_STREQ(args.errorMsg, "could not write header: Invalid argument!\n");
    EXPECT_EQ(other.files(), 0);
}

TEST(PartialFile, OnlyFilesAreRemoved) {
    const TemporaryFolder folder;
    { PartialFile().begin(folder.folder().c_str()); }
    EXPECT_TRUE(exists(folder.folder().string()));
    { PartialFile().begin(folder.path("nothing").c_str()); }
    write_text(folder.path("done"), "x");
    {
        PartialFile file;
        file.begin(folder.path("done").c_str());
        file.complete();
    }
    EXPECT_EQ(folder.files(), 1);
    { PartialFile().begin(folder.path("done").c_str()); }
    EXPECT_EQ(folder.files(), 0);
}

// Each picture is a file of its own: those that are written are good.
TEST(PartialFile, PicturesOfASequenceStay) {
    const TemporaryFolder folder;
    {
        const FileSizeLimit limit(3000);
        WrittenFilm film(save_args(folder.path("%d.png"), "", 64, 32));
        EXPECT_EQ(film.frame(Bytes(64 * 32 * 3, 9), 0.0), 0);
        // The encoder works on several frames at a time and tells late.
        for (int i = 1; i < 100 && film.write.errorMsg[0] == '\0'; ++i)
            film.frame(noise(64 * 32 * 3, 1), i * 0.04);
        EXPECT_STREQ(film.write.errorMsg, "av_interleaved_write_frame failed: File too large\n");
    }
    EXPECT_EQ(decoded_by_ffmpeg(folder.path("1.png"), "rgb24"), Bytes(64 * 32 * 3, 9));
    EXPECT_EQ(file_bytes(folder.path("2.png")).size(), 3000U) << "the one that was cut stays too";
}

}  // namespace
