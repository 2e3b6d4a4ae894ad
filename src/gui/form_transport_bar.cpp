// SPDX-License-Identifier: MIT
#include "gui/form_transport_bar.h"

#include "core/settings.h"
#include "gui/file_chooser.h"
#include "gui/form_layout.h"
#include "gui/graphics.h"
#include "gui/gui_environment.h"
#include "gui/player_control.h"
#include "gui/transport_icons.h"

#include <cmath>

namespace {

// Later than this into a file, "previous" starts it again.
constexpr float restart_seconds = 2.5F;

bool is_open() {
    return player_control && player_control->is_open();
}

}  // namespace

FormTransportBar::FormTransportBar()
    : previous(make_icon_button()),
      rewind(make_icon_button()),
      pause(make_icon_button()),
      play(make_icon_button()),
      fast_forward(make_icon_button()),
      next(make_icon_button()),
      position(new SliderWidget),
      balloon(new TextBalloonWidget),
      volume(make_slider(master_settings.volume)) {
    title = "Transport bar";
    bounds = rectf(-250, 235, 500, 50);
    auto_hide = true;
    visible = false;
    has_title_bar = false;

    position->value = new Value("position", 0.0F, 0.0F, 0.0F, "s");
    position->update_on_release = true;
    position->snap_to_default = false;
    balloon->text = position_text(0.0F);
    balloon->horizontal_alignment = TextLabelWidget::center;
    balloon->visible = false;
    volume->custom_draw = true;
    volume->snap_to_default = false;
    const FormRow rows[] = {
        {previous, {10, 15, 30, 24}},      {rewind, {45, 15, 30, 24}},
        {pause, {80, 15, 30, 24}},         {play, {115, 15, 30, 24}},
        {fast_forward, {150, 15, 30, 24}}, {next, {185, 15, 30, 24}},
        {position, {220, 15, 220, 24}},    {balloon, {220, -28, 100, 20}},
        {volume, {445, 15, 50, 24}},
    };
    add_rows(*this, rows);
}

bool FormTransportBar::is_scanning() {
    return player_control->is_rewinding() || player_control->is_fast_forwarding();
}

bool FormTransportBar::is_paused() {
    return is_open() && player_control->is_paused() && !is_scanning();
}

bool FormTransportBar::is_playing() {
    return is_open() && !player_control->is_paused() && !is_scanning();
}

void FormTransportBar::onevent(EventArgs& event) {
    switch (event.action) {
        case EventTypes::item_chosen:
            return click(event.sender);
        case EventTypes::pressed:
            return press(event.sender);
        case EventTypes::released:
            return end_scan();
        case EventTypes::value_changed:
            if (event.sender == position) seek();
            return;
        case EventTypes::custom_draw:
            return draw_over(event.sender);
        default:
            return FormWidget::onevent(event);
    }
}

void FormTransportBar::click(const WidgetBase* button) {
    if (button == next && file_chooser) file_chooser->play_next();
    if (!is_open()) return;
    if (button == pause && !player_control->is_paused()) {
        player_control->toggle_pause();
        player_control->show_label("||");
    } else if (button == play && player_control->is_paused()) {
        player_control->toggle_pause();
        player_control->show_label(">");
    } else if (button == previous && position->getValue() > restart_seconds) {
        player_control->seek(0);
    } else if (button == previous && file_chooser) {
        file_chooser->play_previous();
    }
}

void FormTransportBar::press(const WidgetBase* button) {
    if (!is_open()) return;
    if (button == rewind) {
        player_control->rewind();
        player_control->show_label("<<");
        scanning_by_button_ = true;
    } else if (button == fast_forward) {
        player_control->fast_forward();
        scanning_by_button_ = true;
    }
}

void FormTransportBar::end_scan() {
    if (!scanning_by_button_) return;
    scanning_by_button_ = false;
    if (!is_open()) return;
    player_control->toggle_pause();
    gui_environment.show_cursor(true);
}

void FormTransportBar::seek() {
    if (is_open()) player_control->seek(std::llround(double{position->getValue()} * 1e6));
}

bool FormTransportBar::mouseup(pointf p, int button) {
    const bool handled = FormWidget::mouseup(p, button);
    // A button that is left before it is let go says nothing; the scan must not go on for ever.
    end_scan();
    return handled;
}

void FormTransportBar::draw_highlight(const WidgetBase& button) {
    look().SetHighlightBackground();
    look().FillRoundedRect(0.0F, 0.0F, button.bounds.w, button.bounds.h);
    look().DrawRoundedRect(0.0F, 0.0F, button.bounds.w, button.bounds.h);
}

void FormTransportBar::draw_over(const WidgetBase* widget) {
    if (widget == volume) {
        const float share = volume->value->getNormalizedValue(volume->getValue());
        return draw_volume_wedge(volume->bounds.w, volume->bounds.h, share, look().highlight_color);
    }
    if ((widget == pause && is_paused()) || (widget == play && is_playing()))
        draw_highlight(*widget);
    setbrushcolor(0xFFFFFFFFU);
    if (widget == previous) draw_previous_icon();
    if (widget == rewind) draw_rewind_icon();
    if (widget == pause) draw_pause_icon();
    if (widget == play) draw_play_icon();
    if (widget == fast_forward) draw_fast_forward_icon();
    if (widget == next) draw_next_icon();
}
