// SPDX-License-Identifier: MIT
// Every widget at once, in a style that has nothing of the default one.
#include "gui/gl_font.h"
#include "gui/widget_style.h"
#include "support/drawing_recorder.h"
#include "support/gui_test.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iterator>

namespace {

constexpr pointf none;
const pointf radius(9, 4);
constexpr float knob = 20.0F;
constexpr float small_scale = 0.4F;
constexpr float title_scale = 0.8F;
constexpr unsigned green = 0xFF00FF00U;
constexpr unsigned blue = 0xFF0000FFU;
constexpr unsigned highlight = 0xFFC08040U;

bool has_color(const Drawn& d, unsigned packed) {
    const auto part = [packed](unsigned shift) {
        return static_cast<float>(packed >> shift & 255U) / 255.0F;
    };
    return d.color.r == part(16) && d.color.g == part(8) && d.color.b == part(0) &&
           d.color.a == part(24);
}

bool near(pointf a, pointf b) {
    return std::abs(a.x - b.x) < 1e-3F && std::abs(a.y - b.y) < 1e-3F;
}

float text_width(const std::string& text) {
    std::pair<int, int> size;
    default_font.GetStringSize(text, &size);
    return static_cast<float>(size.first);
}

class ChangedStyleTest : public GuiTest {
  protected:
    ChangedStyleTest() {
        defaultStyle->corner_radius = radius;
        defaultStyle->knob_size = {knob, 7};
        defaultStyle->small_text_scale = small_scale;
        defaultStyle->text_scale = title_scale;
        defaultStyle->text_color = green;
        defaultStyle->second_text_color = blue;
        defaultStyle->highlight_color = highlight;
        form->addLabel(10, 60, 100, 24, "label");
        balloon->bounds = {10, 90, 100, 24};
        balloon->text = "balloon";
        slider->bounds = {10, 150, 260, 24};
        slider->show_value_label = true;
        slider->pressed = true;
        button->bounds = {120, 60, 100, 24};
        button->text = "button";
        button->armed = true;
        fill(*still, 210, 1);
        fill(*travelling, 240, 0.5F);
        list->bounds = {240, 50, 150, 90};
        list->items = {"row", "chosen"};
        list->selected = 1;
        for (WidgetBase* widget :
             std::initializer_list<WidgetBase*>{balloon, slider, button, still, travelling, list})
            form->add(widget);
    }
    ~ChangedStyleTest() override { defaultStyle = new WidgetStyle; }

    static void fill(OptionListWidget& options, float y, float chosen) {
        options.bounds = {10, y, 300, 24};
        options.value = new Value("", 0, 1, 0);
        options.value->setValue(chosen);
        options.add_option("first " + std::to_string(int(y)));
        options.add_option("last " + std::to_string(int(y)));
    }

    void draw() {
        form->dirty = true;
        gui.draw();
    }

    DrawingRecorder recorder;
    object_ref<TextBalloonWidget> balloon = new TextBalloonWidget;
    object_ref<SliderWidget> slider = new SliderWidget;
    object_ref<ButtonWidget> button = new ButtonWidget;
    object_ref<OptionListWidget> still = new OptionListWidget;
    object_ref<OptionListWidget> travelling = new OptionListWidget;
    object_ref<ListBoxWidget> list = new ListBoxWidget;
};

// How far the four corners of an outline are rounded off: five points each, and of a balloon three
// of the tail after the first corner.
std::vector<pointf> corner_radii(const Drawn& d) {
    std::vector<pointf> points = d.points;
    if (points.size() == 23) points.erase(points.begin() + 5, points.begin() + 8);
    std::vector<pointf> radii;
    for (std::size_t i = 0; points.size() == 20 && i < 20; i += 5) {
        const pointf across = points[i + 4] - points[i];
        radii.emplace_back(std::abs(across.x), std::abs(across.y));
    }
    return radii;
}

TEST_F(ChangedStyleTest, EveryRoundCornerHasItsRadius) {
    draw();
    int round = 0;
    for (const Drawn& d : recorder.drawn) {
        for (const pointf r : corner_radii(d)) {
            EXPECT_TRUE(near(r, radius) || near(r, none)) << r.x << " x " << r.y;
            round += near(r, radius);
        }
    }
    // Four of the form's fill and of its two outlines; of the fill and the outline of balloon,
    // track, knob and button; two of those of the first and the last option of two lists; and of
    // the highlight between two options.
    EXPECT_EQ(round, 12 + 4 * 8 + 2 * 8 + 4);
}

TEST_F(ChangedStyleTest, KnobsHaveItsWidth) {
    rectf drawn;
    slider->get_knobrect(&drawn);
    EXPECT_EQ(drawn.w, knob);
    EXPECT_FLOAT_EQ(drawn.x, (200.0F - knob) / 2.0F);
    draw();
    const auto fills = recorder.of_kind(Drawn::fill);
    const auto found = std::count_if(fills.begin(), fills.end(), [](const Drawn& d) {
        return d.points.size() == 20 && std::abs(d.box().w - knob) < 1e-3F;
    });
    EXPECT_EQ(found, 1);
}

TEST_F(ChangedStyleTest, TextsHaveItsScalesAndColours) {
    draw();
    const auto texts = recorder.of_kind(Drawn::text);
    // Title, label, balloon, slider, button, four options and two rows.
    EXPECT_EQ(texts.size(), 11U);
    for (const Drawn& text : texts) {
        EXPECT_EQ(text.scale, text.string == "<Test>" ? title_scale : small_scale) << text.string;
        EXPECT_TRUE(has_color(text, text.string == "chosen" ? blue : green)) << text.string;
    }
    const auto height = static_cast<float>(default_font.GetCharHeight('A'));
    EXPECT_FLOAT_EQ(form->get_titlerect().h, title_scale * height);
    // In window pixels: the form starts at (200, 150) and its middle is the window's.
    EXPECT_NEAR(recorder.text("<Test>").points[0].x,
                400.0F - title_scale * text_width("<Test>") / 2.0F, 1e-3);
    EXPECT_NEAR(recorder.text("button").points[0].x,
                200.0F + 120.0F + (100.0F - small_scale * text_width("button")) / 2.0F, 1e-3);
}

TEST_F(ChangedStyleTest, OptionsAreAsWideAsTheirTexts) {
    still->layout();
    EXPECT_FLOAT_EQ(still->option_rectangles[0].w, small_scale * text_width("first 210") + 12.0F);
}

TEST_F(ChangedStyleTest, WhatIsChosenOrHeldHasItsHighlight) {
    draw();
    std::vector<pointf> origins;
    for (const Drawn& d : recorder.of_kind(Drawn::fill)) {
        if (has_color(d, highlight)) origins.emplace_back(d.box());
    }
    // The form's origin is (200, 150).
    const rectf second = still->option_rectangles[1];
    const rectf first = travelling->option_rectangles[0];
    const pointf expected[] = {
        {200 + 10 + 90, 150 + 150},              // knob
        {200 + 120, 150 + 60},                   // button
        {200 + 10 + second.x, 150 + 210},        // option
        {200 + 10 + first.w / 2.0F, 150 + 240},  // between two options
        {200 + 240, 150 + 50 + 40 + 1},          // row
    };
    ASSERT_EQ(origins.size(), std::size(expected));
    for (std::size_t i = 0; i < origins.size(); ++i)
        EXPECT_TRUE(near(origins[i], expected[i]))
            << i << ": " << origins[i].x << ", " << origins[i].y;
}

}  // namespace
