// SPDX-License-Identifier: MIT
#include "gallery/sheet.h"
#include "gallery/sheets.h"
#include "gui/artwork.h"
#include "gui/graphics.h"
#include "gui/transport_icons.h"
#include "gui/widget_style.h"

#include <cstdio>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr float zoom = 3.0F;

void box(float width, float height) {
    defaultStyle->SetDefaultBackground();
    defaultStyle->SetDefaultBorder();
    defaultStyle->FillRoundedRect(0, 0, width, height);
    defaultStyle->DrawRoundedRect(0, 0, width, height);
}

void add_menu_icons(Sheet& sheet) {
    struct Row {
        const char* name;
        float step;
        void (*draw)(float t);
    };
    const Row rows[] = {
        {"files", 1, artwork_draw_menuicon},
        {"picture", 10, artwork_draw_optionicon},
        {"sound", 0.75F, artwork_draw_audioicon},
        {"full screen", 0.75F, [](float t) { artwork_draw_fullscreenicon(t, 0); }},
        {"window", 0.75F, [](float t) { artwork_draw_fullscreenicon(t, 1); }},
    };
    sheet.heading(30, 20, "Menu, as time goes by");
    float y = 60;
    for (const Row& row : rows) {
        for (int i = 0; i < 6; ++i) {
            const float t = static_cast<float>(i) * row.step;
            char text[64];
            std::snprintf(text, sizeof text, "%s %.2f", row.name, static_cast<double>(t));
            sheet.add(40 + 150 * static_cast<float>(i), y, {34, 34}, zoom, text, [row, t] {
                box(34, 34);
                row.draw(t);
            });
        }
        y += 140;
    }
}

void add_transport_icons(Sheet& sheet) {
    struct Icon {
        const char* name;
        void (*draw)();
    };
    const Icon icons[] = {{"previous", draw_previous_icon},    {"rewind", draw_rewind_icon},
                          {"pause", draw_pause_icon},          {"play", draw_play_icon},
                          {"forward", draw_fast_forward_icon}, {"next", draw_next_icon}};
    constexpr float y = 810;
    sheet.heading(30, y - 40, "Transport bar");
    for (std::size_t i = 0; i < 6; ++i) {
        sheet.add(40 + 150 * static_cast<float>(i), y, {30, 24}, zoom, icons[i].name,
                  [icon = icons[i]] {
                      box(30, 24);
                      setbrushcolor(0xFFFFFFFFU);
                      icon.draw();
                  });
    }
    const float shares[] = {0, 0.3F, 0.8F, 1};
    for (std::size_t i = 0; i < 4; ++i) {
        char text[32];
        std::snprintf(text, sizeof text, "volume at %.1f", static_cast<double>(shares[i]));
        // The last one as large as it is on the bar.
        const float size = i == 3 ? 1.0F : zoom;
        sheet.add(40 + 200 * static_cast<float>(i), y + 110, {50, 24}, size, text,
                  [share = shares[i]] {
                      box(50, 24);
                      draw_volume_wedge(50, 24, share, defaultStyle->highlight_color);
                  });
    }
}

void outline(const std::vector<pointf>& points) {
    setbrushcolor(0x70000000U);
    setpencolor(0xFFFFFFFFU);
    fillpolyf(points.data(), static_cast<int>(points.size()));
    drawpolyf(points.data(), static_cast<int>(points.size()));
}

std::vector<pointf> rounded(const rectf& r, pointf radius, bool relative) {
    std::vector<pointf> points(rounded_points);
    int count = rounded_points;
    roundedrect(&r, &radius, points.data(), &count, relative);
    return points;
}

std::vector<pointf> rounded_corner(const rectf& r, std::size_t corner) {
    std::vector<pointf> points(rounded_points);
    pointf radii[4];
    radii[corner] = {20, 20};
    int count = rounded_points;
    roundedrect2(&r, radii, points.data(), &count, false);
    return points;
}

void add_outlines(Sheet& sheet) {
    constexpr float y = 1080;
    const pointf size(110, 60);
    const rectf r(0, 0, size.x, size.y);
    const std::pair<const char*, std::vector<pointf>> outlines[] = {
        {"radius 6", rounded(r, {6, 6}, false)},
        {"radius 30 x 10", rounded(r, {30, 10}, false)},
        {"relative 0.5", rounded(r, {0.5F, 0.5F}, true)},
        {"relative 0.2", rounded(r, {0.2F, 0.2F}, true)},
        {"radius 0", rounded(r, {0, 0}, false)},
        {"first corner", rounded_corner(r, 0)},
        {"second corner", rounded_corner(r, 1)},
        {"third corner", rounded_corner(r, 2)},
        {"fourth corner", rounded_corner(r, 3)},
    };
    sheet.heading(30, y - 40, "Rounded outlines");
    for (std::size_t i = 0; i < std::size(outlines); ++i) {
        const float column = static_cast<float>(i % 6);
        const float row = static_cast<float>(i / 6);
        sheet.add(40 + 150 * column, y + 100 * row, size, 1, outlines[i].first,
                  [points = outlines[i].second] { outline(points); });
    }
}

}  // namespace

PngPicture icon_sheet() {
    Sheet sheet(950, 1280);
    add_menu_icons(sheet);
    add_transport_icons(sheet);
    add_outlines(sheet);
    return sheet.picture();
}
