// SPDX-License-Identifier: MIT
#include "gui/slider_widget.h"

#include "gui/graphics.h"
#include "gui/gui_environment.h"
#include "gui/widget_math.h"
#include "gui/widget_text.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int snapping_distance = 4;
constexpr float groove_height = 5.0F;

}  // namespace

SliderWidget::SliderWidget()
    : WidgetBase(WidgetTypes::slider), value(new Value("", 0.0F, 100.0F, 50.0F)) {}

float SliderWidget::getValue() const {
    if (dragging) return drag_value;
    return value.IsNull() ? 0.0F : value->getValue();
}

float SliderWidget::get_valuelabelwidth() const {
    return show_value_label ? value_label_width : 0.0F;
}

void SliderWidget::get_knobrect(rectf* out) const {
    const float width = knob_width();
    const float position = value.IsNull() ? 0.0F : value->getNormalizedValue(getValue());
    *out = {(track_width() - width) * position, 0.0F, width, bounds.h};
}

std::string SliderWidget::get_valuelabel() const {
    if (value.IsNull()) return {};
    float v = value->getValue();
    if (v > -0.01F && v < 0.01F) v = 0.0F;  // no "-0.00"
    std::array<char, 64> digits;            // 2^128 has 39
    std::snprintf(digits.data(), digits.size(), "%.02f", static_cast<double>(v));
    return digits.data() + value->unit();
}

float SliderWidget::knob_width() const {
    return style.IsNull() ? WidgetStyle().knob_size.x : style->knob_size.x;
}

void SliderWidget::draw() {
    WidgetStyle& drawn_style = look();
    drawn_style.SetDefaultBackground();
    drawn_style.SetDefaultBorder();
    drawn_style.FillRoundedRect(0.0F, 0.0F, track_width(), bounds.h);
    drawn_style.DrawRoundedRect(0.0F, 0.0F, track_width(), bounds.h);
    if (custom_draw) {
        send(EventTypes::custom_draw);
        return;
    }
    draw_knob();
    if (show_value_label) draw_label();
}

void SliderWidget::draw_knob() {
    WidgetStyle& drawn_style = look();
    rectf knob;
    get_knobrect(&knob);
    const float groove_y = bounds.h / 2.0F - 2.0F;
    setbrushcolorrgba(16, 16, 16, 190);
    fillrectanglef(1.0F, groove_y, knob.x - 2.0F, groove_height);
    fillrectanglef(knob.x + knob.w + 1.0F, groove_y, track_width() - knob.x - knob.w - 2.0F,
                   groove_height);
    setpencolorrgba(256, 256, 256, 96);
    if (pressed) {
        drawn_style.SetHighlightBackground();
    } else {
        drawn_style.SetDefaultBackground();
    }
    drawn_style.FillRoundedRect(knob);
    drawn_style.DrawRoundedRect(knob);
}

void SliderWidget::draw_label() {
    const WidgetStyle& drawn_style = look();
    const std::string text = get_valuelabel();
    const float text_scale = drawn_style.small_text_scale;
    const pointf size = text_size(text);
    const pointf position(bounds.w - (get_valuelabelwidth() + text_scale * size.x) / 2.0F,
                          centered_text(size, text_scale, area()).y);
    draw_clipped_text(text, drawn_style.text_color, text_scale, position, area());
}

bool SliderWidget::mousedown(pointf /*p*/, int button) {
    if (button != 1) return false;
    drag_value = getValue();
    dragging = true;
    gui_environment.show_cursor(false);
    invalidate();
    return true;
}

bool SliderWidget::snaps(float x) const {
    if (!snap_to_default) return false;
    const float place = value->getNormalizedValue(value->default_value());
    const float distance = x - (track_width() - knob_width() * 0.5F) * place;
    return std::abs(distance) < snapping_distance + 1 &&
           value->minimum() < value->default_value() && value->default_value() < value->maximum();
}

bool SliderWidget::mousemove(pointf p, int buttons) {
    if (buttons != 1) return false;
    if (value.IsNull() || !(track_width() > 0.0F)) return true;
    const float position = limited(p.x / track_width(), 0.0F, 1.0F);
    drag_value = snaps(p.x) ? value->default_value() : value->fromNormalizedValue(position);
    if (!update_on_release) store();
    invalidate();
    return true;
}

bool SliderWidget::mouseup(pointf /*p*/, int button) {
    if (button != 1) return false;
    if (update_on_release && dragging && !value.IsNull()) store();
    gui_environment.show_cursor(true);
    dragging = false;
    invalidate();
    return true;
}

void SliderWidget::store() {
    value->setValue(drag_value);
    send(EventTypes::value_changed);
}
