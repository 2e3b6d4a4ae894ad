// SPDX-License-Identifier: MIT
// Small pictures, and the whole browser, as a driver draws them.
#include "gui/browser_rig.h"
#include "gui/forms_picture.h"
#include "gui/gl_font.h"
#include "gui/golden_picture.h"
#include "gui/thumbnail_drawing.h"
#include "support/drawing_recorder.h"
#include "support/gl_fixture.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

using Color = std::array<int, 3>;

constexpr Color red{255, 0, 0};
constexpr Color green{0, 255, 0};
constexpr Color blue{0, 0, 255};
constexpr Color yellow{255, 255, 0};
constexpr Color black{0, 0, 0};

// Red, green / blue, yellow: which way up it stands is seen.
object_ref<gl_texture_resource> quarters(int width, int height) {
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool right = x >= width / 2;
            const bool low = y >= height / 2;
            const Color& c = low ? (right ? yellow : blue) : (right ? green : red);
            for (const int component : c)
                bytes.push_back(static_cast<std::uint8_t>(component));
        }
    }
    return new gl_texture_resource(height, width, GL_RGB8, bytes.data());
}

struct Shape {
    int width;
    int height;
    int drawn_width;
};

// 16:9, 4:3, square, 2.39:1, upright, single rows and columns.
const Shape shapes[] = {{192, 108, 99}, {192, 144, 74},  {144, 144, 56}, {192, 80, 134},
                        {81, 144, 31},  {192, 1, 10752}, {1, 144, 0},    {1, 1, 56}};

class BrowserPictures : public GlTest, public BrowserRig {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        create_default_font();
    }
    void TearDown() override {
        player.thumbnails.clear();
        GlTest::TearDown();
    }

    PngPicture picture() { return drawn_picture(800, 600, {0, 0, 800, 600}, GuiWorld::draw); }
    static Color at(const PngPicture& picture, int x, int y) {
        const auto i = static_cast<std::size_t>(y * picture.width + x) * 3U;
        return {picture.bytes[i], picture.bytes[i + 1], picture.bytes[i + 2]};
    }
};

TEST_F(BrowserPictures, WidthKeepsTheShapeInWholeUnits) {
    for (const Shape& shape : shapes) {
        const gl_texture_resource texture(shape.height, shape.width, GL_RGB8, nullptr);
        EXPECT_EQ(thumbnail_width(texture, 56), shape.drawn_width)
            << shape.width << " x " << shape.height;
    }
    const gl_texture_resource flat(0, 100, GL_RGB8, nullptr);
    EXPECT_EQ(thumbnail_width(flat, 56), 0);
}

TEST_F(BrowserPictures, TextStandsRightOfThePicture) {
    for (const Shape& shape : shapes) {
        pretend({"../", "a.mp4", "b.mp4"}, 2);
        player.thumbnails[path("a.mp4")] = quarters(shape.width, shape.height);
        DrawingRecorder recorder(true);
        GuiWorld::draw();
        EXPECT_EQ(recorder.text("a.mp4").points[0].x,
                  static_cast<float>(10 + shape.drawn_width + 10));
        EXPECT_EQ(recorder.text("b.mp4").points[0].x, 10) << "it has none";
        EXPECT_EQ(recorder.text("[..]").points[0].x, 10);
    }
}

TEST_F(BrowserPictures, PictureStandsUprightInItsRow) {
    pretend({"../", "a.mp4"}, 2);
    player.thumbnails[path("a.mp4")] = quarters(192, 144);
    const PngPicture drawn = picture();
    // From (10, 62 + 60 + 2), 74 x 56.
    EXPECT_EQ(at(drawn, 10, 124), red);
    EXPECT_EQ(at(drawn, 40, 148), red);
    EXPECT_EQ(at(drawn, 83, 124), green);
    EXPECT_EQ(at(drawn, 55, 148), green);
    EXPECT_EQ(at(drawn, 10, 179), blue);
    EXPECT_EQ(at(drawn, 83, 179), yellow);
    EXPECT_EQ(at(drawn, 9, 150), black);
    EXPECT_EQ(at(drawn, 84, 150), black);
    EXPECT_EQ(at(drawn, 40, 123), black);
    EXPECT_EQ(at(drawn, 40, 180), black);
}

TEST_F(BrowserPictures, PicturesAreCutOffWhereTheListEnds) {
    std::vector<std::string> rows;
    for (int i = 0; i < 20; ++i) {
        rows.push_back(std::to_string(i));
        player.thumbnails[path(rows.back())] = quarters(192, 144);
    }
    pretend(rows, 2);
    browser->list->scroll({0, 30}, true);
    const PngPicture drawn = picture();
    EXPECT_EQ(at(drawn, 20, 63), blue) << "the lower half of the first row";
    EXPECT_EQ(at(drawn, 20, 58), black);
    EXPECT_EQ(at(drawn, 20, 530), red) << "the upper half of the last row in view";
    EXPECT_EQ(at(drawn, 20, 548), blue);
    EXPECT_EQ(at(drawn, 40, 553), black);
}

TEST_F(BrowserPictures, ScaleFollowsTheWindow) {
    resize(400, 300);
    pretend({"../", "a.mp4"}, 2);
    player.thumbnails[path("a.mp4")] = quarters(192, 144);
    const PngPicture drawn = drawn_picture(400, 300, {0, 0, 400, 300}, GuiWorld::draw);
    EXPECT_EQ(at(drawn, 6, 63), red);
    EXPECT_EQ(at(drawn, 41, 89), yellow);
    EXPECT_EQ(at(drawn, 43, 76), black);
}

TEST_F(BrowserPictures, HalfShownPicturesAreHalfOpaque) {
    pretend({"../", "a.mp4"}, 2);
    player.thumbnails[path("a.mp4")] = quarters(192, 144);
    browser->opacity = 0.5F;
    const PngPicture drawn = picture();
    const Color c = at(drawn, 20, 130);
    // Half of red over half of black over dark green.
    EXPECT_NEAR(c[0], 128 + 6, 3);
    EXPECT_NEAR(c[1], 77 / 4, 3);
    browser->opacity = 1.0F;
}

TEST_F(BrowserPictures, NothingStaysBoundOrSwitchedOn) {
    pretend({"../", "a.mp4"}, 2);
    player.thumbnails[path("a.mp4")] = quarters(192, 144);
    picture();
    GLint bound = -1;
    glGetIntegerv(GL_TEXTURE_BINDING_RECTANGLE, &bound);
    EXPECT_EQ(bound, 0);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_RECTANGLE));
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
}

TEST_F(BrowserPictures, OnePictureLeavesNothingSwitchedOn) {
    const object_ref<gl_texture_resource> texture = quarters(192, 144);
    draw_thumbnail(*texture, 0, 0, 74, 56);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_RECTANGLE));
}

TEST_F(BrowserPictures, WholeBrowser) {
    const std::string driver = foreign_driver();
    // The kept picture is llvmpipe's; with another driver (softpipe) the largest difference is 128
    // and the mean 1.9, beside lines on the border of two pixels.
    if (!driver.empty()) GTEST_SKIP() << "the kept picture is llvmpipe's, not of " << driver;
    pretend({"../", "Holidays/", "clip.MKV", "[Group] Show 01.mkv", "a film with a long name.mp4",
             "song.mp3", "wide.avi", "upright.mp4", "x.flv", "y.ogg", "z.wmv"},
            3);
    browser->current_directory = "/home/films";
    browser->path_label->text = "/home/films";
    player.thumbnails["/home/films/clip.MKV"] = quarters(192, 108);
    player.thumbnails["/home/films/[Group] Show 01.mkv"] = quarters(192, 144);
    player.thumbnails["/home/films/wide.avi"] = quarters(192, 80);
    player.thumbnails["/home/films/upright.mp4"] = quarters(81, 144);
    browser->select("clip.MKV");
    // Measured 0 and 0.0.
    expect_golden("media_browser", picture(), {3, 0.05});
}

}  // namespace
