// SPDX-License-Identifier: MIT
#include "gui/text_label_widget.h"

#include "gui/widget_text.h"

TextLabelWidget::TextLabelWidget() : WidgetBase(WidgetTypes::text_label) {}

float TextLabelWidget::text_scale() {
    return look().small_text_scale * scale.y;
}

pointf TextLabelWidget::text_position() {
    const pointf size = text_size(text);
    // Alignment does not know of the label's own scale, except upwards and downwards.
    const float room = bounds.w - look().small_text_scale * size.x;
    const float height = text_scale() * size.y;
    pointf position;
    if (horizontal_alignment == center) position.x = room / 2.0F;
    if (horizontal_alignment == right) position.x = room;
    if (vertical_alignment == top) position.y = height;
    if (vertical_alignment == middle) position.y = (bounds.h + height) / 2.0F;
    if (vertical_alignment == bottom) position.y = bounds.h;
    return position;
}

void TextLabelWidget::draw() {
    draw_clipped_text(text, look().text_color, text_scale(), text_position(), area());
}
