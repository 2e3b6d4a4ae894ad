// SPDX-License-Identifier: MIT
// What is drawn where, without a context.
#include "gui/browser_rig.h"
#include "gui/gl_font.h"
#include "support/drawing_recorder.h"

#include <algorithm>

namespace {

using Rows = std::vector<std::string>;

void expect_box(const Drawn& drawn, const rectf& r) {
    EXPECT_FLOAT_EQ(drawn.box().x, r.x);
    EXPECT_FLOAT_EQ(drawn.box().y, r.y);
    EXPECT_FLOAT_EQ(drawn.box().w, r.w);
    EXPECT_FLOAT_EQ(drawn.box().h, r.h);
}

void expect_color(const gl_color& c, float r, float g, float b, float a) {
    EXPECT_FLOAT_EQ(c.r, r);
    EXPECT_FLOAT_EQ(c.g, g);
    EXPECT_FLOAT_EQ(c.b, b);
    EXPECT_FLOAT_EQ(c.a, a);
}

// All kinds in one list, in order.
TEST_F(BrowserTest, BlackPageWithTwoLinesComesFirst) {
    DrawingRecorder recorder;
    gui.draw();
    ASSERT_GE(recorder.drawn.size(), 3U);
    EXPECT_EQ(recorder.drawn[0].kind, Drawn::fill);
    expect_box(recorder.drawn[0], {0, 0, 800, 600});
    expect_color(recorder.drawn[0].color, 0, 0, 0, 1);
    constexpr float grey = 128.0F / 255.0F;
    for (const int i : {1, 2}) {
        const Drawn& line = recorder.drawn[static_cast<std::size_t>(i)];
        EXPECT_EQ(line.kind, Drawn::line);
        expect_box(line, {0, i == 1 ? 60.0F : 550.0F, 800, 0});
        expect_color(line.color, grey, grey, grey, 1);
    }
    EXPECT_EQ(recorder.of_kind(Drawn::text)[0].string, "VYX Media Browser");
    EXPECT_EQ(recorder.open_clips(), 0);
    EXPECT_EQ(recorder.open_transforms(), 0);
}

TEST_F(BrowserTest, IsDrawnAnewEveryTimeWithoutAList) {
    const ListCounts before = list_counts;
    for (int i = 0; i < 3; ++i) {
        DrawingRecorder recorder;
        gui.draw();
        EXPECT_FALSE(recorder.drawn.empty());
    }
    EXPECT_EQ(list_counts.recorded, before.recorded);
    EXPECT_EQ(list_counts.replayed, before.replayed);
    EXPECT_EQ(list_counts.named, before.named);
}

TEST_F(BrowserTest, FadesAndGrowsLikeOtherForms) {
    browser->hide();
    world.pass(0.2);
    DrawingRecorder recorder;
    gui.draw();
    EXPECT_NEAR(recorder.drawn[0].color.a, 0.5, 0.01);
    EXPECT_NEAR(recorder.drawn[0].box().w, 800 * 0.7071, 2);
}

TEST_F(BrowserTest, PathEndsAtTheRight) {
    DrawingRecorder recorder;
    gui.draw();
    std::pair<int, int> size;
    default_font.GetStringSize(top(), &size);
    const Drawn path = recorder.text(top());
    EXPECT_NEAR(path.points[0].x + 0.5F * static_cast<float>(size.first), 790, 0.01);
    EXPECT_NEAR(path.points[0].y, 45, 0.01);
    const Drawn title = recorder.text("VYX Media Browser");
    EXPECT_NEAR(title.points[0].x, 20, 0.01);
    EXPECT_NEAR(title.points[0].y, 45, 0.01);
}

TEST_F(BrowserTest, RowsStandBelowEachOther) {
    pretend({"../", "a.mp4", "b.mp4"}, 2);
    DrawingRecorder recorder;
    gui.draw();
    std::pair<int, int> size;
    default_font.GetStringSize("a.mp4", &size);
    const float text_height = 0.5F * static_cast<float>(size.second);
    const char* const rows[] = {"[..]", "a.mp4", "b.mp4"};
    for (int i = 0; i < 3; ++i) {
        const Drawn text = recorder.text(rows[i]);
        EXPECT_NEAR(text.points[0].x, 10, 0.01);
        EXPECT_NEAR(text.points[0].y,
                    62.0F + static_cast<float>(i) * 60.0F + (60.0F + text_height) / 2.0F, 0.01);
        EXPECT_TRUE(text.clipped);
        EXPECT_EQ(text.clip.y, 62);
        EXPECT_EQ(text.clip.h, 488);
    }
}

TEST_F(BrowserTest, ThumbnailsOfFilesInViewAreAskedForOnEveryDraw) {
    Rows rows{"../", "sub/", "[x].mp4"};
    for (int i = 0; i < 40; ++i)
        rows.push_back("film " + std::to_string(i) + ".mp4");
    pretend(rows, 3);
    for (int draw = 0; draw < 3; ++draw) {
        player.asked.clear();
        DrawingRecorder recorder;
        gui.draw();
        ASSERT_EQ(player.asked.size(), 7U) << "nine rows are in view, two of them folders";
        EXPECT_EQ(player.asked[0], path("[x].mp4"));
        EXPECT_EQ(player.asked[6], path("film 5.mp4"));
    }
    browser->list->scroll({0, 20 * 60 + 30}, true);
    player.asked.clear();
    DrawingRecorder recorder;
    gui.draw();
    EXPECT_EQ(player.asked, files_in_view());
    EXPECT_EQ(player.asked.size(), 9U);
    EXPECT_EQ(player.asked[0], path("film 17.mp4"));
}

TEST_F(BrowserTest, NothingIsAskedForWhileHidden) {
    pretend({"../", "a.mp4"}, 2);
    browser->hide();
    world.pass(0.5);
    player.asked.clear();
    DrawingRecorder recorder;
    gui.draw();
    EXPECT_TRUE(recorder.drawn.empty());
    EXPECT_TRUE(player.asked.empty());
}

TEST_F(BrowserTest, NamesAreShownInOneLineOfWhatTheFontHas) {
    pretend({"../", "a\nb\t.mp4", "\xC3\xBC\xE2\x82\xAC.mp4", "\xFF\x80.mp4", "x\ny/",
             "\x1F ~\x7F.mp4"},
            3);
    DrawingRecorder recorder;
    gui.draw();
    recorder.text("a?b?.mp4");
    recorder.text("??.mp4");
    recorder.text("?.mp4");
    recorder.text("[x?y]");
    recorder.text("? ~\x7F.mp4");
}

TEST_F(BrowserTest, SelectedRowIsHighlighted) {
    pretend({"../", "a.mp4", "b.mp4"}, 2);
    browser->select("b.mp4");
    DrawingRecorder recorder;
    gui.draw();
    const std::vector<Drawn> fills = recorder.of_kind(Drawn::fill);
    const bool highlighted = std::any_of(fills.begin(), fills.end(), [](const Drawn& fill) {
        const rectf box = fill.box();
        return box.x == 0 && box.y == 62 + 2 * 60 + 1 && box.w == 800 && box.h == 59;
    });
    EXPECT_TRUE(highlighted);
}

}  // namespace
