// SPDX-License-Identifier: MIT
#pragma once

#include "gui/button_widget.h"
#include "gui/form_widget.h"

#include <array>

/// Four icons: files, picture, sound, full screen. The one under the pointer moves. Appears under
/// the pointer. [main]
class FormMenu : public FormWidget {
  public:
    FormMenu();

    void onevent(EventArgs& event) override;
    void tick(double dt) override;

    enum Button : std::size_t { files = 0, video = 1, audio = 2, fullscreen = 3 };

    std::array<object_ref<ButtonWidget>, 4> buttons;
    std::array<float, 4> phases{};  ///< of the icons' animations

  private:
    void click(std::size_t button);
    void toggle_from(const ButtonWidget& button, FormWidget* form);
    void draw_icon(std::size_t button) const;
};
