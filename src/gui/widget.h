// SPDX-License-Identifier: MIT
#pragma once

#include "core/object.h"
#include "gui/event_args.h"
#include "gui/geometry.h"
#include "gui/widget_style.h"

class WidgetContainer;

/// Which class a widget is.
namespace WidgetTypes {
enum Code : int {
    base = 0,
    container = 1,  ///< and every container that has no code of its own
    slider = 2,
    option_list = 3,
    text_label = 4,
    button = 5,
    form = 6,  ///< and everything derived from it
    text_balloon = 7,
};
}  // namespace WidgetTypes

/// The smallest zoom there is: points are divided by it.
inline constexpr float smallest_scale = 0.001F;

/// Anything in the window that is drawn and takes the mouse.
///
/// GUI units, y runs down. `bounds` are in the parent's coordinates; a widget draws, and is given
/// points, relative to the origin of its bounds. Only drawing needs a GL context. [main]
class WidgetBase : public object {
  public:
    WidgetBase();
    WidgetBase(const WidgetBase&) = delete;
    WidgetBase& operator=(const WidgetBase&) = delete;
    ~WidgetBase() override = default;

    /// Turns a point into one of this widget's content. `local_only`: `p` is relative to the
    /// widget's origin; otherwise it is in window pixels and every parent converts it first.
    virtual void screen2point(pointf& p, bool local_only) const;
    virtual void draw() {}

    /// The mouse at `p`, relative to the widget's origin. `button` is the one that went down or
    /// came up, `buttons` the one held (0: none). They return whether the widget made use of it.
    virtual bool mousedown(pointf p, int button);
    virtual bool mousemove(pointf p, int buttons);
    virtual bool mouseup(pointf p, int button);
    /// What lies at `p`, or null. Only forms answer for themselves.
    virtual WidgetBase* hittest(pointf p);

    /// `dt` seconds have passed.
    virtual void tick(double dt);
    virtual void begin_draw() {}
    virtual void end_draw() {}
    /// Something visible changed: the form that holds the widget has to be drawn anew.
    virtual void invalidate();

    /// Seconds, by the environment's clock.
    static double now();
    /// The pointer in this widget's coordinates.
    pointf getMousePosition() const;
    /// The buttons held, as `GuiEnvironment::mouse_buttons` tells them.
    static unsigned getMouseButton();
    bool hastype(int code) const { return type_ == code; }
    int getType() const { return type_; }

    /// The rectangle of the widget in its own coordinates.
    rectf area() const { return {0.0F, 0.0F, bounds.w, bounds.h}; }

    rectf bounds;
    object_ref<WidgetStyle> style;
    pointf scale{1.0F, 1.0F};           ///< about the centre
    pointf offset;                      ///< moves the content
    bool visible = true;                ///< hidden widgets are neither drawn nor hit
    WidgetContainer* parent = nullptr;  ///< gets the events; not owned

  protected:
    explicit WidgetBase(int code) : WidgetBase() { type_ = code; }

    /// Hands an event to the parent; without one it is lost.
    void send(EventArgs& event);
    void send(EventTypes::Action action);
    /// The style; one is made where there is none.
    WidgetStyle& look();
    int type_ = WidgetTypes::base;

  public:
    bool pressed = false;  ///< a mouse button went down here and has not come up
    bool ticking = false;  ///< `tick` is wanted
};
