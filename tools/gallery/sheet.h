// SPDX-License-Identifier: MIT
#pragma once

#include "gui/widget_container.h"

#include "support/png_picture.h"

#include <functional>
#include <string>

/// A page on which things stand side by side, each over its caption. [main]
class Sheet {
  public:
    Sheet(int width, int height) : width_(width), height_(height) {}
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    /// A heading, from `x`.
    void heading(float x, float y, const std::string& text);
    /// A line of text, centred about `x`, its top at `y`.
    void caption(float x, float y, const std::string& text);
    /// A widget at (x, y) of the size it has or is given, and its caption below.
    void add(WidgetBase* widget, float x, float y, const std::string& text);
    void add(WidgetBase* widget, const rectf& bounds, const std::string& text);
    /// What `draw` draws from its own origin, enlarged, with a caption below a box of `size` units.
    void add(float x, float y, pointf size, float zoom, const std::string& text,
             std::function<void()> draw);

    /// The page, over plain dark green. Needs a GL context with the default font.
    PngPicture picture();

  private:
    struct Drawing {
        pointf origin;
        float zoom;
        std::function<void()> draw;
    };

    void draw();

    int width_;
    int height_;
    WidgetContainer page_;
    std::vector<Drawing> drawings_;
};
