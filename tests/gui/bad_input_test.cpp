// SPDX-License-Identifier: MIT
// Positions, sizes, texts and windows that nobody would choose.
#include "gui/screen.h"
#include "support/drawing_recorder.h"
#include "support/gui_test.h"

#include <cmath>
#include <limits>

namespace {

constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr float largest = std::numeric_limits<float>::max();
const float numbers[] = {NAN, infinite, -infinite, largest, -largest, 1e10F, -1e10F, 0.0F, -1.0F};

class BadInputTest : public GuiTest {
  protected:
    BadInputTest() {
        slider->bounds = {10, 50, 200, 24};
        slider->show_value_label = true;
        options->bounds = {10, 80, 200, 24};
        options->value = new Value("", 0, 3, 1);
        options->add_option("a");
        options->add_option("b");
        button->bounds = {10, 110, 100, 24};
        button->text = "Button";
        list->bounds = {10, 140, 200, 100};
        list->items = {"one", "two", "three"};
        balloon->bounds = {220, 50, 100, 20};
        balloon->text = "balloon";
        for (WidgetBase* w : all())
            form->add(w);
    }

    std::vector<WidgetBase*> all() { return {slider, options, button, list, balloon}; }

    void draw_everything() {
        DrawingRecorder recorder;
        form->dirty = true;
        gui.draw();
        EXPECT_EQ(recorder.open_clips(), 0);
        EXPECT_EQ(recorder.open_transforms(), 0);
        EXPECT_EQ(clipping_depth, 0);
    }

    void use_everything(pointf p) {
        for (const int button_number : {1, 2, 3, 5, 32}) {
            world.press(p, button_number);
            world.move(p);
            world.move({p.y, p.x});
            world.release(p);
        }
        for (WidgetBase* w : all()) {
            w->mousedown(p, 1);
            w->mousemove(p, 1);
            w->tick(0.05);
            w->mouseup(p, 1);
            w->hittest(p);
        }
        gui.tick(0.05);
    }

    bool settings_are_sound() {
        const float v = slider->value->getValue();
        const float o = options->value->getValue();
        return v >= 0 && v <= 100 && o >= 0 && o <= 3 && std::isfinite(form->bounds.x) &&
               std::isfinite(form->bounds.y) && std::isfinite(list->scroll_position.x) &&
               std::isfinite(list->scroll_position.y);
    }

    object_ref<SliderWidget> slider = new SliderWidget;
    object_ref<OptionListWidget> options = new OptionListWidget;
    object_ref<ButtonWidget> button = new ButtonWidget;
    object_ref<ListBoxWidget> list = new ListBoxWidget;
    object_ref<TextBalloonWidget> balloon = new TextBalloonWidget;
};

TEST_F(BadInputTest, AnyPointAtAll) {
    for (const float x : numbers) {
        for (const float y : numbers) {
            use_everything({x, y});
            EXPECT_TRUE(settings_are_sound()) << x << ", " << y;
        }
    }
    draw_everything();
}

TEST_F(BadInputTest, AnySizeOfWidget) {
    for (const float w : numbers) {
        for (const float h : numbers) {
            for (WidgetBase* widget : all()) {
                widget->bounds.w = w;
                widget->bounds.h = h;
            }
            use_everything({5, 5});
            draw_everything();
            EXPECT_TRUE(settings_are_sound()) << w << ", " << h;
        }
    }
}

TEST_F(BadInputTest, AnySizeOfForm) {
    for (const float size : numbers) {
        form->bounds = {-10, -10, size, size};
        use_everything({400, 300});
        draw_everything();
        form->bounds.x = form->bounds.y = -10;
    }
    form->bounds = {NAN, NAN, NAN, NAN};
    world.drag({400, 300}, {10, 10});
    draw_everything();
    EXPECT_EQ(gui.hittest({400, 300}), nullptr);
}

TEST_F(BadInputTest, AnySizeOfWindow) {
    for (const auto& [w, h] : {std::pair(1, 1), {8000, 100}, {100, 8000}, {16384, 16384}}) {
        GuiWorld::resize(w, h);
        world.drag(in_window(form, {100, 15}), {float(w), float(h)});
        EXPECT_GE(form->bounds.x, screenRectangle.x) << w << " x " << h;
        EXPECT_GE(form->bounds.y, screenRectangle.y) << w << " x " << h;
        slider->value->setValue(50);
        world.click(in_window(slider, {0.5F, 12}));
        EXPECT_LT(slider->value->getValue(), 1.0F) << w << " x " << h;
        draw_everything();
    }
}

TEST_F(BadInputTest, SlidersAsNarrowAsTheirKnob) {
    slider->show_value_label = false;
    for (const float width : {12.0F, 11.0F, 1.0F, 0.0F, -50.0F}) {
        slider->bounds.w = width;
        rectf knob;
        slider->get_knobrect(&knob);
        EXPECT_EQ(knob.w, 12.0F);
        EXPECT_TRUE(slider->mousemove({width, 5}, 1));
        EXPECT_TRUE(std::isfinite(slider->value->getValue())) << width;
        draw_everything();
    }
    slider->bounds.w = 12.0F;
    slider->snap_to_default = false;
    slider->mousemove({12, 5}, 1);
    EXPECT_EQ(slider->value->getValue(), 100.0F);
    slider->bounds.w = 0.0F;
    slider->mousemove({0, 5}, 1);
    EXPECT_EQ(slider->value->getValue(), 100.0F) << "a track without length moves nothing";
}

TEST_F(BadInputTest, SettingsWithoutARangeOrMissing) {
    slider->value = new Value("", 5, 5, 5);
    use_everything({100, 15});
    EXPECT_EQ(slider->value->getValue(), 5.0F);
    draw_everything();
    slider->value = static_cast<Value*>(nullptr);
    options->value = static_cast<Value*>(nullptr);
    EXPECT_EQ(slider->getValue(), 0.0F);
    EXPECT_EQ(slider->get_valuelabel(), "");
    for (WidgetBase* w : {static_cast<WidgetBase*>(slider), static_cast<WidgetBase*>(options)}) {
        w->mousedown({5, 5}, 1);
        w->mousemove({5, 5}, 1);
        w->tick(1);
        w->mouseup({5, 5}, 1);
    }
    draw_everything();
}

TEST_F(BadInputTest, OptionsWithoutTextsOrFlags) {
    options->option_enabled.clear();
    EXPECT_TRUE(options->is_enabled(0));
    EXPECT_TRUE(options->is_enabled(-1));
    world.click(options, "a");
    world.pass(0.2);
    EXPECT_EQ(options->value->getValue(), 0.0F);
    draw_everything();
    options->option_texts.clear();
    EXPECT_TRUE(options->mousemove({1, 1}, 1));
    options->value->setValue(0.5F);
    draw_everything();
    options->option_texts = {""};
    options->layout();
    EXPECT_EQ(options->option_rectangles.at(0).w, 12.0F);
    draw_everything();
    options->animating = true;
    options->target = std::numeric_limits<int>::max();
    options->step_time = 0.0;
    options->tick(0.0);
    EXPECT_FALSE(options->animating);
}

TEST_F(BadInputTest, ListsWithOddRowsAndPositions) {
    for (const int height : {0, -40, 1, std::numeric_limits<int>::max()}) {
        list->item_height = height;
        list->update_scroll_max();
        EXPECT_TRUE(list->select_item_by_index(2));
        use_everything({50, 170});
        draw_everything();
    }
    list->item_height = 40;
    for (const float position : numbers) {
        list->scroll_position = {position, position};
        draw_everything();
        list->mousedown({5, 5}, 1);
        list->mouseup({5, 5}, 1);
        list->scroll({position, position}, false);
        EXPECT_GE(list->scroll_position.y, 0.0F);
        EXPECT_LE(list->scroll_position.y, 20.0F);
    }
    list->items.clear();
    draw_everything();
    EXPECT_FALSE(list->select_item_by_index(0));
}

TEST_F(BadInputTest, TextsOfAnyKind) {
    const std::string texts[] = {
        "",      std::string(100000, 'x'), "a\nb\n", "\xff\xfe\x80\x01", std::string("a\0b", 3),
        "%s%n%d"};
    for (const std::string& text : texts) {
        form->title = text;
        button->text = text;
        balloon->text = text;
        list->items = {text};
        options->option_texts = {text, text};
        use_everything({215, 235});
        draw_everything();
    }
}

TEST_F(BadInputTest, FormsInForms) {
    const object_ref<FormWidget> inner(new FormWidget);
    inner->bounds = {10, 10, 50, 50};
    form->add(inner);
    const int before = list_counts.recorded;
    draw_everything();
    EXPECT_EQ(list_counts.recorded, before + 1) << "one list holds both";
}

TEST_F(BadInputTest, ThousandNestedContainers) {
    WidgetContainer* in = form;
    for (int i = 0; i < 1000; ++i) {
        const object_ref<WidgetContainer> next(new WidgetContainer);
        next->bounds = {0, 40, 400, 300};
        in->add(next);
        in = next;
    }
    use_everything({300, 300});
    draw_everything();
}

}  // namespace
