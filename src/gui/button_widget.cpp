// SPDX-License-Identifier: MIT
#include "gui/button_widget.h"

#include "gui/widget_text.h"

ButtonWidget::ButtonWidget() : WidgetBase(WidgetTypes::button) {}

void ButtonWidget::draw() {
    WidgetStyle& drawn_style = look();
    if (armed) {
        drawn_style.SetHighlightBackground();
    } else {
        drawn_style.SetDefaultBackground();
    }
    drawn_style.SetDefaultBorder();
    drawn_style.FillRoundedRect(area());
    drawn_style.DrawRoundedRect(area());
    if (!text.empty()) {
        const float text_scale = drawn_style.small_text_scale;
        draw_clipped_text(text, drawn_style.text_color, text_scale,
                          centered_text(text_size(text), text_scale, area()), area());
    }
    if (custom_draw) send(EventTypes::custom_draw);
}

bool ButtonWidget::mousedown(pointf /*p*/, int button) {
    if (button != 1) return false;
    send(EventTypes::pressed);
    return true;
}

bool ButtonWidget::mousemove(pointf p, int buttons) {
    if (buttons != 1) return false;
    armed = area().contains(p);
    invalidate();
    return true;
}

bool ButtonWidget::mouseup(pointf /*p*/, int /*button*/) {
    if (!armed) return false;
    EventArgs event(this, EventTypes::released);
    send(event);
    event.action = action_code;
    send(event);
    armed = false;
    invalidate();
    return true;
}
