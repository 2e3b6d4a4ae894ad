// SPDX-License-Identifier: MIT
// Texts, places and opacities of what lies over the picture, from given times and states.

#include "player/hud.h"

#include "core/settings.h"
#include "gui/gl_font.h"
#include "gui/widget_text.h"
#include "platform/resources.h"
#include "player/clocks.h"
#include "player/infolabel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::int64_t second = 1000000;

class Infolabel : public ::testing::Test {
  protected:
    void SetUp() override {
        infolabel_text = "label";
        infolabel_alpha = 1.0F;
        infolabel_popup_time = popup;
    }
    void TearDown() override { infolabel_text.clear(); }

    static constexpr std::int64_t popup = 5000000000;
};

TEST_F(Infolabel, StaysAndFadesAndGoes) {
    struct Moment {
        std::int64_t after;
        float alpha;
    };
    for (const Moment& moment : {Moment{0, 1.0F},
                                 {1500000, 1.0F},
                                 {1600000, 0.9F},
                                 {2000000, 0.5F},
                                 {2250000, 0.25F},
                                 {2500000, 0.0F}}) {
        fade_infolabel(popup + moment.after);
        EXPECT_FLOAT_EQ(infolabel_alpha, moment.alpha) << moment.after;
        EXPECT_EQ(infolabel_text, "label") << moment.after;
    }
    fade_infolabel(popup + 2500001);
    EXPECT_EQ(infolabel_text, "");
    EXPECT_EQ(infolabel_alpha, 0.0F);
}

TEST_F(Infolabel, NewOneIsOpaqueAgain) {
    set_wall_clock([] { return popup + 2 * second; });
    fade_infolabel(wall_clock());
    set_infolabel("other");
    fade_infolabel(wall_clock());
    set_wall_clock(nullptr);
    EXPECT_EQ(infolabel_text, "other");
    EXPECT_EQ(infolabel_alpha, 1.0F);
    EXPECT_EQ(infolabel_popup_time, popup + 2 * second);
}

TEST_F(Infolabel, ClockThatWasSetBackChangesNothing) {
    fade_infolabel(popup - 1000 * second);
    EXPECT_EQ(infolabel_alpha, 1.0F);
}

HudStatus seeking_at(std::int64_t position) {
    HudStatus status;
    status.scanning = true;
    status.position = position;
    return status;
}

TEST(StatusLine, NothingWhenOffAndPlaying) {
    HudStatus status = seeking_at(second);
    status.scanning = false;
    EXPECT_EQ(status_line(status), "");
}

TEST(StatusLine, TimeWhileScanningWithStatusOff) {
    EXPECT_EQ(status_line(seeking_at(0)), "00:00:00:000");
    EXPECT_EQ(status_line(seeking_at(999)), "00:00:00:000");
    EXPECT_EQ(status_line(seeking_at(1234567)), "00:00:01:234");
    EXPECT_EQ(status_line(seeking_at(59999999)), "00:00:59:999");
    EXPECT_EQ(status_line(seeking_at(60 * second)), "00:01:00:000");
    EXPECT_EQ(status_line(seeking_at(2147483647)), "00:35:47:483") << "the last right hour";
}

// From 2^31 microseconds on hours are those of a negative number, taken as a large one.
TEST(StatusLine, HoursBeyondThirtyFiveMinutes) {
    EXPECT_EQ(status_hours(2147483647), 0);
    // 2^64 - 2^31, divided by 3.6e9, is 5124095575.7...; without the bits above 32: 829128279.
    EXPECT_EQ(status_hours(2147483648), 829128279);
    EXPECT_EQ(status_line(seeking_at(2147483648)), "829128279:35:47:483");
    EXPECT_EQ(status_hours(3600 * second), 829128279);
    EXPECT_EQ(status_line(seeking_at(3600 * second)), "829128279:00:00:000");
    EXPECT_EQ(status_hours(4294967295), 829128280) << "minus one";
    EXPECT_EQ(status_hours(4294967296), 0) << "only the low half counts";
    EXPECT_EQ(status_line(seeking_at(4294967296 + 3600 * second / 2)), "00:41:34:967");
    EXPECT_EQ(status_hours(INT64_MAX), 829128280);
}

TEST(StatusLine, ClocksWhenOn) {
    HudStatus status;
    status.wanted = true;
    status.audio_ahead = -0.01234;
    status.video_ahead = 0.0;
    status.fps = 25;
    EXPECT_EQ(status_line(status), "AUDIO:-0.012 VIDEO:+0.000 [FPS:025]");
    status.scanning = true;
    status.audio_ahead = 12.5;
    status.video_ahead = -1.0005;
    status.fps = 1234;
    EXPECT_EQ(status_line(status), "AUDIO:+12.500 VIDEO:-1.000 [FPS:1234]")
        << "also while scanning";
}

class HudStatusTest : public ::testing::Test {
  protected:
    void SetUp() override {
        set_wall_clock([] { return 100 * second; });
        master_settings.status.setValue(0);
        is_.sync_source = sync_video;
        is_.video_current_pts = 10.0;
        is_.video_current_pts_time = 100 * second;
        is_.audio_clock = 9.5;
        is_.audio_clock_time = 100 * second;
        is_.video_info.time_base = {1, 90000};
        is_.audio_info.time_base = {1, 48000};
        global_video_pkt_pts = 90000 * 3;
    }
    void TearDown() override {
        set_wall_clock(nullptr);
        master_settings.status.setValue(master_settings.status.default_value());
        global_video_pkt_pts = AV_NOPTS_VALUE;
    }

    VideoState is_;
};

TEST_F(HudStatusTest, TellsOfTheFilm) {
    is_.video_stream_index = 0;
    is_.audio_stream_index = 1;
    HudStatus status = hud_status(&is_, 30);
    EXPECT_FALSE(status.wanted);
    EXPECT_FALSE(status.scanning);
    EXPECT_EQ(status.position, 3 * second);
    EXPECT_DOUBLE_EQ(status.audio_ahead, -0.5);
    EXPECT_DOUBLE_EQ(status.video_ahead, 0.0);
    EXPECT_EQ(status.fps, 30);
    master_settings.status.setValue(1);
    EXPECT_TRUE(hud_status(&is_, 30).wanted);
}

TEST_F(HudStatusTest, BothWaysOfScanningCount) {
    is_.rewind = true;
    EXPECT_TRUE(hud_status(&is_, 0).scanning);
    is_.rewind = false;
    is_.fast_forward = true;
    EXPECT_TRUE(hud_status(&is_, 0).scanning);
}

TEST_F(HudStatusTest, RewindingShowsTheTimeWithStatusOff) {
    is_.video_stream_index = 0;
    is_.rewind = true;
    EXPECT_EQ(status_line(hud_status(&is_, 0)), "00:00:03:000");
}

TEST_F(HudStatusTest, MissingStreamsAreNotAheadOfAnything) {
    is_.audio_clock_time = 0;  // never set
    is_.video_stream_index = 0;
    EXPECT_EQ(hud_status(&is_, 0).audio_ahead, 0.0);
    is_.video_stream_index = -1;
    is_.audio_stream_index = 0;
    is_.audio_clock_time = 100 * second;
    is_.video_current_pts_time = 0;
    EXPECT_EQ(hud_status(&is_, 0).video_ahead, 0.0);
    EXPECT_EQ(hud_status(&is_, 0).audio_ahead, 0.0) << "it is the master";
}

TEST_F(HudStatusTest, PositionComesFromTheStreamThatIsThere) {
    EXPECT_EQ(playing_position(&is_), 0) << "no stream";
    is_.audio_stream_index = 0;
    global_video_pkt_pts = 48000 * 7;
    EXPECT_EQ(playing_position(&is_), 7 * second);
    is_.video_stream_index = 1;
    global_video_pkt_pts = 90000 * 5 + 45;
    EXPECT_EQ(playing_position(&is_), 5000500);
    global_video_pkt_pts = AV_NOPTS_VALUE;
    EXPECT_EQ(playing_position(&is_), 0);
    global_video_pkt_pts = -90000;
    EXPECT_EQ(playing_position(&is_), 0) << "nothing lies before the start";
}

// Recordings begin at any time.
TEST_F(HudStatusTest, PositionCountsFromTheStartOfTheFilm) {
    is_.video_stream_index = 0;
    is_.start_time = 1001 * second;
    const auto at = [this](std::int64_t milliseconds) {
        global_video_pkt_pts = 90 * milliseconds;
        return playing_position(&is_);
    };
    EXPECT_EQ(at(1001000), 0);
    EXPECT_EQ(at(1002234), 1234000);
    EXPECT_EQ(at(1000999), 0) << "nothing lies before the start";
    EXPECT_EQ(at(0), 0);
    is_.fast_forward = true;
    at(1002234);
    EXPECT_EQ(status_line(hud_status(&is_, 0)), "00:00:01:234");
    is_.start_time = -second / 2;
    EXPECT_EQ(at(1000), 1500000);
    global_video_pkt_pts = AV_NOPTS_VALUE;
    EXPECT_EQ(playing_position(&is_), 0) << "no packet yet";
    is_.start_time = INT64_MIN;
    EXPECT_EQ(time_in_film(&is_, INT64_MAX), INT64_MAX);
}

TEST(Vsync, WhereTheDisplayIsReached) {
    EXPECT_TRUE(vsync_is_wanted(59, 60));
    EXPECT_FALSE(vsync_is_wanted(58, 60));
    EXPECT_TRUE(vsync_is_wanted(200, 60));
}

TEST(SubtitleFade, LastHalfSecond) {
    const std::uint64_t end = 10 * second;
    EXPECT_FLOAT_EQ(subtitle_fade(end, 0), 1.0F);
    EXPECT_FLOAT_EQ(subtitle_fade(end, 9500000), 1.0F);
    EXPECT_FLOAT_EQ(subtitle_fade(end, 9750000), std::pow(0.5F, 0.25F));
    EXPECT_NEAR(subtitle_fade(end, 9750000), 0.84F, 0.001F);
    EXPECT_FLOAT_EQ(subtitle_fade(end, 9999500), std::pow(0.001F, 0.25F));
    EXPECT_EQ(subtitle_fade(end, 10 * second), 0.0F);
    EXPECT_EQ(subtitle_fade(end, 11 * second), 0.0F);
    EXPECT_EQ(subtitle_fade(~std::uint64_t{0}, 0), 1.0F);
}

// With the measures of the built-in font.
class HudLayout : public ::testing::Test {
  protected:
    void SetUp() override {
        const unsigned char* data = nullptr;
        int size = 0;
        load_resource("GLF", "DEFAULT", &data, &size);
        default_font.Create(reinterpret_cast<const char*>(data), size, 0);
        ASSERT_GT(text_size("x").y, 20.0F);
    }
    void TearDown() override { default_font.Destroy(); }

    static HudInput window(float width, float height) {
        HudInput input;
        input.width = width;
        input.height = height;
        return input;
    }
    static std::vector<OverlayText> lines(const std::string& text, float width = 800.0F,
                                          float height = 600.0F) {
        return layout_subtitle({0, 10 * second, text}, 0, width, height);
    }
};

TEST_F(HudLayout, LabelStandsAtTheTopLeft) {
    HudInput input = window(800, 600);
    input.label = "one\ntwo";
    input.label_alpha = 0.5F;
    const auto texts = hud_texts(input);
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts[0].text, "one\ntwo");
    EXPECT_EQ(texts[0].x, 50.0F);
    EXPECT_EQ(texts[0].y, 50.0F);
    EXPECT_EQ(texts[0].scale, 1.0F);
    EXPECT_EQ(texts[0].alpha, 0.5F);
    EXPECT_FALSE(texts[0].outlined);
    input.label.clear();
    EXPECT_TRUE(hud_texts(input).empty());
}

TEST_F(HudLayout, StatusLineEndsFiftyPixelsFromTheRightEdge) {
    HudInput input = window(1000, 600);
    input.status = seeking_at(1234567);
    const auto texts = hud_texts(input);
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts[0].text, "00:00:01:234");
    EXPECT_EQ(texts[0].x + text_size("00:00:01:234").x, 950.0F);
    EXPECT_EQ(texts[0].y, 50.0F);
    EXPECT_EQ(texts[0].alpha, 1.0F) << "opaque";
    EXPECT_FALSE(texts[0].outlined);
}

TEST_F(HudLayout, EverythingInTheOrderOfDrawing) {
    const Subtitle subtitle{0, 10 * second, "first\nsecond\n"};
    HudInput input = window(800, 600);
    input.label = "label";
    input.label_alpha = 1.0F;
    input.status = seeking_at(9750000);
    input.subtitle = &subtitle;
    const auto texts = hud_texts(input);
    ASSERT_EQ(texts.size(), 4U);
    EXPECT_EQ(texts[0].text, "label");
    EXPECT_EQ(texts[1].text, "00:00:09:750");
    EXPECT_EQ(texts[2].text, "first");
    EXPECT_EQ(texts[3].text, "second");
    EXPECT_FLOAT_EQ(texts[2].alpha, std::pow(0.5F, 0.25F));
    EXPECT_FLOAT_EQ(texts[3].alpha, std::pow(0.5F, 0.25F));
}

TEST_F(HudLayout, SubtitleLinesAreCentredBelowEachOther) {
    for (const float size : {0.5F, 1.0F, 2.0F}) {
        const float width = 800 * size;
        const float height = 600 * size;
        const auto found = lines("Hello\nto everybody\n", width, height);
        ASSERT_EQ(found.size(), 2U);
        for (const OverlayText& line : found) {
            EXPECT_FLOAT_EQ(line.scale, size);
            EXPECT_FLOAT_EQ(line.x, (width - text_size(line.text).x * size) * 0.5F);
            EXPECT_TRUE(line.outlined);
        }
        EXPECT_FLOAT_EQ(found[0].y, height - 80.0F);
        EXPECT_FLOAT_EQ(found[1].y, height - 80.0F + size * text_size("x").y);
    }
}

TEST_F(HudLayout, SmallerSideOfTheWindowGivesTheScale) {
    EXPECT_FLOAT_EQ(lines("x", 1600, 600)[0].scale, 1.0F);
    EXPECT_FLOAT_EQ(lines("x", 800, 1200)[0].scale, 1.0F);
    EXPECT_FLOAT_EQ(lines("x", 400, 600)[0].scale, 0.5F);
}

TEST_F(HudLayout, RunsOfNewlinesGiveNoEmptyLines) {
    const auto found = lines("\n\none\n\n\ntwo\n\n");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].text, "one");
    EXPECT_EQ(found[1].text, "two");
    EXPECT_TRUE(lines("").empty());
    EXPECT_TRUE(lines("\n\n\n").empty());
    EXPECT_EQ(lines("no end").at(0).text, "no end");
}

TEST_F(HudLayout, LinesBelowTheWindowAreLeftOut) {
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += std::to_string(i) + "\n";
    for (const float height : {100.0F, 600.0F, 4000.0F}) {
        const auto found = lines(text, height * 4 / 3, height);
        const float line = found[0].scale * text_size("0").y;
        EXPECT_GE(found.back().y, height) << "nothing that can be seen is missing";
        EXPECT_LE(found.back().y - line, height);
        EXPECT_EQ(found.back().text, std::to_string(found.size() - 1));
    }
}

TEST_F(HudLayout, OddWindows) {
    for (const auto& [width, height] : {std::pair{1.0F, 1.0F}, {8000.0F, 100.0F}, {64.0F, 48.0F}}) {
        for (const OverlayText& line : lines("some text\nand more\n", width, height)) {
            EXPECT_TRUE(std::isfinite(line.x) && std::isfinite(line.y));
            EXPECT_GT(line.scale, 0.0F);
        }
    }
}

}  // namespace
