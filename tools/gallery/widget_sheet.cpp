// SPDX-License-Identifier: MIT
#include "gallery/sheet.h"
#include "gallery/sheets.h"
#include "gui/form_layout.h"
#include "gui/form_widget.h"
#include "gui/list_box_widget.h"
#include "gui/text_balloon_widget.h"

namespace {

SliderWidget* slider(float value, const char* unit = "") {
    auto* widget = new SliderWidget;
    widget->value = new Value("", -40, 10, 0, unit);
    widget->value->setValue(value);
    return widget;
}

void add_sliders(Sheet& sheet) {
    constexpr float y = 60;
    sheet.heading(30, 20, "Sliders");
    sheet.add(slider(-40), {30, y, 200, 24}, "lowest");
    sheet.add(slider(-12), {260, y, 200, 24}, "between");
    sheet.add(slider(10), {490, y, 200, 24}, "highest");
    SliderWidget* held = slider(-20);
    held->pressed = true;
    sheet.add(held, {720, y, 200, 24}, "held");
    SliderWidget* labelled = slider(-12.5F, "dB");
    labelled->show_value_label = true;
    sheet.add(labelled, {30, y + 60, 230, 24}, "with its number");
    SliderWidget* zero = slider(0.004F, "dB");
    zero->show_value_label = true;
    sheet.add(zero, {290, y + 60, 230, 24}, "nearly 0");
    SliderWidget* custom = slider(0);
    custom->custom_draw = true;
    sheet.add(custom, {550, y + 60, 170, 24}, "drawn by its form");
}

OptionListWidget* options(float value, std::initializer_list<const char*> texts) {
    const object_ref<Value> setting(new Value("", 0, static_cast<float>(texts.size()), 0));
    setting->setValue(value);
    return make_options(*setting, texts);
}

void add_option_lists(Sheet& sheet) {
    constexpr float y = 230;
    sheet.heading(30, y - 40, "Option lists");
    sheet.add(options(0, {"OFF", "ON"}), {30, y, 150, 24}, "the first of two");
    sheet.add(options(1, {"OFF", "ON", "ADAPTIVE"}), {210, y, 150, 24}, "the middle one");
    sheet.add(options(4, {"OFF", "2x", "3x", "4x", "MAX"}), {390, y, 150, 24}, "the last of five");
    OptionListWidget* gray = options(1, {"OFF", "2x", "3x", "4x"});
    gray->option_enabled = {true, true, false, false};
    sheet.add(gray, {570, y, 150, 24}, "two cannot be chosen");
    sheet.add(options(0.5F, {"OFF", "2x", "3x"}), {750, y, 150, 24}, "moving from the first");
    sheet.add(options(1.5F, {"OFF", "2x", "3x", "4x"}), {30, y + 60, 150, 24}, "moving between");
    sheet.add(options(2.3F, {"OFF", "2x", "3x", "4x"}), {210, y + 60, 150, 24},
              "moving to the last");
    sheet.add(options(0, {"Alone"}), {390, y + 60, 150, 24}, "one option");
    sheet.add(options(1, {"Bilinear", "Bicubic", "Lanczos", "Denoising"}), {570, y + 60, 200, 24},
              "too wide: pushed together");
}

void add_buttons(Sheet& sheet) {
    constexpr float y = 400;
    sheet.heading(30, y - 40, "Buttons");
    sheet.add(make_button("Close", EventTypes::close_request), {30, y, 100, 24}, "at rest");
    ButtonWidget* armed = make_button("Close", EventTypes::close_request);
    armed->armed = true;
    sheet.add(armed, {160, y, 100, 24}, "held");
    sheet.add(make_button("A text that is too long for it", EventTypes::item_chosen),
              {290, y, 100, 24}, "clipped");
    sheet.add(make_icon_button(), {420, y, 34, 34}, "without text");
    auto* balloon = new TextBalloonWidget;
    balloon->text = "00:01:15:000";
    balloon->horizontal_alignment = TextLabelWidget::center;
    sheet.heading(560, y - 40, "Balloon");
    sheet.add(balloon, {560, y, 100, 20}, "");
}

void add_labels(Sheet& sheet) {
    constexpr float y = 520;
    const char* const names[] = {"left", "center", "right"};
    const char* const heights[] = {"top", "middle", "bottom"};
    sheet.heading(30, y - 40, "Labels");
    for (int v = 0; v < 3; ++v) {
        for (int h = 0; h < 3; ++h) {
            const rectf box(30 + 130 * static_cast<float>(h), y + 60 * static_cast<float>(v), 120,
                            50);
            // An empty button shows where the label's edges are.
            sheet.add(make_icon_button(), box, "");
            auto* label = new TextLabelWidget;
            label->text = std::string(heights[v]) + " " + names[h];
            label->horizontal_alignment = static_cast<TextLabelWidget::HorizontalAlignment>(h);
            label->vertical_alignment = static_cast<TextLabelWidget::VerticalAlignment>(v);
            sheet.add(label, box, "");
        }
    }
}

ListBoxWidget* list(int selected, float scroll) {
    auto* box = new ListBoxWidget;
    box->bounds = {0, 0, 220, 170};
    box->items = {"[..]",       "[holiday]", "first.mkv",
                  "second.mp4", "third.avi", "a name that is much too long for its list.flac",
                  "last.wav"};
    box->update_scroll_max();
    box->selected = selected;
    box->scroll({0, scroll}, true);
    return box;
}

void add_lists(Sheet& sheet) {
    sheet.heading(450, 480, "Lists");
    sheet.add(list(2, 0), 450, 520, "third item selected");
    sheet.add(list(-1, 95), 700, 520, "scrolled");
}

FormWidget* form(const char* title, bool title_bar, bool frame) {
    auto* widget = new FormWidget;
    widget->title = title;
    widget->has_title_bar = title_bar;
    widget->has_frame = frame;
    widget->bounds = {0, 0, 200, 120};
    widget->addLabel(20, 60, 160, 24, "Content:");
    ButtonWidget* button = make_button("Close", EventTypes::close_request);
    button->bounds = {50, 86, 100, 24};
    widget->add(button);
    return widget;
}

void add_forms(Sheet& sheet) {
    constexpr float y = 780;
    sheet.heading(30, y - 40, "Forms");
    sheet.add(form("Title", true, true), 30, y, "open");
    FormWidget* dragged = form("Title", true, true);
    dragged->dragging = true;
    sheet.add(dragged, 260, y, "dragged by its title");
    sheet.add(form("", false, true), 490, y, "without a title");
    sheet.add(form("", false, false), 720, y, "without a frame");
    FormWidget* coming = form("Title", true, true);
    coming->opacity = 0.5F;
    coming->scale = {0.7F, 0.7F};
    sheet.add(coming, 30, y + 160, "half way in or out");
    FormWidget* moved = form("Title", true, true);
    moved->opacity = 0.5F;
    moved->scale = {0.7F, 0.7F};
    moved->scaling_center = {-100, -60};
    sheet.add(moved, 260, y + 160, "half way, from its corner");
}

}  // namespace

PngPicture widget_sheet() {
    Sheet sheet(950, 1100);
    add_sliders(sheet);
    add_option_lists(sheet);
    add_buttons(sheet);
    add_labels(sheet);
    add_lists(sheet);
    add_forms(sheet);
    return sheet.picture();
}
