// SPDX-License-Identifier: MIT
#include "gpu/display_geometry.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(DisplayGeometry, AspectFollowsTheShapeOfPixels) {
    EXPECT_DOUBLE_EQ(display_aspect(720, 576, 16.0 / 15.0), 720.0 / 576.0 * 16.0 / 15.0);
    EXPECT_DOUBLE_EQ(display_aspect(640, 480, 0.0), 640.0 / 480.0) << "not known: square";
    EXPECT_DOUBLE_EQ(display_aspect(640, 480, -1.0), 640.0 / 480.0);
    EXPECT_DOUBLE_EQ(display_aspect(640, 480, NAN), 640.0 / 480.0);
}

TEST(DisplayGeometry, FitClearsTheValueTwo) {
    const SDL_Rect r = destination_rectangle(0, 480, 4.0 / 3.0, 1, 1920, 1080);
    EXPECT_EQ(r.h, 1080);
    EXPECT_EQ(r.w, 1440);
    EXPECT_EQ(r.x, 240);
    EXPECT_EQ(r.y, 0);
    EXPECT_EQ(destination_rectangle(0, 480, 1438.0 / 1080.0, 1, 1920, 1080).w, 1436);
    EXPECT_EQ(destination_rectangle(0, 480, 1437.0 / 1080.0, 1, 1920, 1080).w, 1437)
        << "only that one value is cleared; odd widths stay";
}

TEST(DisplayGeometry, FitOfAWidePicture) {
    // 16:9 in 800 x 600: 800 / (16 / 9) = 450, whose bit of value 2 is set.
    const SDL_Rect r = destination_rectangle(0, 720, 16.0 / 9.0, 1, 800, 600);
    EXPECT_EQ(r.w, 800);
    EXPECT_EQ(r.h, 448);
    EXPECT_EQ(r.x, 0);
    EXPECT_EQ(r.y, 76);
}

TEST(DisplayGeometry, FillCoversTheScreen) {
    const SDL_Rect wide = destination_rectangle(1, 720, 16.0 / 9.0, 1, 800, 600);
    EXPECT_EQ(wide.h, 600);
    EXPECT_EQ(wide.w, 1067);
    EXPECT_EQ(wide.x, -133);
    const SDL_Rect tall = destination_rectangle(1, 480, 4.0 / 3.0, 1, 1600, 900);
    EXPECT_EQ(tall.w, 1600);
    EXPECT_EQ(tall.h, 1200);
    EXPECT_EQ(tall.y, -150);
}

TEST(DisplayGeometry, FixedZoomsCountEnhancedPixels) {
    struct Case {
        int zoom, factor, w, h;
    };
    for (const Case& c : {Case{2, 1, 640, 360},
                          {2, 3, 1920, 1080},
                          {3, 1, 1280, 720},
                          {3, 2, 2560, 1440},
                          {4, 1, 2560, 1440},
                          {4, 4, 10240, 5760}}) {
        const SDL_Rect r = destination_rectangle(c.zoom, 360, 640.0 / 360.0, c.factor, 800, 600);
        EXPECT_EQ(r.w, c.w) << c.zoom << " x " << c.factor;
        EXPECT_EQ(r.h, c.h);
        EXPECT_EQ(r.x, (800 - c.w) / 2);
        EXPECT_EQ(r.y, (600 - c.h) / 2);
    }
    EXPECT_EQ(destination_rectangle(2, 100, 1.339, 1, 800, 600).w, 133) << "cut, not rounded";
}

TEST(DisplayGeometry, WholeMultiplesKeepEveryColumn) {
    // 1920 / 804, times 804, is a little less than 1920.
    const double aspect = display_aspect(1920, 804, 0.0);
    EXPECT_EQ(destination_rectangle(2, 804, aspect, 1, 800, 600).w, 1920);
    EXPECT_EQ(destination_rectangle(3, 804, aspect, 1, 800, 600).w, 3840);
    EXPECT_EQ(destination_rectangle(4, 804, aspect, 1, 800, 600).w, 7680);
    EXPECT_EQ(destination_rectangle(2, 804, aspect, 4, 800, 600).w, 7680);
}

TEST(DisplayGeometry, HugePicturesStayWithinARectangle) {
    const SDL_Rect r = destination_rectangle(4, 8000, 2.0, 4, 800, 600);
    EXPECT_EQ(r.w, 65535);
    EXPECT_EQ(r.h, 65535);
    EXPECT_LT(r.x, 0);
}

class Zoom : public ::testing::Test {
  protected:
    SDL_Rect at(SDL_Rect wanted, Uint32 now) {
        animate_zoom(zoom_, wanted, 800, 600, now);
        return wanted;
    }
    ZoomAnimation zoom_;
};

bool same(SDL_Rect a, SDL_Rect b) {
    return a.x == b.x && a.y == b.y && a.w == b.w && a.h == b.h;
}

TEST_F(Zoom, FirstRectangleAppearsAtOnce) {
    const SDL_Rect r{100, 100, 600, 400};
    EXPECT_TRUE(same(at(r, 1000), r));
    EXPECT_TRUE(same(at(r, 1001), r));
    EXPECT_FALSE(zoom_.running);
}

TEST_F(Zoom, GrowingTakesAnEighthOfASecond) {
    const SDL_Rect small{200, 200, 400, 200};
    const SDL_Rect large{0, 100, 800, 400};
    at(small, 0);
    EXPECT_TRUE(same(at(large, 1000), small)) << "the first frame still shows the old size";
    const float t = std::pow(62.0F * 8.0F / 1000.0F, 0.25F);
    const SDL_Rect middle = at(large, 1062);
    EXPECT_EQ(middle.w, static_cast<Uint16>(800 * t + 400 * (1 - t)));
    EXPECT_EQ(middle.h, static_cast<Uint16>(400 * t + 200 * (1 - t)));
    EXPECT_EQ(middle.x, static_cast<Sint16>(0 * t + 200 * (1 - t)));
    EXPECT_TRUE(zoom_.running);
    EXPECT_TRUE(same(at(large, 1126), large));
    EXPECT_FALSE(zoom_.running);
    EXPECT_TRUE(same(at(large, 1127), large));
}

TEST_F(Zoom, ShrinkingStartsSlowly) {
    const SDL_Rect small{200, 200, 400, 200};
    const SDL_Rect large{0, 100, 800, 400};
    at(large, 0);
    at(small, 1000);
    const float t = std::pow(62.0F * 8.0F / 1000.0F, 4.0F);
    EXPECT_EQ(at(small, 1062).w, static_cast<Uint16>(400 * t + 800 * (1 - t)));
}

TEST_F(Zoom, OldRectangleIsCentredForTheScreenOfToday) {
    at({5, 7, 400, 200}, 0);
    const SDL_Rect first = at({0, 0, 800, 600}, 1000);
    EXPECT_EQ(first.x, 200);
    EXPECT_EQ(first.y, 200);
}

TEST_F(Zoom, ExactlyAtTheEndItStillRuns) {
    at({0, 0, 400, 200}, 0);
    at({0, 0, 800, 600}, 1000);
    const SDL_Rect r = at({0, 0, 800, 600}, 1125);
    EXPECT_EQ(r.w, 800);
    EXPECT_TRUE(zoom_.running) << "it ends when its time is exceeded";
}

}  // namespace
