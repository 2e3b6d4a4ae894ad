// SPDX-License-Identifier: MIT
#pragma once

#include "gui/kept_drawing.h"
#include "gui/widget_container.h"

#include <string>

/// A panel with a title bar to move it by. It fades and zooms in and out, and its drawing is kept
/// in a display list until something in it changes. [main]
class FormWidget : public WidgetContainer {
  public:
    FormWidget();
    ~FormWidget() override;

    /// Opens the form, tells itself (`EventTypes::shown`) and hides forms that are in the way.
    /// Nothing where it is visible.
    void show();
    /// Starts closing; the form stays visible until it has faded.
    void hide();
    void toggle();
    bool is_animating() const { return animation_state != idle; }
    /// The title bar in the form's coordinates.
    rectf get_titlerect() const;
    /// Whether a corner or the centre of `other` lies within this form. One-sided: of two forms
    /// that cross, or one inside the other, the answer may differ.
    bool overlaps_with(const WidgetBase* other) const;
    /// From now on the form zooms from and into the parent's origin.
    void reset_scaling_center();
    /// Back into the screen, after that became smaller.
    void keep_inside();

    void draw() override;
    bool mousedown(pointf p, int button) override;
    bool mousemove(pointf p, int buttons) override;
    bool mouseup(pointf p, int button) override;
    WidgetBase* hittest(pointf p) override;
    void tick(double dt) override;
    void begin_draw() override;
    void end_draw() override;
    void invalidate() override { dirty = true; }
    void onevent(EventArgs& event) override;

    /// The bounds were changed from outside.
    virtual void on_size_changed() {}

    enum AnimationState : int { idle = 0, showing = 1, hiding = 2 };

    /// Whether the pointer disappears from a full screen on which no form is visible.
    static bool auto_hide_cursor;

    std::string title;
    bool auto_hide = false;  ///< appears under the pointer, goes when the pointer leaves
    bool has_title_bar = true;
    bool has_frame = true;    ///< background and borders
    bool full_width = false;  ///< the owner keeps it as wide as the window
    float hold_time = 0.0F;   ///< seconds that an auto-hide form still stays
    double animation_start = 0.0;
    AnimationState animation_state = idle;
    float opacity = 1.0F;
    unsigned display_list = 0;  ///< GL name, made by the first drawing; 0 before
    bool dirty = true;          ///< the list is out of date
    bool dragging = false;
    pointf drag_anchor;
    /// Draws everything every time: for content that changes GL objects while it is drawn.
    bool draws_without_list = false;

  protected:
    /// The form as it is recorded: frame, title, children.
    void draw_contents();
    /// The last part of it: the children, after which nothing is opaque.
    void draw_children();

  private:
    void record();
    void keep_drawing();
    void move_to(pointf origin);
    void draw_frame();
    void draw_title();
    void hide_forms_in_the_way();
    void push_auto_hide_forms_away();
    void animate();
    void animate_to(float progress);
    void finish_hiding();
    void follow_pointer(double dt);
    float animation_seconds() const { return auto_hide ? 0.2F : 0.4F; }

    KeptDrawing kept_;
    bool is_kept_ = false;  // the list holds the picture, or there can be none
};
