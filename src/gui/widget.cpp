// SPDX-License-Identifier: MIT
#include "gui/widget.h"

#include "gui/gui_environment.h"
#include "gui/widget_container.h"

#include <cmath>

namespace {

// One coordinate: what a zoom by `scale` about the middle of `extent` had been applied to.
float unzoomed(float position, float offset, float extent, float scale) {
    // Also where the scale is not a number.
    const float divisor = std::abs(scale) >= smallest_scale ? scale : smallest_scale;
    const float middle = extent / 2.0F;
    return ((position - offset) - middle) / divisor + middle;
}

}  // namespace

WidgetBase::WidgetBase() : style(defaultStyle) {}

void WidgetBase::screen2point(pointf& p, bool local_only) const {
    if (!local_only && parent) {
        parent->screen2point(p, false);
        p = p - pointf(bounds);
    }
    p = {unzoomed(p.x, offset.x, bounds.w, scale.x), unzoomed(p.y, offset.y, bounds.h, scale.y)};
}

bool WidgetBase::mousedown(pointf /*p*/, int /*button*/) {
    return false;
}

bool WidgetBase::mousemove(pointf /*p*/, int /*buttons*/) {
    return false;
}

bool WidgetBase::mouseup(pointf /*p*/, int /*button*/) {
    return false;
}

WidgetBase* WidgetBase::hittest(pointf /*p*/) {
    return nullptr;
}

void WidgetBase::tick(double /*dt*/) {}

void WidgetBase::invalidate() {
    if (parent) parent->invalidate();
}

double WidgetBase::now() {
    return gui_environment.now();
}

pointf WidgetBase::getMousePosition() const {
    pointf p = gui_environment.mouse_position();
    screen2point(p, false);
    return p;
}

unsigned WidgetBase::getMouseButton() {
    return gui_environment.mouse_buttons();
}

void WidgetBase::send(EventArgs& event) {
    if (parent) parent->onevent(event);
}

void WidgetBase::send(EventTypes::Action action) {
    EventArgs event(this, action);
    send(event);
}

WidgetStyle& WidgetBase::look() {
    if (style.IsNull()) {
        if (defaultStyle.IsNull()) defaultStyle = new WidgetStyle;
        style = defaultStyle;
    }
    return *style;
}
