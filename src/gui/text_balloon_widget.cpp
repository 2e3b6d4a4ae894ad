// SPDX-License-Identifier: MIT
#include "gui/text_balloon_widget.h"

#include "gui/graphics.h"

#include <algorithm>
#include <array>

TextBalloonWidget::TextBalloonWidget() : TextLabelWidget(WidgetTypes::text_balloon) {}

void TextBalloonWidget::draw() {
    WidgetStyle& drawn_style = look();
    drawn_style.SetDefaultBackground();
    drawn_style.SetDefaultBorder();
    constexpr int bottom_edge = 5;  // the bottom edge starts after this many points
    const std::array<pointf, 3> tail = {
        pointf(25.0F, bounds.h), pointf(20.0F, bounds.h + tail_height), pointf(15.0F, bounds.h)};
    std::array<pointf, rounded_points + tail.size()> outline;
    int count = rounded_points;
    const rectf box = area();
    roundedrect(&box, &drawn_style.corner_radius, outline.data(), &count, false);
    fillpolyf(outline.data(), count);
    fillpolyf(tail.data(), static_cast<int>(tail.size()));
    auto* rest = outline.data() + bottom_edge;
    std::copy_backward(rest, outline.data() + count, outline.data() + outline.size());
    std::copy(tail.begin(), tail.end(), rest);
    drawpolyf(outline.data(), static_cast<int>(outline.size()));
    TextLabelWidget::draw();
}
