// SPDX-License-Identifier: MIT
#include "support/gui_world.h"

#include "gui/gl_font.h"
#include "gui/gui_environment.h"
#include "gui/screen.h"
#include "platform/resources.h"

#include <GL/glew.h>

#include <algorithm>
#include <stdexcept>

namespace {

GuiWorld* world = nullptr;
GuiEnvironment environment_before;

void measure_with_default_font() {
    if (default_font.find('A')) return;
    const unsigned char* data = nullptr;
    int size = 0;
    load_resource("GLF", "DEFAULT", &data, &size);
    default_font.Create(reinterpret_cast<const char*>(data), size, 0);
}

template <class Widget>
Widget* find_text(const WidgetContainer* in, int type, const std::string& text) {
    for (WidgetBase* child : in->children) {
        if (child->hastype(type) && static_cast<Widget*>(child)->text == text) {
            return static_cast<Widget*>(child);
        }
    }
    throw std::runtime_error("no widget says " + text);
}

}  // namespace

GuiWorld::GuiWorld(int width, int height) {
    environment_before = gui_environment;
    world = this;
    gui_environment.now = [] { return world->clock; };
    gui_environment.mouse_position = [] { return world->mouse; };
    gui_environment.mouse_buttons = [] { return world->buttons; };
    gui_environment.show_cursor = [](bool visible) {
        world->cursor = visible;
        ++world->cursor_calls;
    };
    gui_environment.fullscreen = [] { return world->fullscreen; };
    defaultStyle = new WidgetStyle;
    measure_with_default_font();
    resize(width, height);
}

GuiWorld::~GuiWorld() {
    gui.children.clear();
    gui.captured = nullptr;
    FormWidget::auto_hide_cursor = true;
    gui_environment = environment_before;
}

void GuiWorld::resize(int width, int height) {
    const auto w = static_cast<float>(width);
    const auto h = static_cast<float>(height);
    const float s = std::min(h / 600.0F, w / 800.0F);
    gui.bounds = {-w / 2.0F, -h / 2.0F, w, h};
    gui.scale = {s, s};
    gui.offset = {w * 0.5F * s, h * 0.5F * s};
    screenRectangle = {-w / 2.0F / s, -h / 2.0F / s, w / s, h / s};
}

bool GuiWorld::press(pointf p, int button) {
    mouse = p;
    held_ = button;
    buttons |= 1U << (button - 1);
    const bool used = gui.mousedown(p, button);
    return gui.mousemove(p, button) || used;
}

bool GuiWorld::move(pointf p) {
    mouse = p;
    return gui.mousemove(p, held_);
}

bool GuiWorld::release(pointf p) {
    mouse = p;
    buttons = 0;
    const bool used = gui.mouseup(p, held_);
    held_ = 0;
    return used;
}

void GuiWorld::click(pointf p) {
    press(p);
    release(p);
}

void GuiWorld::click(const WidgetBase* widget) {
    click(middle_of(widget));
}

void GuiWorld::click(const OptionListWidget* list, const std::string& option) {
    click(middle_of(list, option));
}

void GuiWorld::drag(pointf from, pointf to, int steps, double seconds) {
    press(from);
    for (int i = 1; i <= steps; ++i) {
        clock += seconds / steps;
        const float part = static_cast<float>(i) / static_cast<float>(steps);
        move({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part});
    }
    release(to);
}

void GuiWorld::pass(double seconds, double step) {
    const double end = clock + seconds;
    while (clock < end - 1e-9) {
        const double dt = std::min(step, end - clock);
        clock += dt;
        gui.tick(dt);
    }
}

void GuiWorld::draw() {
    const auto width = static_cast<int>(gui.bounds.w);
    const auto height = static_cast<int>(gui.bounds.h);
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, height, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gui.draw();
}

pointf in_window(const WidgetBase* widget, pointf p) {
    for (; widget; widget = widget->parent) {
        const pointf half(widget->bounds.w / 2.0F, widget->bounds.h / 2.0F);
        p = p - half;
        p = pointf(p.x * widget->scale.x, p.y * widget->scale.y) + half + widget->offset;
        if (widget->parent) p = p + pointf(widget->bounds);
    }
    return p;
}

pointf middle_of(const WidgetBase* widget) {
    if (!widget) return {-1.0F, -1.0F};
    return in_window(widget, {widget->bounds.w / 2.0F, widget->bounds.h / 2.0F});
}

pointf middle_of(const OptionListWidget* list, const std::string& option) {
    if (!list) return {-1.0F, -1.0F};
    const_cast<OptionListWidget*>(list)->layout();
    const auto found = std::find(list->option_texts.begin(), list->option_texts.end(), option);
    if (found == list->option_texts.end()) throw std::runtime_error("no option " + option);
    const auto index = static_cast<std::size_t>(found - list->option_texts.begin());
    return in_window(list, list->option_rectangles[index].center());
}

ButtonWidget* find_button(const WidgetContainer* in, const std::string& text) {
    return find_text<ButtonWidget>(in, WidgetTypes::button, text);
}

TextLabelWidget* find_label(const WidgetContainer* in, const std::string& text) {
    return find_text<TextLabelWidget>(in, WidgetTypes::text_label, text);
}

WidgetBase* find_control(const WidgetContainer* in, const std::string& label) {
    const TextLabelWidget* named = find_label(in, label);
    WidgetBase* nearest = nullptr;
    for (WidgetBase* child : in->children) {
        const bool control =
            child->hastype(WidgetTypes::slider) || child->hastype(WidgetTypes::option_list);
        if (!control || child->bounds.y != named->bounds.y || child->bounds.x < named->bounds.x) {
            continue;
        }
        if (!nearest || child->bounds.x < nearest->bounds.x) nearest = child;
    }
    if (!nearest) throw std::runtime_error("nothing beside " + label);
    return nearest;
}

SliderWidget* find_slider(const WidgetContainer* in, const std::string& label) {
    WidgetBase* control = find_control(in, label);
    if (control->hastype(WidgetTypes::slider)) return static_cast<SliderWidget*>(control);
    throw std::runtime_error("no slider beside " + label);
}

OptionListWidget* find_options(const WidgetContainer* in, const std::string& label) {
    WidgetBase* control = find_control(in, label);
    if (control->hastype(WidgetTypes::option_list)) return static_cast<OptionListWidget*>(control);
    throw std::runtime_error("no options beside " + label);
}
