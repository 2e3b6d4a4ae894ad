// SPDX-License-Identifier: MIT
// How forms come and go.
#include "gui/form_widget.h"
#include "gui/gui_environment.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float hold_seconds = 3.0F;

// Every other form beside `form` that shows itself, or every one that does not.
template <class Action>
void for_each_sibling(const FormWidget& form, bool auto_hide, Action action) {
    if (!form.parent) return;
    for (std::size_t i = 0; i < form.parent->children.size(); ++i) {
        const object_ref<WidgetBase> child = form.parent->children[i];
        if (static_cast<WidgetBase*>(child) == &form || !child->hastype(WidgetTypes::form)) {
            continue;
        }
        auto& sibling = static_cast<FormWidget&>(*child);
        if (sibling.auto_hide == auto_hide) action(sibling);
    }
}

}  // namespace

void FormWidget::show() {
    if (visible) return;
    visible = true;
    animation_state = showing;
    animation_start = now();
    hold_time = hold_seconds;
    EventArgs event(this, EventTypes::shown);
    onevent(event);
    hide_forms_in_the_way();
    if (auto_hide_cursor) gui_environment.show_cursor(true);
}

void FormWidget::hide() {
    if (!visible || animation_state == hiding) return;
    animation_state = hiding;
    animation_start = now();
}

void FormWidget::toggle() {
    if (visible) {
        hide();
    } else {
        show();
    }
}

// Forms that were opened by hand stay unless they are covered. Others, that were there from the
// start, stay only while the pointer is on them.
void FormWidget::hide_forms_in_the_way() {
    const pointf mouse = gui_environment.mouse_position();
    for_each_sibling(*this, false, [&](FormWidget& sibling) {
        const bool stays = sibling.hold_time > 0.0F || parent->hittest(mouse) == &sibling;
        if (!stays || overlaps_with(&sibling)) sibling.hide();
    });
}

void FormWidget::push_auto_hide_forms_away() {
    for_each_sibling(*this, true, [&](FormWidget& sibling) {
        if (overlaps_with(&sibling)) sibling.hide();
    });
}

void FormWidget::tick(double dt) {
    if (animation_state != idle) {
        animate();
    } else if (auto_hide && captured.IsNull()) {
        follow_pointer(dt);
    }
    WidgetContainer::tick(dt);
}

void FormWidget::animate() {
    const auto progress = static_cast<float>((now() - animation_start) / animation_seconds());
    // A clock that went back ends the animation, too.
    const bool finished = progress > 1.0F || progress < 0.0F;
    if (!finished) {
        animate_to(animation_state == showing ? progress : 1.0F - progress);
    } else if (animation_state == hiding) {
        finish_hiding();
    } else {
        animate_to(1.0F);
        scale = {1.0F, 1.0F};
        animation_state = idle;
    }
    invalidate();
}

// Forms that hide themselves only fade. The others grow as well, fast at first.
void FormWidget::animate_to(float progress) {
    opacity = progress;
    if (auto_hide) return;
    const float zoom = std::max(std::sqrt(progress), smallest_scale);
    scale = {zoom, zoom};
}

void FormWidget::finish_hiding() {
    opacity = 0.0F;
    animation_state = idle;
    visible = false;
    scale = {1.0F, 1.0F};
    if (auto_hide_cursor && parent && !parent->anyVisible() && gui_environment.fullscreen()) {
        gui_environment.show_cursor(false);
    }
}

void FormWidget::follow_pointer(double dt) {
    if (getMouseButton() == 0) {
        const bool inside = area().contains(getMousePosition());
        if (inside && !visible) show();
        if (!inside && visible && hold_time <= 0.0F) hide();
    }
    hold_time = std::max(0.0F, hold_time - static_cast<float>(dt));
}
