// SPDX-License-Identifier: MIT
#include "gui/form_widget.h"

#include "gui/gl_font.h"
#include "gui/graphics.h"
#include "gui/screen.h"
#include "gui/text_balloon_widget.h"
#include "gui/widget_math.h"
#include "gui/widget_text.h"

#include <GL/glew.h>
#include <SDL.h>

#include <cmath>
#include <string>

namespace {

constexpr unsigned title_bar_color = 0x80282828U;
constexpr unsigned dragged_title_bar_color = 0x80FF0000U;

// A list cannot be recorded into another; a form within a form is drawn into the outer one's.
bool recording = false;

// What a widget draws on, in its own coordinates. Of all of them only balloons leave their bounds.
rectf drawn_area(const WidgetBase& widget) {
    rectf all = widget.area();
    if (widget.hastype(WidgetTypes::text_balloon)) all.h += TextBalloonWidget::tail_height;
    if (const auto* container = dynamic_cast<const WidgetContainer*>(&widget)) {
        for (const object_ref<WidgetBase>& child : container->children) {
            if (!child->visible) continue;
            rectf r = drawn_area(*child);
            r += pointf(child->bounds) + container->offset;
            all = united(all, r);
        }
    }
    return all;
}

}  // namespace

bool FormWidget::auto_hide_cursor = true;

FormWidget::FormWidget() : WidgetContainer(WidgetTypes::form) {}

FormWidget::~FormWidget() {
    // At the end of the process the context is gone, and the list with it.
    if (display_list && SDL_WasInit(SDL_INIT_VIDEO)) glDeleteLists(display_list, 1);
}

rectf FormWidget::get_titlerect() const {
    const float text_scale = style.IsNull() ? WidgetStyle().text_scale : style->text_scale;
    const auto height = static_cast<float>(default_font.GetCharHeight('A'));
    return {4.0F, 10.0F, bounds.w - 8.0F, height * text_scale};
}

bool FormWidget::overlaps_with(const WidgetBase* other) const {
    if (!other) return false;
    const rectf& r = other->bounds;
    return bounds.contains({r.x, r.y}) || bounds.contains({r.x + r.w, r.y}) ||
           bounds.contains({r.x, r.y + r.h}) || bounds.contains({r.x + r.w, r.y + r.h}) ||
           bounds.contains(r.center());
}

void FormWidget::reset_scaling_center() {
    scaling_center = -bounds.center();
}

void FormWidget::draw() {
    if (draws_without_list || recording) {
        draw_contents();
        return;
    }
    if (dirty) {
        record();
        dirty = false;
        is_kept_ = false;
    } else {
        if (!is_kept_) keep_drawing();
        glCallList(display_list);
    }
}

void FormWidget::record() {
    if (!display_list) display_list = glGenLists(1);
    recording = true;
    // Executing too: it has to be seen now, and clipping needs the matrices as they will be.
    glNewList(display_list, GL_COMPILE_AND_EXECUTE);
    draw_contents();
    glEndList();
    recording = false;
}

// What has not changed for a frame is likely to stay. Its hundreds of primitives, each with a state
// of its own, cost a software driver ten times as much as the quad.
void FormWidget::keep_drawing() {
    if (is_animating() || scale.x != 1.0F || scale.y != 1.0F) return;
    is_kept_ = true;
    recording = true;
    const bool made = kept_.make(drawn_area(*this), [this] { draw_contents(); });
    recording = false;
    if (!made) return;
    glNewList(display_list, GL_COMPILE);
    kept_.draw();
    glEndList();
}

void FormWidget::draw_contents() {
    begin_draw();
    if (has_frame) draw_frame();
    if (has_title_bar) draw_title();
    end_draw();
    draw_children();
}

void FormWidget::draw_children() {
    WidgetContainer::draw();
    setopacity(0.0F);
}

void FormWidget::begin_draw() {
    setopacity(opacity);
    push_transform();
    apply_zoom();
}

void FormWidget::end_draw() {
    pop_transform();
}

void FormWidget::draw_frame() {
    WidgetStyle& drawn_style = look();
    drawn_style.SetDefaultBackground();
    drawn_style.SetDefaultBorder();
    drawn_style.FillRoundedRect(0.0F, 0.0F, bounds.w, bounds.h);
    drawn_style.DrawRoundedRect(0.0F, 0.0F, bounds.w, bounds.h);
    drawn_style.DrawRoundedRect(2.0F, 2.0F, bounds.w - 4.0F, bounds.h - 4.0F);
}

void FormWidget::draw_title() {
    const WidgetStyle& drawn_style = look();
    const rectf bar = get_titlerect();
    const std::string text = "<" + title + ">";
    const float text_width = text_size(text).x * drawn_style.text_scale;
    setbrushcolor(dragging ? dragged_title_bar_color : title_bar_color);
    fillrectanglerc(&bar);
    draw_clipped_text(text, drawn_style.text_color, drawn_style.text_scale,
                      {bar.x + (bar.w - text_width) / 2.0F, bar.y + bar.h}, area());
}

bool FormWidget::mousedown(pointf p, int button) {
    if (has_title_bar && get_titlerect().contains(p)) {
        drag_anchor = p;
        dragging = true;
        dirty = true;
        return true;
    }
    const bool used = WidgetContainer::mousedown(p, button);
    dirty |= used;
    return used;
}

bool FormWidget::mousemove(pointf p, int buttons) {
    if (!dragging) {
        const bool used = WidgetContainer::mousemove(p, buttons);
        dirty |= used;
        return used;
    }
    move_to(pointf(bounds) + p - drag_anchor);
    reset_scaling_center();
    dirty = true;
    push_auto_hide_forms_away();
    return true;
}

bool FormWidget::mouseup(pointf p, int button) {
    if (dragging) {
        dragging = false;
        dirty = true;
        return true;
    }
    const bool used = WidgetContainer::mouseup(p, button);
    dirty |= used;
    return used;
}

void FormWidget::keep_inside() {
    const pointf before(bounds);
    move_to(before);
    if (bounds.x == before.x && bounds.y == before.y) return;
    reset_scaling_center();
    dirty = true;
}

// Where the form is larger than the screen, the left and top edges win.
void FormWidget::move_to(pointf origin) {
    const rectf& screen = screenRectangle;
    if (!std::isnan(origin.x)) {
        bounds.x = limited(origin.x, screen.x, screen.x + screen.w - bounds.w);
    }
    if (!std::isnan(origin.y)) {
        bounds.y = limited(origin.y, screen.y, screen.y + screen.h - bounds.h);
    }
}

WidgetBase* FormWidget::hittest(pointf p) {
    return visible && area().contains(p) ? this : nullptr;
}

void FormWidget::onevent(EventArgs& event) {
    if (event.action == EventTypes::close_request) {
        hide();
    } else {
        WidgetContainer::onevent(event);
    }
}
