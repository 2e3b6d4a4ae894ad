// SPDX-License-Identifier: MIT
#pragma once

#include "gui/text_label_widget.h"

/// A label in a rounded box with a tail that hangs 20 units below its bounds, near the left. [main]
class TextBalloonWidget : public TextLabelWidget {
  public:
    TextBalloonWidget();

    void draw() override;

    static constexpr float tail_height = 20.0F;
};
