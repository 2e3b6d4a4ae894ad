// SPDX-License-Identifier: MIT
#pragma once

#include "gui/widget.h"

#include <string>

/// One piece of text. [main]
class TextLabelWidget : public WidgetBase {
  public:
    enum HorizontalAlignment : int { left = 0, center = 1, right = 2 };
    enum VerticalAlignment : int { top = 0, middle = 1, bottom = 2 };

    TextLabelWidget();

    void draw() override;

    /// Where the text starts and its bottom lies, in the widget's coordinates.
    pointf text_position();

    std::string text;
    HorizontalAlignment horizontal_alignment = left;
    VerticalAlignment vertical_alignment = middle;

  protected:
    explicit TextLabelWidget(int code) : WidgetBase(code) {}
    float text_scale();
};

/// Labels in a list of children are never freed: their list takes one reference too many.
template <>
inline constexpr int conversion_references<WidgetBase, TextLabelWidget> = 2;
