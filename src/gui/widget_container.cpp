// SPDX-License-Identifier: MIT
#include "gui/widget_container.h"

#include "gui/graphics.h"
#include "gui/text_label_widget.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Time since the last call, whoever asks.
double measured_time(double now) {
    static double old_time = now;
    const double passed = now - old_time;
    old_time += passed;
    return std::max(passed, 0.0);
}

// Labels are never freed; whoever looks for leaks finds them here.
void keep_for_ever(TextLabelWidget* label) {
    static auto* kept = new std::vector<TextLabelWidget*>;
    kept->push_back(label);
}

float drawable(float scale) {
    return std::abs(scale) >= smallest_scale ? scale : smallest_scale;
}

}  // namespace

WidgetContainer::WidgetContainer() : WidgetContainer(WidgetTypes::container) {}

WidgetContainer::WidgetContainer(int code) : WidgetBase(code) {
    ticking = true;
}

void WidgetContainer::add(WidgetBase* w) {
    if (!w) return;
    children.push_back(w);
    w->parent = this;
}

void WidgetContainer::remove(WidgetBase* /*w*/) {}

TextLabelWidget* WidgetContainer::addLabel(float x, float y, float w, float h, std::string text) {
    const object_ref<TextLabelWidget> label(new TextLabelWidget);
    label->bounds = {x, y, w, h};
    label->text = std::move(text);
    label->parent = this;
    children.push_back(label);
    keep_for_ever(label);
    return label;
}

bool WidgetContainer::anyVisible() const {
    return std::any_of(children.rbegin(), children.rend(),
                       [](const object_ref<WidgetBase>& child) { return child->visible; });
}

void WidgetContainer::apply_zoom() const {
    const pointf pivot = pointf(bounds.w / 2.0F, bounds.h / 2.0F) + scaling_center;
    translate_transform(pivot.x, pivot.y);
    scale_transform(drawable(scale.x), drawable(scale.y));
    translate_transform(-pivot.x, -pivot.y);
}

void WidgetContainer::draw() {
    push_transform();
    translate_transform(offset.x, offset.y);
    apply_zoom();
    for (std::size_t i = 0; i < children.size(); ++i) {
        const object_ref<WidgetBase> child = children[i];
        if (!child->visible) continue;
        const pointf origin = child->bounds;
        translate_transform(origin.x, origin.y);
        child->draw();
        translate_transform(-origin.x, -origin.y);
    }
    pop_transform();
}

WidgetBase* WidgetContainer::child_at(pointf p) const {
    const auto found = std::find_if(children.rbegin(), children.rend(), [&](WidgetBase* child) {
        return child->visible && child->bounds.contains(p);
    });
    return found == children.rend() ? nullptr : static_cast<WidgetBase*>(*found);
}

bool WidgetContainer::mousedown(pointf p, int button) {
    screen2point(p, true);
    const object_ref<WidgetBase> child = child_at(p);
    if (child.IsNull()) return false;
    child->mousedown(p - pointf(child->bounds), button);
    // A second button may go down elsewhere while the first is held.
    if (!captured.IsNull()) captured->pressed = false;
    captured = static_cast<WidgetBase*>(child);
    child->pressed = true;
    return true;
}

bool WidgetContainer::mousemove(pointf p, int buttons) {
    screen2point(p, true);
    const object_ref<WidgetBase> child =
        buttons == 0 ? child_at(p) : static_cast<WidgetBase*>(captured);
    return !child.IsNull() && child->mousemove(p - pointf(child->bounds), buttons);
}

bool WidgetContainer::mouseup(pointf p, int button) {
    screen2point(p, true);
    const object_ref<WidgetBase> child = captured;
    if (child.IsNull()) return false;
    child->mouseup(p - pointf(child->bounds), button);
    child->pressed = false;
    captured = nullptr;
    return true;
}

WidgetBase* WidgetContainer::hittest(pointf p) {
    screen2point(p, true);
    WidgetBase* child = child_at(p);
    return child && child->hittest(p - pointf(child->bounds)) ? child : nullptr;
}

void WidgetContainer::tick(double dt) {
    // Not-a-number is measured, too.
    if (!(dt >= 0.0)) dt = measured_time(now());
    for (std::size_t i = 0; i < children.size(); ++i) {
        const object_ref<WidgetBase> child = children[i];
        if (child->ticking) child->tick(dt);
    }
}

void WidgetContainer::onevent(EventArgs& /*event*/) {}
