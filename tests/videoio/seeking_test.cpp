// SPDX-License-Identifier: MIT
#include "videoio/video_fixture.h"

#include <cmath>
#include <limits>
#include <ostream>
#include <vector>

namespace {

// Frames of a film in the order of display, as they are without any seek.
class Frames {
  public:
    explicit Frames(const std::string& name) : all_(ReadFilm(clip(name)).all()) {}

    // The place of a frame that has this time and is the same byte for byte; -1 for none.
    int place(double seconds, const Bytes& bytes) const {
        for (std::size_t i = 0; i < all_.size(); ++i) {
            if (std::abs(all_[i].seconds - seconds) < 1e-6) {
                return all_[i].bytes == bytes ? static_cast<int>(i) : -1;
            }
        }
        return -1;
    }
    int count() const { return static_cast<int>(all_.size()); }

  private:
    std::vector<TimedBytes> all_;
};

// Reads on to the end after a seek. Returns the places of the frames.
std::vector<int> places(ReadFilm& film, const Frames& frames, std::size_t most = SIZE_MAX) {
    std::vector<int> result;
    while (result.size() < most && film.next()) {
        result.push_back(frames.place(film.read.frame_time, film.frame));
        EXPECT_GE(result.back(), 0) << "another frame at " << film.read.frame_time;
    }
    return result;
}

// Without the frames from before a seek, those that follow one after the other remain.
std::vector<int> without_held_back(const std::vector<int>& all, int first) {
    std::size_t i = 0;
    while (i < all.size() && all[i] != first)
        ++i;
    return {all.begin() + static_cast<std::ptrdiff_t>(i), all.end()};
}

struct Seekable {
    const char* name;
    bool no_delay;  ///< the decoder holds nothing back
};

class Seeking : public ::testing::TestWithParam<Seekable> {};

// Key frames of these are 25 apart, or every frame is one.
TEST_P(Seeking, FramesAfterItAreTheOnesThatBelongThere) {
    const Frames frames(GetParam().name);
    const int group = GetParam().no_delay ? 1 : 25;
    const auto key_at_or_after = [&](double seconds) {
        const int key = static_cast<int>(std::ceil(seconds * 25.0 / group - 1e-6)) * group;
        return key < frames.count() ? key : (frames.count() - 1) / group * group;
    };
    ReadFilm film(clip(GetParam().name));
    for (const double seconds : {2.0, 0.0, 1.2, 3.4, -5.0, 100.0, 2.96, 1.0}) {
        ASSERT_EQ(film.seek(seconds), 0) << seconds;
        EXPECT_EQ(film.seek_error, "");
        const int first = key_at_or_after(std::max(seconds, 0.0));
        const std::vector<int> read = without_held_back(places(film, frames, 40), first);
        ASSERT_FALSE(read.empty()) << seconds;
        for (std::size_t i = 0; i < read.size(); ++i)
            EXPECT_EQ(read[i], first + static_cast<int>(i)) << "after " << seconds;
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, Seeking,
                         ::testing::Values(Seekable{"h264.mp4", false},
                                           Seekable{"h264_nob.mp4", false},
                                           Seekable{"mjpeg.avi", true}),
                         film_test_name_of<Seekable>);

struct Landing {
    double seconds;
    int place;  ///< of the first frame after the seek
};

struct Landings {
    const char* name;
    int count;  ///< of frames
    std::vector<Landing> landings;
};

void PrintTo(const Landings& film, std::ostream* out) {
    *out << film.name;
}

// Films whose containers search for time stamps, and films whose pictures around a key frame are
// put together from both sides of it: none may come from what was decoded before the seek.
class Lands : public ::testing::TestWithParam<Landings> {};

TEST_P(Lands, AtOnceFromAnywhere) {
    const Frames frames(GetParam().name);
    ASSERT_EQ(frames.count(), GetParam().count);
    for (const auto& [seconds, place] : GetParam().landings) {
        ReadFilm film(clip(GetParam().name));
        ASSERT_EQ(film.seek(seconds), 0) << seconds;
        const std::vector<int> read = places(film, frames);
        ASSERT_EQ(static_cast<int>(read.size()), frames.count() - place) << "after " << seconds;
        for (std::size_t i = 0; i < read.size(); ++i)
            EXPECT_EQ(read[i], place + static_cast<int>(i)) << "after " << seconds;
        EXPECT_STREQ(film.read.errorMsg, "read_and_decode failed: End of file\n");
    }
}

TEST_P(Lands, OneSeekAfterTheOther) {
    const Frames frames(GetParam().name);
    ReadFilm film(clip(GetParam().name));
    ASSERT_TRUE(film.next());
    for (const auto& [seconds, place] : GetParam().landings) {
        ASSERT_EQ(film.seek(seconds), 0) << seconds;
        const std::vector<int> read = without_held_back(places(film, frames), place);
        EXPECT_EQ(static_cast<int>(read.size()), frames.count() - place) << "after " << seconds;
    }
}

TEST_P(Lands, WithKeyFramesOnly) {
    const Frames frames(GetParam().name);
    for (const auto& [seconds, place] : GetParam().landings) {
        ReadFilm film(clip(GetParam().name));
        film.read.key_frame_only = 1;
        ASSERT_EQ(film.seek(seconds), 0) << seconds;
        ASSERT_TRUE(film.next()) << "after " << seconds;
        EXPECT_EQ(frames.place(film.read.frame_time, film.frame), place) << "after " << seconds;
    }
}

// Key frames every 12 frames, the first at 0.54 s; B frames between: they are decoded 0.08 s before
// their time, and the one at 1.02 s is passed by a search for 1 s.
const std::vector<Landing> programme = {{3.2, 72}, {1.0, 24}, {0.0, 0},   {0.54, 0},
                                        {-5.0, 0}, {1.7, 36}, {0.55, 12}, {4.39, 96},
                                        {4.5, 96}, {1e9, 96}, {2.0, 48},  {4.0, 96}};
// Key frames every second; the sound begins before the picture.
const std::vector<Landing> late = {{0.0, 0},     {1001.0, 0},  {1001.39, 0}, {1001.4, 0},
                                   {1001.5, 25}, {1003.0, 50}, {1004.3, 75}, {1004.6, 75},
                                   {1005.4, 75}, {100000, 75}, {-1.0, 0}};
const std::vector<Landing> open_groups = {{3.2, 75}, {1.0, 25}, {0.0, 0},
                                          {1.7, 50}, {-2.0, 0}, {100.0, 75}};
const std::vector<Landing> bare = {{1.0, 36}, {0.0, 0}, {-1.0, 0}, {0.3, 12}, {5.0, 48}};

INSTANTIATE_TEST_SUITE_P(Clips, Lands,
                         ::testing::Values(Landings{"mpeg1.mpg", 100, programme},
                                           Landings{"mpeg2.mpg", 100, programme},
                                           Landings{"late_start.ts", 100, late},
                                           Landings{"hevc_open_gop.mkv", 100, open_groups},
                                           Landings{"h264.mkv", 100, open_groups},
                                           Landings{"raw.m4v", 50, bare}),
                         film_test_name_of<Landings>);

TEST(SeekingFilms, FilmsWithoutTimeStampsGoBackToTheirStart) {
    const std::vector<TimedBytes> frames = ReadFilm(clip("raw.h264")).all();
    ReadFilm film(clip("raw.h264"));
    film.all(30);
    for (const double seconds : {0.0, -1.0}) {
        ASSERT_EQ(film.seek(seconds), 0) << film.seek_error;
        // What was held back comes first.
        const std::vector<TimedBytes> read = film.all();
        ASSERT_GE(read.size(), frames.size());
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const TimedBytes& again = read[read.size() - frames.size() + i];
            EXPECT_EQ(again.bytes, frames[i].bytes) << i;
            EXPECT_NEAR(again.seconds, frames[i].seconds, 1e-9) << "times begin anew";
        }
    }
}

// Nothing to go back to is the end as ever.
TEST(SeekingFilms, WithoutAnyKeyFrame) {
    ReadFilm film(clip("no_keys.mkv"));
    film.seek(1.0);
    EXPECT_FALSE(film.next());
    EXPECT_STREQ(film.read.errorMsg, "read_and_decode failed: End of file\n");
    EXPECT_FALSE(film.next()) << "and it stays";
    EXPECT_STREQ(film.read.errorMsg, "read_and_decode failed: End of file\n");
}

TEST(SeekingFilms, WhatIsHeldBackComesFirst) {
    const Frames frames("h264.mp4");
    ReadFilm film(clip("h264.mp4"));
    const std::vector<int> before = places(film, frames, 10);
    EXPECT_EQ(before.back(), 9);
    ASSERT_EQ(film.seek(2.0), 0);
    ASSERT_EQ(film.seek(3.0), 0);
    const std::vector<int> after = places(film, frames);
    EXPECT_EQ(after.front(), 10) << "the decoder had it ready";
    EXPECT_EQ(without_held_back(after, 50).size(), 0U) << "the second of two seeks counts";
    EXPECT_EQ(without_held_back(after, 75).size(), 25U);
}

TEST(SeekingFilms, AtOnceAndFromTheEnd) {
    const Frames frames("h264.mp4");
    ReadFilm film(clip("h264.mp4"));
    ASSERT_EQ(film.seek(2.0), 0);
    EXPECT_EQ(places(film, frames).size(), 50U) << "nothing was held back";
    EXPECT_STREQ(film.read.errorMsg, "read_and_decode failed: End of file\n");
    ASSERT_EQ(film.seek(0.0), 0);
    EXPECT_EQ(places(film, frames).size(), 100U);
}

TEST(SeekingFilms, ToWhatIsNoTime) {
    const Frames frames("h264.mp4");
    ReadFilm film(clip("h264.mp4"));
    EXPECT_EQ(film.seek(std::numeric_limits<double>::quiet_NaN()), 1);
    EXPECT_EQ(film.seek_error, "error while seeking\n");
    EXPECT_EQ(places(film, frames, 5).size(), 5U) << "reading goes on";
    for (const double seconds : {std::numeric_limits<double>::infinity(), 1e300}) {
        EXPECT_EQ(film.seek(seconds), 0);
        EXPECT_EQ(without_held_back(places(film, frames), 75).size(), 25U) << "the last key frame";
    }
    EXPECT_EQ(film.seek(-std::numeric_limits<double>::infinity()), 0);
    EXPECT_EQ(without_held_back(places(film, frames), 0).size(), 100U);
}

TEST(SeekingFilms, WhereThereIsNoWay) {
    ReadFilm film(clip("raw.h264"));
    EXPECT_EQ(film.seek(1.0), 1);
    EXPECT_EQ(film.seek_error, "error while seeking\n");
}

}  // namespace
