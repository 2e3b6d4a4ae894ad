// SPDX-License-Identifier: MIT
#include "gui/form_menu.h"

#include "gui/artwork.h"
#include "gui/file_chooser.h"
#include "gui/form_layout.h"
#include "gui/forms.h"
#include "gui/player_control.h"

#include <algorithm>

namespace {

// How fast each icon's phase grows under the pointer, per second.
constexpr float speeds[] = {3.0F, 60.0F, 9.0F, 4.0F};

bool is_fullscreen() {
    return player_control && player_control->is_fullscreen();
}

}  // namespace

FormMenu::FormMenu() {
    title = "Menu";
    bounds = rectf(-390, -290, 174, 43);
    auto_hide = true;
    visible = false;
    has_title_bar = false;
    has_frame = false;
    for (object_ref<ButtonWidget>& button : buttons)
        button = make_icon_button();
    const FormRow rows[] = {
        {buttons[files], {10, 5, 34, 34}},
        {buttons[video], {49, 5, 34, 34}},
        {buttons[audio], {88, 5, 34, 34}},
        {buttons[fullscreen], {127, 5, 34, 34}},
    };
    add_rows(*this, rows);
}

void FormMenu::onevent(EventArgs& event) {
    const auto* sender =
        std::find_if(buttons.begin(), buttons.end(),
                     [&](const ButtonWidget* button) { return button == event.sender; });
    const auto index = static_cast<std::size_t>(sender - buttons.begin());
    if (sender != buttons.end() && event.action == EventTypes::item_chosen)
        click(index);
    else if (sender != buttons.end() && event.action == EventTypes::custom_draw)
        draw_icon(index);
    else
        FormWidget::onevent(event);
}

void FormMenu::click(std::size_t button) {
    switch (button) {
        case files:
            return toggle_from(*buttons[button], file_chooser ? &file_chooser->form() : nullptr);
        case video:
            return toggle_from(*buttons[button], formVideoSettings);
        case audio:
            return toggle_from(*buttons[button], formAudioSettings);
        default:
            if (player_control) player_control->set_fullscreen(!is_fullscreen());
    }
}

void FormMenu::toggle_from(const ButtonWidget& button, FormWidget* form) {
    if (!form) return;
    form->scaling_center = pointf(bounds) + button.bounds.center() - form->bounds.center();
    form->toggle();
}

void FormMenu::draw_icon(std::size_t button) const {
    switch (button) {
        case files:
            return artwork_draw_menuicon(phases[button]);
        case video:
            return artwork_draw_optionicon(phases[button]);
        case audio:
            return artwork_draw_audioicon(phases[button]);
        default:
            return artwork_draw_fullscreenicon(phases[button], is_fullscreen() ? 1 : 0);
    }
}

void FormMenu::tick(double dt) {
    const pointf mouse = getMousePosition();
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        if (!buttons[i]->bounds.contains(mouse)) continue;
        phases[i] += static_cast<float>(speeds[i] * dt);
        invalidate();
        break;
    }
    FormWidget::tick(dt);
}
