// SPDX-License-Identifier: MIT
#pragma once

#include "gui/button_widget.h"
#include "gui/geometry.h"
#include "gui/option_list_widget.h"
#include "gui/slider_widget.h"

#include <initializer_list>
#include <span>

class WidgetContainer;

/// One control of a form and the label beside it, in the form's coordinates.
struct FormRow {
    WidgetBase* control;
    rectf bounds;
    const char* label = nullptr;  ///< null: none
    rectf label_bounds{};
};

/// Adds every row to `form`, in order, the label before its control. The form keeps both. [main]
void add_rows(WidgetContainer& form, std::span<const FormRow> rows);

/// Whether a slider shows its setting's number.
enum class NumberLabel { hidden, shown };

// Each makes a control that nobody owns yet. [main]

SliderWidget* make_slider(Value& setting, NumberLabel label = NumberLabel::hidden);
/// Options stand for 0, 1, ... of the setting; all are enabled.
OptionListWidget* make_options(Value& setting, std::initializer_list<const char*> options);
ButtonWidget* make_button(const char* text, EventTypes::Action action);
/// A button that its form draws.
ButtonWidget* make_icon_button();
