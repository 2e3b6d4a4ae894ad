// SPDX-License-Identifier: MIT
#pragma once

#include "gui/button_widget.h"
#include "gui/form_widget.h"
#include "gui/slider_widget.h"
#include "gui/text_balloon_widget.h"

#include <string>

/// Hours, minutes, seconds and milliseconds of a place in a film, which is given in seconds.
std::string position_text(float seconds);
/// A volume in dB with its sign and two decimals; tiny ones are 0.
std::string volume_text(float decibels);

/// Buttons for playback, a slider for the position and one for the volume, over which a balloon
/// tells the number. Appears under the pointer. [main]
class FormTransportBar : public FormWidget {
  public:
    FormTransportBar();

    void onevent(EventArgs& event) override;
    /// Follows the player: position, duration, volume, and which button is lit.
    void tick(double dt) override;
    bool mouseup(pointf p, int button) override;

    object_ref<ButtonWidget> previous;
    object_ref<ButtonWidget> rewind;
    object_ref<ButtonWidget> pause;
    object_ref<ButtonWidget> play;
    object_ref<ButtonWidget> fast_forward;
    object_ref<ButtonWidget> next;
    /// Seconds, from 0 to the duration.
    object_ref<SliderWidget> position;
    object_ref<TextBalloonWidget> balloon;
    object_ref<SliderWidget> volume;

  private:
    /// What playback looks like on the bar.
    struct Shown {
        bool paused = false;
        bool playing = false;
        float knob = 0.0F;
        float volume = 0.0F;
    };

    static bool is_scanning();
    static bool is_paused();
    static bool is_playing();
    Shown shown_now() const;
    bool uses(const SliderWidget* slider, pointf mouse) const;

    void click(const WidgetBase* button);
    void press(const WidgetBase* button);
    void end_scan();
    void seek();
    void draw_over(const WidgetBase* widget);
    void draw_highlight(const WidgetBase& button);
    void follow_position();
    void update_balloon();

    bool scanning_by_button_ = false;  ///< a scan began here and was not ended here
    Shown shown_;
};
