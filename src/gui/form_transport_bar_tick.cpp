// SPDX-License-Identifier: MIT
// What changes on the transport bar without anyone touching it.

#include "gui/form_transport_bar.h"

#include "gui/player_control.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// Longer than any film, and its milliseconds still fit an integer.
constexpr float longest_seconds = 2e6F;

// A knob that moves less cannot be seen to move.
constexpr float visible_step = 0.125F;

// From the left edge of the balloon to the tip of its tail.
constexpr float tail = 20.0F;

// Seconds as the slider can hold them.
float finite_seconds(double seconds) {
    if (!(seconds > 0.0)) return 0.0F;
    return static_cast<float>(std::min(seconds, double{longest_seconds}));
}

}  // namespace

std::string position_text(float seconds) {
    const float v = finite_seconds(seconds);
    const int whole = static_cast<int>(v);
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d:%03d", whole / 3600,
                  static_cast<int>(v / 60.0F) % 60, whole % 60,
                  static_cast<int>(v * 1000.0F) % 1000);
    return text;
}

std::string volume_text(float decibels) {
    if (decibels > -0.01F && decibels < 0.01F) return "Vol: 0.00 dB";
    char text[64];
    std::snprintf(text, sizeof text, "Vol: %+.02f dB", double{decibels});
    return text;
}

void FormTransportBar::follow_position() {
    if (position->dragging) return;
    const bool open = player_control && player_control->is_open();
    Value& value = *position->value;
    value.set_maximum(open ? finite_seconds(player_control->duration()) : 0.0F);
    value.setValue(open ? finite_seconds(player_control->position()) : 0.0F);
}

FormTransportBar::Shown FormTransportBar::shown_now() const {
    rectf knob;
    position->get_knobrect(&knob);
    return {is_paused(), is_playing(), knob.x, volume->getValue()};
}

bool FormTransportBar::uses(const SliderWidget* slider, pointf mouse) const {
    return captured == slider || slider->bounds.contains(mouse);
}

void FormTransportBar::update_balloon() {
    const pointf mouse = getMousePosition();
    const bool seeking = uses(position, mouse);
    const bool was_visible = balloon->visible;
    balloon->visible = seeking || uses(volume, mouse);
    if (seeking) {
        rectf knob;
        position->get_knobrect(&knob);
        balloon->bounds.x = position->bounds.x + knob.x + knob.w / 2.0F - tail;
        balloon->text = position_text(position->getValue());
    } else {
        balloon->bounds.x = volume->bounds.x;
        balloon->text = volume_text(volume->getValue());
    }
    if (balloon->visible || was_visible) balloon->invalidate();
}

void FormTransportBar::tick(double dt) {
    follow_position();
    const Shown now_shown = shown_now();
    if (now_shown.paused != shown_.paused || now_shown.playing != shown_.playing ||
        now_shown.volume != shown_.volume ||
        std::abs(now_shown.knob - shown_.knob) >= visible_step) {
        shown_ = now_shown;
        invalidate();
    }
    update_balloon();
    FormWidget::tick(dt);
}
