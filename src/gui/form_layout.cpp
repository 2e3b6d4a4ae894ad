// SPDX-License-Identifier: MIT
#include "gui/form_layout.h"

#include "gui/text_label_widget.h"
#include "gui/widget_container.h"

void add_rows(WidgetContainer& form, std::span<const FormRow> rows) {
    for (const FormRow& row : rows) {
        if (row.label) {
            const rectf& r = row.label_bounds;
            form.addLabel(r.x, r.y, r.w, r.h, row.label);
        }
        row.control->bounds = row.bounds;
        form.add(row.control);
    }
}

SliderWidget* make_slider(Value& setting, NumberLabel label) {
    auto* slider = new SliderWidget;
    slider->value = &setting;
    slider->show_value_label = label == NumberLabel::shown;
    return slider;
}

OptionListWidget* make_options(Value& setting, std::initializer_list<const char*> options) {
    auto* list = new OptionListWidget;
    list->value = &setting;
    for (const char* option : options)
        list->add_option(option);
    return list;
}

ButtonWidget* make_button(const char* text, EventTypes::Action action) {
    auto* button = new ButtonWidget;
    button->text = text;
    button->action_code = action;
    return button;
}

ButtonWidget* make_icon_button() {
    auto* button = new ButtonWidget;
    button->custom_draw = true;
    return button;
}
