// SPDX-License-Identifier: MIT
#include "gui/widget_style.h"

#include "gui/graphics.h"

void WidgetStyle::SetDefaultBackground() {
    setbrushcolorrgba(0, 0, 0, 112);
}

void WidgetStyle::SetHighlightBackground() {
    setbrushcolor(highlight_color);
}

void WidgetStyle::SetGrayedBackground() {
    setbrushcolorrgba(80, 80, 80, 200);
}

void WidgetStyle::SetDefaultBorder() {
    setpencolorrgba(255, 255, 255, 128);
}

void WidgetStyle::DrawRoundedRect(float x, float y, float w, float h) {
    DrawRoundedRect(rectf(x, y, w, h));
}

void WidgetStyle::DrawRoundedRect(rectf r) {
    pointf outline[rounded_points];
    int count = rounded_points;
    roundedrect(&r, &corner_radius, outline, &count, false);
    drawpolyf(outline, count);
}

void WidgetStyle::FillRoundedRect(float x, float y, float w, float h) {
    FillRoundedRect(rectf(x, y, w, h));
}

void WidgetStyle::FillRoundedRect(rectf r) {
    pointf outline[rounded_points];
    int count = rounded_points;
    roundedrect(&r, &corner_radius, outline, &count, false);
    fillpolyf(outline, count);
}
