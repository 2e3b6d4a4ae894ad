// SPDX-License-Identifier: MIT
#include "videoio/video_fixture.h"

#include <cmath>
#include <limits>
#include <map>

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

// Pictures around a key frame of these are put together from both sides of it: none may come from
// what was decoded before the seek.
class OpenGroups : public ::testing::TestWithParam<const char*> {};

TEST_P(OpenGroups, NothingFromBeforeShinesThrough) {
    const Frames frames(GetParam());
    ReadFilm film(clip(GetParam()));
    for (const double seconds : {3.2, 1.0, 2.0, 0.0, 1.7}) {
        ASSERT_EQ(film.seek(seconds), 0) << seconds;
        EXPECT_GE(places(film, frames, 20).size(), 10U);
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, OpenGroups,
                         ::testing::Values("mpeg1.mpg", "mpeg2.mpg", "hevc_open_gop.mkv",
                                           "h264.mkv"),
                         film_test_name_of<const char*>);

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
