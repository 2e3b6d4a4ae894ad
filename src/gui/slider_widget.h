// SPDX-License-Identifier: MIT
#pragma once

#include "core/settings.h"
#include "gui/widget.h"

#include <string>

/// A knob on a track that moves a setting between its bounds. Sends `value_changed`. [main]
class SliderWidget : public WidgetBase {
  public:
    SliderWidget();

    /// What the knob shows: the dragged number while dragging, otherwise the setting.
    float getValue() const;
    /// 0 where no label is shown.
    float get_valuelabelwidth() const;
    void get_knobrect(rectf* out) const;
    /// What the label says: the setting with two decimals and its unit.
    std::string get_valuelabel() const;

    void draw() override;
    bool mousedown(pointf p, int button) override;
    bool mousemove(pointf p, int buttons) override;
    bool mouseup(pointf p, int button) override;

    object_ref<Value> value;         ///< starts as one of its own, 0 to 100; owners put theirs here
    bool update_on_release = false;  ///< the setting changes when the mouse comes up, not before
    bool show_value_label = false;   ///< at the right; the track is shorter by it
    bool snap_to_default = true;     ///< near the setting's default the knob takes exactly it
    bool custom_draw = false;        ///< the parent draws groove, knob and label
    float drag_value = 0.0F;
    bool dragging = false;
    float value_label_width = 60.0F;

  private:
    float track_width() const { return bounds.w - get_valuelabelwidth(); }
    float knob_width() const;
    bool snaps(float x) const;
    void store();
    void draw_knob();
    void draw_label();
};
