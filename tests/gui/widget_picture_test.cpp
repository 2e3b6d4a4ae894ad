// SPDX-License-Identifier: MIT
// Widgets as they appear in a window.
#include "gpu/gl_context.h"
#include "gui/gl_font.h"
#include "support/drawing_recorder.h"
#include "support/gl_fixture.h"
#include "support/gui_test.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>

namespace {

class WidgetPictureTest : public GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        create_default_font();
        ASSERT_GT(default_font.GetCharWidth('A'), 0);
        reshape_gl(window_width, window_height);
        GuiWorld::resize(800, 600);
        // One unit is one pixel, the origin in the middle.
        gui.scale = {1, 1};
        gui.bounds = {0, 0, 0, 0};
        gui.offset = {window_width / 2.0F, window_height / 2.0F};
        form->bounds = {-100, -80, 200, 160};
        form->title = "Title";
        gui.add(form);
    }

    Image picture() {
        reshape_gl(window_width, window_height);
        glClearColor(0.0F, 0.5F, 0.0F, 1.0F);
        glDisable(GL_SCISSOR_TEST);
        glClear(GL_COLOR_BUFFER_BIT);
        gui.draw();
        EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
        return window();
    }

    static Rgba at(const Image& image, float x, float y) {
        return image.at(int(x) + window_width / 2, int(y) + window_height / 2);
    }

    static void expect_color(Rgba c, float r, float g, float b, const char* what) {
        EXPECT_NEAR(c.r, r, 0.01F) << what;
        EXPECT_NEAR(c.g, g, 0.01F) << what;
        EXPECT_NEAR(c.b, b, 0.01F) << what;
    }

    // How many pixels of a rectangle are nearly white.
    static int white(const Image& image, rectf r) {
        int count = 0;
        for (float y = r.y; y < r.y + r.h; ++y) {
            for (float x = r.x; x < r.x + r.w; ++x) {
                const Rgba c = at(image, x, y);
                count += std::min({c.r, c.g, c.b}) > 0.8F ? 1 : 0;
            }
        }
        return count;
    }

    GuiWorld world;
    object_ref<ListeningForm> form = new ListeningForm;
};

constexpr float ground = 0.5F * (1.0F - 112.0F / 255.0F);  // green under a form

TEST_F(WidgetPictureTest, AFormIsSeenInTheFrameThatRecordsItAndWhenReplayed) {
    form->addLabel(10, 60, 150, 24, "A label");
    const ListCounts before = list_counts;
    const Image first = picture();
    EXPECT_EQ(list_counts.recorded, before.recorded + 1);
    expect_color(at(first, 0, 40), 0, ground, 0, "background");
    expect_color(at(first, -110, 0), 0, 0.5F, 0, "beside");
    EXPECT_GT(white(first, {-100, -80, 200, 40}), 50) << "title";
    EXPECT_GT(white(first, {-90, -20, 150, 24}), 50) << "label";
    const Image second = picture();
    EXPECT_EQ(list_counts.recorded, before.recorded + 2) << "as a picture";
    EXPECT_EQ(list_counts.replayed, before.replayed + 1);
    EXPECT_LE(largest_difference(first, second), 2.01F / 255.0F) << "colours are rounded twice";
    EXPECT_TRUE(glIsList(form->display_list));
    const Image third = picture();
    EXPECT_EQ(list_counts.recorded, before.recorded + 2);
    EXPECT_EQ(list_counts.replayed, before.replayed + 2);
    EXPECT_EQ(largest_difference(second, third), 0.0F);
}

TEST_F(WidgetPictureTest, ItsListGoesWithIt) {
    picture();
    const GLuint list = form->display_list;
    ASSERT_TRUE(glIsList(list));
    const ListCounts before = list_counts;
    gui.children.clear();
    form = nullptr;
    EXPECT_EQ(list_counts.deleted, before.deleted + 1);
    EXPECT_FALSE(glIsList(list));
}

TEST_F(WidgetPictureTest, AFormThatWasNeverDrawnHasNoListToDelete) {
    const ListCounts before = list_counts;
    object_ref<FormWidget> fresh(new FormWidget);
    EXPECT_EQ(fresh->display_list, 0U);
    fresh = nullptr;
    EXPECT_EQ(list_counts.named, before.named);
    EXPECT_EQ(list_counts.deleted, before.deleted);
}

TEST_F(WidgetPictureTest, TextIsSeenWhileDraggedFadingAndZooming) {
    form->addLabel(10, 60, 150, 24, "A label");
    const auto lit = [&](rectf r, float more_than) {
        // Brighter than what lies beneath it.
        const Image image = picture();
        int count = 0;
        for (float y = r.y; y < r.y + r.h; ++y) {
            for (float x = r.x; x < r.x + r.w; ++x)
                count += at(image, x, y).r > more_than ? 1 : 0;
        }
        return count;
    };
    const int still = lit({-90, -20, 150, 24}, 0.4F);
    EXPECT_GT(still, 60) << "93 of them";
    world.drag(in_window(form, {50, 15}), in_window(form, {20, 35}));
    EXPECT_EQ(lit({-120, 0, 150, 24}, 0.4F), still) << "the same letters in another place";
    world.mouse = {-10000, -10000};
    form->bounds = {-100, -80, 200, 160};
    form->invalidate();
    form->auto_hide = true;
    form->hide();
    world.pass(0.1, 0.1);
    EXPECT_NEAR(form->opacity, 0.5F, 1e-3);
    EXPECT_NEAR(lit({-90, -20, 150, 24}, 0.25F), still, still / 4) << "half as bright";
    world.pass(0.5);
    form->auto_hide = false;
    form->scaling_center = {};
    form->show();
    world.pass(0.1, 0.1);
    EXPECT_NEAR(form->scale.x, 0.5F, 1e-3);
    EXPECT_GT(lit({-45, -10, 75, 12}, 0.1F), still / 8) << "half as large";
}

TEST_F(WidgetPictureTest, TextEndsAtTheEdgeOfItsWidget) {
    form->has_title_bar = false;
    form->addLabel(10, 60, 50, 24, "MMMMMMMMMMMMMMMM");
    const Image image = picture();
    EXPECT_GT(white(image, {-90, -20, 50, 24}), 50);
    EXPECT_EQ(white(image, {-39, -20, 130, 24}), 0);
}

TEST_F(WidgetPictureTest, ASlidersKnobIsHighlightedWhilePressedAndMovesWithTheMouse) {
    const object_ref<SliderWidget> slider(new SliderWidget);
    slider->bounds = {10, 60, 180, 24};
    slider->snap_to_default = false;
    form->add(slider);
    const float y = -20 + 12;
    const Image before = picture();
    // Form, track and knob one upon the other.
    const float cover = 1.0F - 112.0F / 255.0F;
    expect_color(at(before, 0, y), 0, 0.5F * cover * cover * cover, 0, "knob in the middle");
    world.press(in_window(slider, {135, 12}));
    const Image after = picture();
    const float red = 128.0F / 255.0F * 239.0F / 255.0F;
    expect_color(at(after, -90 + 132, y), red, 0.5F * cover * cover * (16.0F / 255.0F), 0,
                 "pressed knob");
    EXPECT_LT(at(after, 0, y).r, 0.1F) << "it has gone from the middle";
    world.release(in_window(slider, {135, 12}));
    EXPECT_LT(at(picture(), -90 + 132, y).r, 0.1F) << "no longer highlighted";
}

TEST_F(WidgetPictureTest, AButtonIsHighlightedWhileArmed) {
    const object_ref<ButtonWidget> button(new ButtonWidget);
    button->bounds = {50, 60, 100, 24};
    button->text = "x";
    form->add(button);
    const pointf spot(-100 + 60, -80 + 72);
    EXPECT_LT(at(picture(), spot.x, spot.y).r, 0.05F);
    world.press(middle_of(button));
    EXPECT_GT(at(picture(), spot.x, spot.y).r, 0.4F);
    world.move({0, 0});
    EXPECT_LT(at(picture(), spot.x, spot.y).r, 0.05F);
    world.release({0, 0});
}

TEST_F(WidgetPictureTest, TheHighlightOfAnOptionListTravels) {
    const object_ref<OptionListWidget> options(new OptionListWidget);
    options->bounds = {10, 60, 180, 24};
    options->value = new Value("", 0, 2, 0);
    for (const char* text : {"aaaa", "bbbb", "cccc"})
        options->add_option(text);
    form->add(options);
    const auto red_at = [&](const Image& image, const char* option) {
        pointf p = middle_of(options, option);
        // Above the letters.
        p = p - pointf(0, 10) - gui.offset;
        return at(image, p.x, p.y).r;
    };
    Image image = picture();
    EXPECT_GT(red_at(image, "aaaa"), 0.4F);
    EXPECT_LT(red_at(image, "cccc"), 0.05F);
    world.click(options, "cccc");
    gui.tick(0.05);
    ASSERT_NEAR(options->value->getValue(), 1.0F, 1e-3);
    image = picture();
    EXPECT_GT(red_at(image, "bbbb"), 0.4F);
    EXPECT_LT(red_at(image, "aaaa"), 0.05F);
    gui.tick(0.06);
    EXPECT_GT(red_at(picture(), "cccc"), 0.4F);
}

TEST_F(WidgetPictureTest, AListShowsItsRowsWithinItsBoundsOnly) {
    const object_ref<ListBoxWidget> list(new ListBoxWidget);
    list->bounds = {10, 60, 180, 60};
    for (int i = 0; i < 20; ++i)
        list->items.push_back("MMMM");
    form->add(list);
    form->has_title_bar = false;
    list->update_scroll_max();
    list->scroll({0, 20}, true);
    const Image image = picture();
    EXPECT_GT(white(image, {-90, -20, 180, 60}), 50) << "84 of them";
    EXPECT_EQ(white(image, {-90, -60, 180, 40}), 0) << "above";
    EXPECT_EQ(white(image, {-90, 40, 180, 30}), 0) << "below";
    const Rgba line = at(image, 50, -80 + 60 + 20);
    const Rgba other = at(image, 50, -80 + 60 + 19);
    EXPECT_NEAR(std::max(line.r, other.r), 128.0F / 255.0F, 0.01F) << "the separator";
}

TEST_F(WidgetPictureTest, ABalloonReachesBelowItsForm) {
    const object_ref<TextBalloonWidget> balloon(new TextBalloonWidget);
    balloon->bounds = {50, 150, 100, 20};
    form->add(balloon);
    const Image image = picture();
    const Rgba tail = at(image, -100 + 50 + 20, -80 + 150 + 26);
    EXPECT_NEAR(tail.g, ground, 0.01F) << "drawn beyond the form's edge";
    EXPECT_NEAR(at(image, -100 + 50 + 60, -80 + 150 + 26).g, 0.5F, 0.01F);
}

}  // namespace
