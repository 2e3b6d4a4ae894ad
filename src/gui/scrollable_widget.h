// SPDX-License-Identifier: MIT
#pragma once

#include "gui/widget_container.h"

/// A window onto larger content, moved by dragging. When let go it glides on at constant speed,
/// until it meets its limit or is pressed. [main]
class ScrollableWidget : public WidgetContainer {
  public:
    /// Moves by `d`, or to `d`, within the limits.
    void scroll(pointf d, bool absolute);
    /// The visible part in content coordinates.
    rectf get_current_view() const;

    /// Content coordinates.
    void screen2point(pointf& p, bool local_only) const override;
    bool mousedown(pointf p, int button) override;
    bool mousemove(pointf p, int buttons) override;
    /// True where the press was a scroll, not a click.
    bool mouseup(pointf p, int button) override;
    void tick(double dt) override;
    /// Between the two, content coordinates are drawn in, clipped to the widget.
    void begin_draw() override;
    void end_draw() override;

    pointf scroll_position;  ///< the content at the top left corner
    pointf scroll_max;
    pointf velocity;  ///< units per second
    pointf last_pointer;
    float press_time = 0.0F;
    bool moved = false;  ///< this press scrolled, or stopped what was moving
};
