// SPDX-License-Identifier: MIT
// Subtitles follow the film that is open, wherever it goes.

#include "media/subtitles.h"

#include "player/hud.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"
#include "support/temporary_folder.h"

#include <cmath>
#include <fstream>

namespace {

class SubtitlePlayback : public PlayerTest {
  protected:
    void TearDown() override {
        PlayerTest::TearDown();
        subtitles.load("");
    }

    // A clip of four seconds under another name, with two subtitles. Without sound: there is one
    // device.
    VideoState* open_with_subtitles(const std::string& name, const std::string& text) {
        return open_clip_with_subtitles("h264_nob.mp4", name, text);
    }
    VideoState* open_clip_with_subtitles(const std::string& source, const std::string& name,
                                         const std::string& text) {
        const std::string path = folder_.path(name);
        const std::string extension = source.substr(source.find('.'));
        std::filesystem::create_symlink(clip(source), path + extension);
        std::ofstream(path + ".srt") << "1\n0:0:0,500 --> 0:0:1,0\n"
                                     << text << " one\n\n"
                                     << "2\n0:0:2,500 --> 0:0:3,0\n"
                                     << text << " two\n\n";
        return open(path + extension);
    }
    static std::string shown(unsigned long t) {
        const Subtitle* found = subtitles.get_subtitle(t);
        return found ? found->text : "";
    }
    void go_to(VideoState* is, std::int64_t target) {
        stream_seek(is, target, 0);
        ASSERT_TRUE(wait_until([&] {
            if (VideoPicture* picture = head(is)) {
                if (picture->seeks != is->seeks_done) release_picture(is);
            }
            return !is->seek_request && is->seeks_done > 0 && is->seeks_seen == is->seeks_done;
        }));
    }

    TemporaryFolder folder_;
};

TEST_F(SubtitlePlayback, AreThereWhenTheFilmIsOpen) {
    open_with_subtitles("film", "text");
    EXPECT_EQ(shown(600000), "text one\n");
    open("h264_nob.mp4");
    EXPECT_EQ(shown(600000), "") << "this one has none";
}

TEST_F(SubtitlePlayback, SeeksMoveThem) {
    VideoState* is = open_with_subtitles("film", "text");
    take(is, 5);
    go_to(is, 2000000);
    EXPECT_EQ(shown(600000), "") << "left behind";
    EXPECT_EQ(shown(2600000), "text two\n");
    go_to(is, 0);
    EXPECT_EQ(shown(600000), "text one\n");
}

// A recording's time stamps begin anywhere; its subtitles count from its start.
class LateSubtitles : public SubtitlePlayback {
  protected:
    void SetUp() override {
        SubtitlePlayback::SetUp();
        is_ = open_clip_with_subtitles("late_start.ts", "film", "text");
        std::ofstream(folder_.path("film.srt")) << "1\n00:00:01,000 --> 00:00:02,000\nfirst\n\n"
                                                << "2\n00:00:03,000 --> 00:00:03,500\nlast\n\n";
        subtitles.load(folder_.path("film.ts"));
        ASSERT_TRUE(wait_until([&] { return head(is_) != nullptr; }));
        ASSERT_NEAR(static_cast<double>(is_->start_time), 1001.4e6, 0.2e6);
    }

    // Lets pictures go one by one until the film is at `end`, and notes at which places of it the
    // subtitle `text` is shown and at which it is not.
    struct Places {
        std::vector<std::int64_t> with;
        std::vector<std::int64_t> without;
    };
    Places watch(const std::string& text, std::int64_t end) {
        Places places;
        EXPECT_TRUE(wait_until([&] {
            const std::int64_t position = playing_position(is_);
            const Subtitle* subtitle = current_subtitle(is_);
            // The film may just have gone on, or be on its way.
            if (position == playing_position(is_) && is_->seeks_seen == is_->seeks_done) {
                const bool shown = subtitle && subtitle->text == text;
                (shown ? places.with : places.without).push_back(position);
            }
            if (head(is_)) release_picture(is_);
            return position >= end;
        }));
        return places;
    }
    // That the first subtitle is shown from 1 s on until half a second after its end.
    static void expect_first(const Places& places) {
        EXPECT_GT(places.with.size(), 20U) << "25 pictures a second";
        EXPECT_GT(places.without.size(), 5U);
        for (const std::int64_t place : places.with) {
            EXPECT_GE(place, 1000000);
            EXPECT_LE(place, 2500000);
        }
        // Packets do not come in the order of their times: once one is beyond the end, it is over.
        constexpr std::int64_t reordering = 200000;  // measured: up to 160 ms
        for (const std::int64_t place : places.without)
            EXPECT_TRUE(place < 1000000 || place > 2500000 - reordering) << place;
    }

    VideoState* is_ = nullptr;
};

TEST_F(LateSubtitles, AreShownAtTheirTimesInTheFilm) {
    expect_first(watch("first\n", 2800000));
}

TEST_F(LateSubtitles, AreShownAtTheirTimesAfterASeek) {
    watch("first\n", 2800000);
    go_to(is_, is_->start_time);
    expect_first(watch("first\n", 2800000));
    go_to(is_, is_->start_time + 2600000);
    EXPECT_EQ(shown(1500000), "") << "left behind";
    EXPECT_EQ(shown(3100000), "last\n");
}

TEST_F(LateSubtitles, StatusLineAgreesWithTheTransportBar) {
    for (const std::int64_t target : {500000, 1000000}) {
        go_to(is_, is_->start_time + target);
        // With every slot full neither moves any more.
        ASSERT_TRUE(wait_until([&] {
            const double bar = is_->position;
            const auto line = static_cast<double>(hud_status(is_, 0).position) / 1e6;
            return bar > 0.0 && std::abs(bar - line) < 2e-6;
        })) << target;
        EXPECT_LT(is_->position, is_->duration) << "not at 1002 seconds";
    }
    HudStatus status = hud_status(is_, 0);
    status.wanted = false;
    status.scanning = true;
    EXPECT_EQ(status_line(status).substr(0, 7), "00:00:0");
}

TEST_F(SubtitlePlayback, SeeksOfAnotherFilmDoNot) {
    VideoState* before = open_with_subtitles("before", "old");
    take(before, 5);
    open_with_subtitles("film", "new");
    go_to(before, 2000000);
    EXPECT_EQ(shown(600000), "new one\n");
}

// On the way back positions are those of the old place for a while. They must not leave behind what
// lies between.
TEST_F(SubtitlePlayback, PositionsOfTheOldPlaceDoNotCount) {
    VideoState* is = open_with_subtitles("film", "text");
    take(is, 5);
    go_to(is, 3000000);
    for (int round = 0; round < 5; ++round) {
        stream_seek(is, 0, -1);
        bool found = false;
        EXPECT_TRUE(wait_until([&] {
            const Subtitle* subtitle = current_subtitle(is);
            found = subtitle && subtitle->text == "text one\n";
            if (head(is)) release_picture(is);
            return found;
        })) << round;
        EXPECT_TRUE(wait_until([&] {
            current_subtitle(is);
            if (head(is)) release_picture(is);
            return playing_position(is) > 3000000;
        })) << round;
    }
}

}  // namespace
