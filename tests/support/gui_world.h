// SPDX-License-Identifier: MIT
#pragma once

#include "gui/button_widget.h"
#include "gui/form_widget.h"
#include "gui/list_box_widget.h"
#include "gui/option_list_widget.h"
#include "gui/slider_widget.h"
#include "gui/text_balloon_widget.h"
#include "gui/text_label_widget.h"

#include <string>

/// Everything around `gui` in the hands of a test: the clock, the mouse, the window's size. Points
/// are in window pixels. Needs no window and no context but to draw: the font only measures. One at
/// a time; empties `gui` when it goes.
class GuiWorld {
  public:
    explicit GuiWorld(int width = 800, int height = 600);
    ~GuiWorld();
    GuiWorld(const GuiWorld&) = delete;
    GuiWorld& operator=(const GuiWorld&) = delete;

    /// Bounds, scale and offset of `gui`, and the screen's rectangle, for a window of this size.
    static void resize(int width, int height);

    /// The mouse as the event loop hands it over: a press is followed by a move with the button
    /// held. They return what the last call into `gui` returned.
    bool press(pointf p, int button = 1);
    bool move(pointf p);
    bool release(pointf p);
    /// Where the mouse is.
    bool release() { return release(mouse); }
    /// Press and release in one place.
    void click(pointf p);
    void click(const WidgetBase* widget);
    void click(const OptionListWidget* list, const std::string& option);
    /// Press, `steps` moves and a release. `seconds` pass between the first and the last.
    void drag(pointf from, pointf to, int steps = 4, double seconds = 0.0);

    /// Lets time pass, with a tick of `gui` every `step` seconds.
    void pass(double seconds, double step = 0.01);

    /// Draws `gui` into the current framebuffer, whose size is the window's. Needs a GL context.
    static void draw();

    double clock = 100.0;
    pointf mouse{-10000.0F, -10000.0F};
    unsigned buttons = 0;
    bool cursor = true;
    int cursor_calls = 0;
    bool fullscreen = false;

  private:
    int held_ = 0;
};

/// Where a point of a widget's own system lies in the window.
pointf in_window(const WidgetBase* widget, pointf p);
pointf middle_of(const WidgetBase* widget);
/// The middle of an option. Throws where there is none of that text.
pointf middle_of(const OptionListWidget* list, const std::string& option);

/// The button of that text in a container. These throw where there is no such widget.
ButtonWidget* find_button(const WidgetContainer* in, const std::string& text);
TextLabelWidget* find_label(const WidgetContainer* in, const std::string& text);
/// The control nearest to the right of a label and level with it.
WidgetBase* find_control(const WidgetContainer* in, const std::string& label);
SliderWidget* find_slider(const WidgetContainer* in, const std::string& label);
OptionListWidget* find_options(const WidgetContainer* in, const std::string& label);
