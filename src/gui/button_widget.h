// SPDX-License-Identifier: MIT
#pragma once

#include "gui/widget.h"

#include <string>

/// A button. Sends `pressed` when the mouse goes down, and when it comes up on the button
/// `released` and then `action_code`. It has to be moved over while held, if only by nothing.
/// [main]
class ButtonWidget : public WidgetBase {
  public:
    ButtonWidget();

    void draw() override;
    bool mousedown(pointf p, int button) override;
    bool mousemove(pointf p, int buttons) override;
    bool mouseup(pointf p, int button) override;

    std::string text;
    EventTypes::Action action_code = EventTypes::item_chosen;
    bool custom_draw = false;  ///< the parent draws over it
    bool armed = false;        ///< the pointer is inside while the left button is held
};
