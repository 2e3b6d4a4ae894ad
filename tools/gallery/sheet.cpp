// SPDX-License-Identifier: MIT
#include "gallery/sheet.h"

#include "gui/graphics.h"
#include "gui/text_label_widget.h"

#include "gui/forms_picture.h"

#include <GL/glew.h>

#include <utility>

namespace {

constexpr float caption_width = 200.0F;
constexpr float caption_height = 18.0F;
constexpr float gap = 4.0F;

}  // namespace

void Sheet::heading(float x, float y, const std::string& text) {
    TextLabelWidget* label = page_.addLabel(x, y, caption_width * 2.0F, 28, text);
    label->scale = {1.4F, 1.4F};
}

void Sheet::caption(float x, float y, const std::string& text) {
    TextLabelWidget* label =
        page_.addLabel(x - caption_width / 2.0F, y, caption_width, caption_height, text);
    label->horizontal_alignment = TextLabelWidget::center;
}

void Sheet::add(WidgetBase* widget, float x, float y, const std::string& text) {
    add(widget, {x, y, widget->bounds.w, widget->bounds.h}, text);
}

void Sheet::add(WidgetBase* widget, const rectf& bounds, const std::string& text) {
    widget->bounds = bounds;
    widget->visible = true;
    page_.add(widget);
    caption(bounds.center().x, bounds.y + bounds.h + gap, text);
}

void Sheet::add(float x, float y, pointf size, float zoom, const std::string& text,
                std::function<void()> draw) {
    drawings_.push_back({{x, y}, zoom, std::move(draw)});
    caption(x + size.x * zoom / 2.0F, y + size.y * zoom + gap, text);
}

void Sheet::draw() {
    const auto w = static_cast<float>(width_);
    const auto h = static_cast<float>(height_);
    page_.bounds = {0, 0, w, h};
    glViewport(0, 0, width_, height_);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width_, height_, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    for (const Drawing& drawing : drawings_) {
        setopacity(1.0F);
        push_transform();
        translate_transform(drawing.origin.x, drawing.origin.y);
        scale_transform(drawing.zoom, drawing.zoom);
        drawing.draw();
        pop_transform();
    }
    // Forms leave nothing opaque behind them, so that each child is given its own start.
    for (const object_ref<WidgetBase>& child : page_.children) {
        setopacity(1.0F);
        translate_transform(child->bounds.x, child->bounds.y);
        child->draw();
        translate_transform(-child->bounds.x, -child->bounds.y);
    }
}

PngPicture Sheet::picture() {
    const rectf everything(0, 0, static_cast<float>(width_), static_cast<float>(height_));
    return drawn_picture(width_, height_, everything, [this] { draw(); });
}
