// SPDX-License-Identifier: MIT
#pragma once

#include "core/settings.h"
#include "gui/widget.h"

#include <string>
#include <vector>

/// A row of options, one of which is chosen. The setting is the chosen one's index and passes
/// through fractions on its way to another. Sends `value_changed` when it has arrived. [main]
class OptionListWidget : public WidgetBase {
  public:
    OptionListWidget();

    void add_option(std::string text, bool enabled = true);
    /// Options whose flag is missing are enabled.
    bool is_enabled(int option) const;

    void draw() override;
    /// Moving with the left button held chooses; the press alone does not.
    bool mousemove(pointf p, int buttons) override;
    void tick(double dt) override;

    /// Works out `option_rectangles`, one for each text, in the widget's coordinates.
    void layout();

    std::vector<std::string> option_texts;
    std::vector<bool> option_enabled;
    object_ref<Value> value;  ///< null until the owner puts one here: nothing is chosen
    std::vector<rectf> option_rectangles;
    int target = 0;
    bool animating = false;
    double step_time = 0.0;  ///< seconds for each option passed

  private:
    int count() const { return static_cast<int>(option_texts.size()); }
    void choose(int option);
    void draw_option(int option);
    void draw_moving_highlight();
    void draw_texts(bool enabled);
};
