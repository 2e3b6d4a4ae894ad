// SPDX-License-Identifier: MIT
#include "gui/list_box_widget.h"

#include "gui/graphics.h"
#include "gui/widget_math.h"
#include "gui/widget_text.h"

#include <algorithm>

namespace {

constexpr unsigned separator_color = 0xFF808080U;
constexpr int rows_above_selected = 4;

}  // namespace

void ListBoxWidget::update_scroll_max() {
    const float content = static_cast<float>(items.size()) * static_cast<float>(item_height);
    scroll_max = {0.0F, std::max(0.0F, content - bounds.h)};
}

bool ListBoxWidget::select_item_by_index(int index) {
    if (index < 0 || index >= count()) return false;
    update_scroll_max();
    const float rows = static_cast<float>(index) - rows_above_selected;
    scroll({0.0F, static_cast<float>(item_height) * rows}, true);
    selected = index;
    return true;
}

void ListBoxWidget::draw() {
    const rectf view = get_current_view();
    begin_draw();
    if (item_height > 0) {
        // Far more items than fit may be there.
        const double top = view.y;
        const int first = std::max(whole_number(top / item_height - 1.0), 0);
        const int end = whole_number((top + view.h) / item_height + 2.0);
        for (int i = first; i < std::min(end, count()); ++i) {
            if (in_view(i, view)) draw_item(i);
        }
    }
    end_draw();
    update_scroll_max();
}

int ListBoxWidget::row_top(int index) const {
    return whole_number(static_cast<double>(index) * item_height);
}

bool ListBoxWidget::in_view(int index, const rectf& view) const {
    const auto top = static_cast<float>(row_top(index));
    return view.contains({0.0F, top}) ||
           view.contains({0.0F, top + static_cast<float>(item_height - 1)});
}

void ListBoxWidget::draw_item(int index) {
    WidgetStyle& drawn_style = look();
    CustomDrawArgs row(this);
    row.y = row_top(index);
    row.index = index;
    row.text = items[static_cast<std::size_t>(index)];
    const auto top = static_cast<float>(row.y);
    const auto height = static_cast<float>(item_height);
    if (index == selected) {
        drawn_style.SetHighlightBackground();
        fillrectanglef(0.0F, top + 1.0F, bounds.w, height - 1.0F);
    }
    send(row);
    const unsigned color =
        index == selected ? drawn_style.second_text_color : drawn_style.text_color;
    const float text_scale = drawn_style.small_text_scale;
    const float text_height = text_scale * text_size(row.text).y;
    const pointf position(static_cast<float>(row.x),
                          static_cast<float>(row.y) + (height + text_height) / 2.0F);
    draw_text(row.text, color, text_scale, position);
    setpencolor(separator_color);
    drawlinef(0.0F, top + height, bounds.w, top + height);
}

int ListBoxWidget::item_at(pointf p) const {
    screen2point(p, true);
    return item_height > 0 ? whole_number(p.y / static_cast<float>(item_height)) : -1;
}

bool ListBoxWidget::mousedown(pointf p, int button) {
    const bool used = ScrollableWidget::mousedown(p, button);
    selected = item_at(p);
    invalidate();
    return used;
}

bool ListBoxWidget::mouseup(pointf p, int button) {
    const bool scrolled = ScrollableWidget::mouseup(p, button);
    if (scrolled || button != 1) return scrolled;
    selected = item_at(p);
    invalidate();
    if (selected >= 0 && selected < count()) send(EventTypes::item_chosen);
    return true;
}
