// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

class WidgetBase;

namespace EventTypes {

/// What a widget tells its parent. Buttons send codes of their owner's choice besides.
enum Action : std::int32_t {
    item_chosen = 0,    ///< a list box, when the button comes up over an item
    pressed = 1,        ///< a button, when the mouse goes down on it
    released = 2,       ///< a button, when the mouse comes up; its own code follows
    value_changed = 3,  ///< a slider or an option list
    close_request = 4,  ///< anyone; a form answers by hiding
    custom_draw = 5,    ///< while drawing: the parent may draw over the widget
    shown = 6,          ///< a form, to itself
};

}  // namespace EventTypes

/// One event. Widgets that have more to tell send derived records; sender and action say which.
struct EventArgs {
    EventArgs(WidgetBase* sender_, EventTypes::Action action_) : sender(sender_), action(action_) {}

    WidgetBase* sender;
    EventTypes::Action action;
};
