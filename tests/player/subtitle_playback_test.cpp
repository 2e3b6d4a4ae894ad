// SPDX-License-Identifier: MIT
// Subtitles follow the film that is open, wherever it goes.

#include "media/subtitles.h"

#include "player/hud.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"
#include "support/temporary_folder.h"

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
        const std::string path = folder_.path(name);
        std::filesystem::create_symlink(clip("h264_nob.mp4"), path + ".mp4");
        std::ofstream(path + ".srt") << "1\n0:0:0,500 --> 0:0:1,0\n"
                                     << text << " one\n\n"
                                     << "2\n0:0:2,500 --> 0:0:3,0\n"
                                     << text << " two\n\n";
        return open(path + ".mp4");
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
