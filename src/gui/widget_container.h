// SPDX-License-Identifier: MIT
#pragma once

#include "gui/widget.h"

#include <string>
#include <vector>

class TextLabelWidget;

/// A widget with children, which it keeps alive. Later children lie on top. [main]
class WidgetContainer : public WidgetBase {
  public:
    WidgetContainer();

    /// Appends a reference to `w` and becomes its parent. Null is ignored.
    void add(WidgetBase* w);
    /// Does nothing: widgets stay where they were added; forms are hidden instead.
    void remove(WidgetBase* w);
    /// Makes and adds a label. It lives as long as the program, even without its container.
    TextLabelWidget* addLabel(float x, float y, float w, float h, std::string text);
    bool anyVisible() const;

    void draw() override;
    /// The topmost visible child at `p` gets the press and everything until the release.
    bool mousedown(pointf p, int button) override;
    bool mousemove(pointf p, int buttons) override;
    bool mouseup(pointf p, int button) override;
    /// The topmost visible child at `p`, where that child finds something in itself; else null.
    WidgetBase* hittest(pointf p) override;
    /// A negative `dt`: the time since the last call of this kind, on whichever container.
    void tick(double dt) override;

    /// An event of a child. Nothing is done here.
    virtual void onevent(EventArgs& event);

    std::vector<object_ref<WidgetBase>> children;
    pointf scaling_center;            ///< the centre of zooming, from the container's centre
    object_ref<WidgetBase> captured;  ///< the child that got the last press

  protected:
    explicit WidgetContainer(int code);

    /// Zooms what is drawn from here on by `scale` about the scaling centre.
    void apply_zoom() const;

  private:
    WidgetBase* child_at(pointf p) const;
};

/// Holds every form. Gets points in window pixels.
extern WidgetContainer gui;
