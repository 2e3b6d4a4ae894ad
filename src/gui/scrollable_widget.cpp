// SPDX-License-Identifier: MIT
#include "gui/scrollable_widget.h"

#include "gui/graphics.h"
#include "gui/widget_math.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float slowest = 10.0F;  // units per second
constexpr float flick_gain = 6.0F;
constexpr float following = 0.9F;  // of the way to the pointer

float noticeable(float speed) {
    return std::abs(speed) >= slowest ? speed : 0.0F;  // not-a-number is 0, too
}

bool differs(pointf a, pointf b) {
    return a.x != b.x || a.y != b.y;
}

}  // namespace

void ScrollableWidget::scroll(pointf d, bool absolute) {
    if (!absolute) {
        if (d.x != 0.0F && d.y != 0.0F) moved = true;
        d = scroll_position + d;
    }
    scroll_position = {limited(d.x, 0.0F, scroll_max.x), limited(d.y, 0.0F, scroll_max.y)};
    invalidate();
}

rectf ScrollableWidget::get_current_view() const {
    return {scroll_position.x, scroll_position.y, bounds.w, bounds.h};
}

void ScrollableWidget::screen2point(pointf& p, bool local_only) const {
    WidgetContainer::screen2point(p, local_only);
    p = p + scroll_position;
}

bool ScrollableWidget::mousedown(pointf p, int button) {
    if (button != 1) return false;
    last_pointer = p;
    press_time = static_cast<float>(now());
    moved = differs(velocity, {});
    velocity = {};
    return true;
}

bool ScrollableWidget::mousemove(pointf p, int buttons) {
    if (buttons != 1) return false;
    scroll(last_pointer - p, false);
    last_pointer = {last_pointer.x + (p.x - last_pointer.x) * following,
                    last_pointer.y + (p.y - last_pointer.y) * following};
    return true;
}

bool ScrollableWidget::mouseup(pointf p, int button) {
    if (button != 1) return false;
    // After days a float knows the time only to some milliseconds.
    const auto elapsed = static_cast<float>(std::max(now() + 0.001 - press_time, 0.001));
    const pointf way = last_pointer - p;
    velocity = {noticeable(way.x * flick_gain / elapsed), noticeable(way.y * flick_gain / elapsed)};
    return moved;
}

void ScrollableWidget::tick(double dt) {
    if (differs(velocity, {})) {
        const pointf way(static_cast<float>(velocity.x * dt), static_cast<float>(velocity.y * dt));
        const pointf wanted = scroll_position + way;
        scroll(way, false);
        if (scroll_position.x != wanted.x) velocity.x = 0.0F;
        if (scroll_position.y != wanted.y) velocity.y = 0.0F;
    }
    WidgetContainer::tick(dt);
}

void ScrollableWidget::begin_draw() {
    push_clippingrectangle();
    add_cliprectanglef(0.0F, 0.0F, bounds.w, bounds.h);
    translate_transform(-scroll_position.x, -scroll_position.y);
}

void ScrollableWidget::end_draw() {
    translate_transform(scroll_position.x, scroll_position.y);
    pop_clippingrectangle();
}
