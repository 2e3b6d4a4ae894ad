// SPDX-License-Identifier: MIT
// Which file is read, and which subtitle shows when.

#include "media/subtitles.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <thread>

namespace {

constexpr unsigned long second = 1000000;

std::string cue(const std::string& start, const std::string& end, const std::string& text) {
    return "1\n00:00:" + start + " --> 00:00:" + end + "\n" + text + "\n\n";
}

class SubtitlesTest : public ::testing::Test {
  protected:
    void write(const std::string& name, const std::string& content) {
        std::ofstream(folder_.path(name), std::ios::binary) << content;
    }
    // Loads subtitles with this content.
    void load(const std::string& content) {
        write("film.srt", content);
        subtitles_.load(folder_.path("film.mp4"));
    }
    // What is shown, "" for nothing.
    std::string shown(unsigned long t) {
        const Subtitle* found = subtitles_.get_subtitle(t);
        return found ? found->text.substr(0, found->text.size() - 1) : "";
    }

    TemporaryFolder folder_;
    Subtitles subtitles_;
};

TEST_F(SubtitlesTest, FileBesideTheFilmIsLoaded) {
    write("movie.srt", cue("01,000", "02,000", "one"));
    write("a.b.srt", cue("01,000", "02,000", "two"));
    subtitles_.load(folder_.path("movie.mp4"));
    EXPECT_EQ(shown(second), "one");
    subtitles_.load(folder_.path("a.b.avi"));
    EXPECT_EQ(shown(second), "two");
    subtitles_.load(folder_.path("movie.srt"));
    EXPECT_EQ(shown(second), "one") << "of itself";
}

TEST_F(SubtitlesTest, WithoutAFileTheListIsEmptyAndNothingIsSaid) {
    load(cue("01,000", "02,000", "old"));
    EXPECT_EQ(shown(second), "old");
    ::testing::internal::CaptureStderr();
    ::testing::internal::CaptureStdout();
    subtitles_.load(folder_.path("other.mp4"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(shown(second), "");
}

TEST_F(SubtitlesTest, EmptyListHasNothingForAnyTime) {
    for (const unsigned long t : {0UL, 1UL, second, ~0UL}) {
        EXPECT_EQ(subtitles_.get_subtitle(t), nullptr);
        subtitles_.seek(t);
        EXPECT_EQ(subtitles_.get_subtitle(t), nullptr);
    }
}

TEST_F(SubtitlesTest, PathWithoutADotIsReadItself) {
    const WorkingFolder here(folder_);
    write("film", cue("01,000", "02,000", "itself"));
    subtitles_.load("film");
    EXPECT_EQ(shown(second), "itself");
    write("film", "no subtitles\n");
    subtitles_.load("film");
    EXPECT_EQ(shown(second), "");
    subtitles_.load("");
    EXPECT_EQ(shown(second), "");
}

TEST_F(SubtitlesTest, LastDotCountsAlsoInAFolder) {
    std::filesystem::create_directory(folder_.path("a.b"));
    write("a.srt", cue("01,000", "02,000", "of the folder"));
    subtitles_.load(folder_.path("a.b/film"));
    EXPECT_EQ(shown(second), "of the folder");
}

TEST_F(SubtitlesTest, LongPaths) {
    // Many short folders, so that only the whole is long.
    std::string path = folder_.path("");
    while (path.size() < 1023 - 110)
        path += std::string(100, 'd') + "/";
    std::filesystem::create_directories(path);
    const std::size_t left = 1023 - path.size() - 2;
    const std::string base = path + std::string(left, 'f');
    std::ofstream(base + ".srt") << cue("01,000", "02,000", "far");
    ASSERT_EQ((base + ".m").size(), 1023U);
    subtitles_.load(base + ".m");
    EXPECT_EQ(shown(second), "far") << "the new name may be longer than the old one";
    subtitles_.load(base + ".mkv");
    EXPECT_EQ(shown(second), "far") << "cut after the dot and one letter";
    subtitles_.load(base + std::string(2000, 'x') + ".mkv");
    EXPECT_EQ(shown(second), "");
    subtitles_.load(std::string(100000, '.'));
    EXPECT_EQ(shown(second), "");
}

TEST_F(SubtitlesTest, WhatIsNoFileIsNotRead) {
    ASSERT_EQ(mkfifo(folder_.path("pipe.srt").c_str(), 0600), 0);
    subtitles_.load(folder_.path("pipe.mp4"));  // nobody writes: this must not wait
    EXPECT_EQ(shown(second), "");
    std::filesystem::create_directory(folder_.path("folder.srt"));
    subtitles_.load(folder_.path("folder.mp4"));
    EXPECT_EQ(shown(second), "");
    std::filesystem::create_symlink("loop.srt", folder_.path("loop.srt"));
    subtitles_.load(folder_.path("loop.mp4"));
    EXPECT_EQ(shown(second), "");
    const WorkingFolder devices(folder_);
    std::filesystem::create_symlink("/dev/zero", "zero");
    subtitles_.load("zero");  // endless
    EXPECT_EQ(shown(second), "");
}

TEST_F(SubtitlesTest, HugeFilesAreReadInPart) {
    // As a film without an extension: 100 GB of nothing, with a subtitle at its start.
    const WorkingFolder here(folder_);
    write("film", cue("01,000", "02,000", "start"));
    std::filesystem::resize_file("film", std::uintmax_t{100} << 30);
    subtitles_.load("film");
    EXPECT_EQ(shown(second), "start");
}

TEST_F(SubtitlesTest, BothEndsAreInside) {
    load(cue("01,500", "04,000", "it"));
    EXPECT_EQ(shown(0), "");
    EXPECT_EQ(shown(1499999), "");
    EXPECT_EQ(shown(1500000), "it");
    EXPECT_EQ(shown(4500000), "it");
    EXPECT_EQ(shown(4500001), "");
}

TEST_F(SubtitlesTest, NextOneFollowsAtOnceAndNeverTheOneBefore) {
    load(cue("01,000", "02,000", "a") + cue("02,400", "03,000", "b") +
         cue("09,000", "09,100", "c"));
    EXPECT_EQ(shown(2 * second), "a");
    EXPECT_EQ(shown(2450000), "a") << "as long as it lasts, overlap or not";
    EXPECT_EQ(shown(2500001), "b");
    EXPECT_EQ(shown(2 * second), "") << "forwards only";
    EXPECT_EQ(shown(5 * second), "");
    EXPECT_EQ(shown(2450000), "") << "the gap left it behind";
    EXPECT_EQ(shown(9 * second), "c");
    EXPECT_EQ(shown(20 * second), "");
    EXPECT_EQ(shown(9 * second), "c") << "the last one is never left behind";
}

TEST_F(SubtitlesTest, SeveralAreLeftBehindAtOnce) {
    load(cue("01,000", "02,000", "a") + cue("03,000", "04,000", "b") +
         cue("05,000", "06,000", "c") + cue("07,000", "08,000", "d"));
    EXPECT_EQ(shown(5 * second), "c");
    EXPECT_EQ(shown(7 * second), "d");
}

TEST_F(SubtitlesTest, SeekMakesTheFirstOneFromThereOnCurrent) {
    load(cue("02,000", "03,000", "a") + cue("09,000", "11,000", "b") +
         cue("12,000", "13,000", "c"));
    subtitles_.seek(10 * second);
    EXPECT_EQ(shown(10500000), "") << "one that runs already is not shown";
    EXPECT_EQ(shown(12 * second), "c");
    subtitles_.seek(9 * second);
    EXPECT_EQ(shown(9 * second), "b") << "at its very start";
    subtitles_.seek(0);
    EXPECT_EQ(shown(2 * second), "a");
    subtitles_.seek(12000001);  // nothing starts later
    EXPECT_EQ(shown(2 * second), "a") << "the first one then";
}

TEST_F(SubtitlesTest, UnsortedListsGiveTheFirstInTheFile) {
    load(cue("12,000", "13,000", "c") + cue("02,000", "03,000", "a") +
         cue("09,000", "11,000", "b"));
    subtitles_.seek(8 * second);
    EXPECT_EQ(shown(12 * second), "c");
    EXPECT_EQ(shown(2 * second), "");
}

TEST_F(SubtitlesTest, LoadingStartsAtTheFirst) {
    load(cue("01,000", "02,000", "a") + cue("03,000", "04,000", "b"));
    EXPECT_EQ(shown(3 * second), "b");
    load(cue("01,000", "02,000", "new") + cue("03,000", "04,000", "newer"));
    EXPECT_EQ(shown(second), "new");
}

TEST_F(SubtitlesTest, SubtitleStaysUntilTheNextLoad) {
    load(cue("01,000", "02,000", "a") + cue("03,000", "04,000", "b"));
    const Subtitle* first = subtitles_.get_subtitle(second);
    ASSERT_NE(first, nullptr);
    subtitles_.seek(3 * second);
    subtitles_.get_subtitle(3 * second);
    EXPECT_EQ(first->text, "a\n");
    EXPECT_EQ(first->start, second);
}

// One thread jumps about in a film while another one shows it and opens the next.
TEST_F(SubtitlesTest, SeeksFromAnotherThread) {
    std::string content;
    for (int i = 10; i < 60; ++i)
        content += cue(std::to_string(i) + ",000", std::to_string(i) + ",300", std::to_string(i));
    write("film.srt", content);
    std::atomic<bool> over{false};
    std::thread demuxing([&] {
        for (unsigned long t = 0; !over; t = (t + 7 * second) % (60 * second))
            subtitles_.seek(t);
    });
    int found = 0;
    for (int load = 0; load < 20; ++load) {
        subtitles_.load(folder_.path("film.mp4"));
        for (unsigned long t = 10 * second; t < 60 * second; t += second / 4) {
            const Subtitle* subtitle = subtitles_.get_subtitle(t);
            if (!subtitle) continue;
            ++found;
            EXPECT_LE(subtitle->start, t);
            EXPECT_GE(subtitle->end, t);
        }
    }
    over = true;
    demuxing.join();
    subtitles_.seek(30 * second);
    EXPECT_EQ(shown(30 * second), "30");
    EXPECT_GT(found, 0);
}

}  // namespace
