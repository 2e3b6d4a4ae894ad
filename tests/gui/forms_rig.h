// SPDX-License-Identifier: MIT
#pragma once

#include "gui/file_chooser.h"
#include "gui/forms.h"
#include "gui/player_control.h"

#include "support/gui_world.h"

#include <string>
#include <vector>

/// A player that notes what is asked of it and is in whatever state a test puts it.
class FakePlayer : public PlayerControl {
  public:
    bool is_open() const override { return open_; }
    bool is_paused() const override { return paused; }
    bool is_rewinding() const override { return rewinding; }
    bool is_fast_forwarding() const override { return fast_forwarding; }
    double position() const override { return position_; }
    double duration() const override { return duration_; }
    bool picture_size(int* width, int* height) const override;
    int largest_texture() const override { return largest_texture_; }
    void set_inloop_filter(bool on) override { note("inloop", on); }
    void toggle_pause() override;
    void rewind() override;
    void fast_forward() override;
    void seek(std::int64_t us) override { calls.push_back("seek " + std::to_string(us)); }
    void open(const std::string& path) override { calls.push_back("open " + path); }
    void show_label(const std::string& text) override { calls.push_back("label " + text); }
    bool is_fullscreen() const override { return fullscreen; }
    void set_fullscreen(bool on) override;
    void set_vsync(bool on) override { note("vsync", on); }
    gl_texture_resource* thumbnail(const std::string& /*path*/) override { return nullptr; }

    /// The calls since the last look.
    std::vector<std::string> take_calls();

    bool open_ = true;
    bool paused = false;
    bool rewinding = false;
    bool fast_forwarding = false;
    bool fullscreen = false;
    double position_ = 0.0;
    double duration_ = 0.0;
    int width = 0;  ///< 0: no video is being decoded
    int height = 0;
    int largest_texture_ = 8192;
    std::vector<std::string> calls;

  private:
    void note(const char* what, bool on) { calls.push_back(what + std::string(on ? " 1" : " 0")); }
};

/// A form for files that notes what is asked of it.
class FakeChooser : public FormWidget, public FileChooser {
  public:
    FakeChooser();

    void play_next() override { calls.emplace_back("next"); }
    void play_previous() override { calls.emplace_back("previous"); }
    FormWidget& form() override { return *this; }

    std::vector<std::string> calls;
};

/// A world with all forms in `gui`, a player of the test's own, and every setting at its default.
class FormsRig : public GuiWorld {
  public:
    explicit FormsRig(int width = 800, int height = 600);
    ~FormsRig();

    /// Shows a form and waits until it stands still.
    void open(FormWidget& form);

    /// The control to the right of a label; null where there is none.
    static WidgetBase* control(const FormWidget& form, const std::string& label);
    static SliderWidget* slider(const FormWidget& form, const std::string& label);
    static OptionListWidget* options(const FormWidget& form, const std::string& label);
    static ButtonWidget* button(const FormWidget& form, const std::string& text);

    /// A place within a widget, in shares of its size, in window pixels.
    static pointf place(const WidgetBase& widget, float x = 0.5F, float y = 0.5F);
    /// A point of a widget's own coordinates, in window pixels.
    static pointf in_window(const WidgetBase& widget, pointf p) { return ::in_window(&widget, p); }

    /// Chooses an option and waits until its setting has arrived.
    void choose(OptionListWidget& list, int option);

    FakePlayer player;
    object_ref<FakeChooser> chooser;
};

/// Every one of them.
std::vector<Value*> all_settings();

/// Puts every setting to its default.
void reset_settings();
