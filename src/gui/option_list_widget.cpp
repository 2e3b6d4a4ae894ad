// SPDX-License-Identifier: MIT
#include "gui/option_list_widget.h"

#include "gui/graphics.h"
#include "gui/widget_math.h"
#include "gui/widget_text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace {

constexpr float room_around_text = 12.0F;
constexpr double seconds_per_jump = 0.1;
constexpr unsigned disabled_text_color = 0xFF808080U;

enum RoundedEnds : unsigned { neither = 0, left_end = 1, right_end = 2 };

// The outline of a rectangle some of whose ends are rounded; returns its points.
int rounded_ends(const rectf& r, unsigned ends, pointf radius, pointf* out) {
    const pointf left = ends & left_end ? radius : pointf();
    const pointf right = ends & right_end ? radius : pointf();
    const pointf radii[4] = {left, right, right, left};
    int count = rounded_points;
    roundedrect2(&r, radii, out, &count, false);
    return count;
}

}  // namespace

OptionListWidget::OptionListWidget() : WidgetBase(WidgetTypes::option_list) {
    ticking = true;
}

void OptionListWidget::add_option(std::string text, bool enabled) {
    option_enabled.resize(option_texts.size(), true);
    option_texts.push_back(std::move(text));
    option_enabled.push_back(enabled);
}

bool OptionListWidget::is_enabled(int option) const {
    const auto index = static_cast<std::size_t>(option);
    return index >= option_enabled.size() || option_enabled[index];
}

void OptionListWidget::layout() {
    option_rectangles.assign(option_texts.size(), {});
    float x = 0.0F;
    for (std::size_t i = 0; i < option_texts.size(); ++i) {
        const float text_width = text_size(option_texts[i]).x * look().small_text_scale;
        option_rectangles[i] = {x, 0.0F, text_width + room_around_text, bounds.h};
        x += option_rectangles[i].w;
    }
    if (!(x > bounds.w)) return;
    const float fitting = std::max(bounds.w, 0.0F) / x;
    for (rectf& r : option_rectangles) {
        r.x *= fitting;
        r.w *= fitting;
    }
}

void OptionListWidget::draw() {
    layout();
    for (int i = 0; i < count(); ++i)
        draw_option(i);
    draw_moving_highlight();
    push_clippingrectangle();
    add_cliprectanglef(0.0F, 0.0F, bounds.w, bounds.h);
    draw_texts(true);
    draw_texts(false);
    pop_clippingrectangle();
}

void OptionListWidget::draw_option(int option) {
    WidgetStyle& drawn_style = look();
    if (!is_enabled(option)) {
        drawn_style.SetGrayedBackground();
    } else if (!value.IsNull() && value->getValue() == static_cast<float>(option)) {
        drawn_style.SetHighlightBackground();
    } else {
        drawn_style.SetDefaultBackground();
    }
    drawn_style.SetDefaultBorder();
    const rectf& r = option_rectangles[static_cast<std::size_t>(option)];
    const unsigned ends =
        (option == 0 ? left_end : neither) | (option == count() - 1 ? right_end : neither);
    if (ends == neither) {
        fillrectanglerc(&r);
        rectanglerc(&r);
        return;
    }
    pointf outline[rounded_points];
    const int points = rounded_ends(r, ends, drawn_style.corner_radius, outline);
    fillpolyf(outline, points);
    drawpolyf(outline, points);
}

// On its way from one option to the next.
void OptionListWidget::draw_moving_highlight() {
    if (value.IsNull()) return;
    const float position = value->getValue();
    const float part = position - std::floor(position);
    const int option = whole_number(std::floor(position));
    if (!(part > 0.0F) || option < 0 || option >= count() - 1) return;
    const rectf& from = option_rectangles[static_cast<std::size_t>(option)];
    const rectf& to = option_rectangles[static_cast<std::size_t>(option) + 1];
    const rectf r(from.x * (1.0F - part) + to.x * part, 0.0F,
                  from.w * (1.0F - part) + to.w * part - 1.0F, bounds.h - 1.0F);
    const unsigned ends =
        (option == 0 ? left_end : neither) | (option >= count() - 2 ? right_end : neither);
    pointf outline[rounded_points];
    look().SetHighlightBackground();
    const int points = rounded_ends(r, ends, look().corner_radius, outline);
    fillpolyf(outline, points);
}

void OptionListWidget::draw_texts(bool enabled) {
    const WidgetStyle& drawn_style = look();
    const float text_scale = drawn_style.small_text_scale;
    std::vector<PlacedText> texts;
    for (int i = 0; i < count(); ++i) {
        if (is_enabled(i) != enabled) continue;
        const auto index = static_cast<std::size_t>(i);
        const std::string& text = option_texts[index];
        texts.push_back(
            {&text, centered_text(text_size(text), text_scale, option_rectangles[index])});
    }
    draw_texts_together(texts, enabled ? drawn_style.text_color : disabled_text_color, text_scale);
}

bool OptionListWidget::mousemove(pointf p, int buttons) {
    if (buttons != 1) return false;
    layout();
    for (int i = 0; i < count(); ++i) {
        if (is_enabled(i) && option_rectangles[static_cast<std::size_t>(i)].contains(p)) choose(i);
    }
    return true;
}

void OptionListWidget::choose(int option) {
    if (value.IsNull()) return;
    // However far it is, the way takes the same time.
    const int distance = std::abs(whole_number(value->getValue() - static_cast<float>(option)));
    step_time = distance < 1 ? seconds_per_jump : seconds_per_jump / distance;
    target = option;
    animating = true;
}

void OptionListWidget::tick(double dt) {
    if (!animating || value.IsNull()) return;
    const float goal = limited(static_cast<float>(target), value->minimum(), value->maximum());
    const float position = value->getValue();
    if (position == goal) {
        animating = false;
        return;
    }
    const double step = step_time > 0.0 ? dt / step_time : std::abs(goal - position);
    const auto next = static_cast<float>(position < goal ? std::min<double>(goal, position + step)
                                                         : std::max<double>(goal, position - step));
    value->setValue(next);
    invalidate();
    // A setting has steps: it may have arrived where `next` had not quite.
    if (next == goal || value->getValue() == goal) {
        animating = false;
        send(EventTypes::value_changed);
    }
}
