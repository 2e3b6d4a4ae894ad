// SPDX-License-Identifier: MIT
#pragma once

#include "gui/scrollable_widget.h"

#include <string>
#include <vector>

/// A column of texts to choose from. Sends `item_chosen` when the mouse comes up over one. [main]
class ListBoxWidget : public ScrollableWidget {
  public:
    /// Sent for every row while it is drawn, as `custom_draw`. The parent may draw, and change
    /// where and what the text will be.
    struct CustomDrawArgs : EventArgs {
        explicit CustomDrawArgs(WidgetBase* sender_)
            : EventArgs(sender_, EventTypes::custom_draw) {}

        int y = 0;   ///< top of the row, content coordinates
        int x = 10;  ///< where the text starts
        int index = 0;
        std::string text;
    };

    /// Selects an item and shows it as the fifth row, where the list is long enough. False where
    /// there is no such item.
    bool select_item_by_index(int index);
    /// To be called when items, their height or the widget's height change.
    void update_scroll_max();

    void draw() override;
    bool mousedown(pointf p, int button) override;
    bool mouseup(pointf p, int button) override;

    std::vector<std::string> items;
    int item_height = 40;
    int selected = -1;  ///< may lie outside the list; then nothing is selected
    bool flag = false;  ///< for the owner

  private:
    int count() const { return static_cast<int>(items.size()); }
    int item_at(pointf p) const;
    int row_top(int index) const;
    bool in_view(int index, const rectf& view) const;
    void draw_item(int index);
};
