// SPDX-License-Identifier: MIT
#include "core/settings.h"
#include "gui/screen.h"

#include "gui/forms_rig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

// Moves, presses, releases and time, mostly within the window and sometimes anywhere.
class Mouse {
  public:
    Mouse(FormsRig& rig, unsigned seed, int width, int height)
        : rig_(rig),
          random_(seed),
          width_(static_cast<float>(width)),
          height_(static_cast<float>(height)) {}

    void act() {
        switch (below(6)) {
            case 0:
            case 1:
                rig_.press(somewhere());
                break;
            case 2:
                rig_.release();
                break;
            case 3:
                rig_.pass(0.05 * below(20));
                break;
            default:
                rig_.move(somewhere());
        }
    }

  private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

    pointf somewhere() {
        const float odd[] = {NAN, INFINITY, -INFINITY, 1e30F, -1e30F, -1.0F, 0.0F};
        pointf p(width_ * static_cast<float>(below(1001)) / 1000.0F,
                 height_ * static_cast<float>(below(1001)) / 1000.0F);
        if (below(20) == 0) p.x = odd[below(7)];
        if (below(20) == 0) p.y = odd[below(7)];
        return p;
    }

    FormsRig& rig_;
    std::mt19937 random_;
    float width_;
    float height_;
};

void expect_settings_in_bounds() {
    for (const Value* value : all_settings()) {
        EXPECT_GE(value->getValue(), value->minimum()) << value->name();
        // Steps are floats: the last one may lie a rounding above the end.
        EXPECT_LE(value->getValue(),
                  std::nextafter(value->maximum(), std::numeric_limits<float>::infinity()))
            << value->name();
    }
}

// Nothing leaves the screen, as far as it fits.
void expect_forms_on_screen() {
    for (const FormWidget* form :
         {static_cast<FormWidget*>(formVideoSettings), static_cast<FormWidget*>(formAudioSettings),
          static_cast<FormWidget*>(formVideoAdvancedSettings)}) {
        if (form->bounds.w > screenRectangle.w || form->bounds.h > screenRectangle.h) continue;
        EXPECT_GE(form->bounds.x, screenRectangle.x - 1) << form->title;
        EXPECT_LE(form->bounds.x + form->bounds.w, screenRectangle.x + screenRectangle.w + 1);
        EXPECT_GE(form->bounds.y, screenRectangle.y - 1) << form->title;
        EXPECT_LE(form->bounds.y + form->bounds.h, screenRectangle.y + screenRectangle.h + 1);
    }
}

void expect_position_in_bounds(const FakePlayer& player) {
    const float position = formTransportBar->position->getValue();
    EXPECT_GE(position, 0.0F);
    EXPECT_LE(position, static_cast<float>(player.duration_) + 0.01F);
}

void play_at_random(int width, int height, unsigned seed) {
    FormsRig rig(width, height);
    rig.player.duration_ = 100;
    rig.player.width = 1920;
    rig.player.height = 1080;
    Mouse mouse(rig, seed, width, height);
    FormWidget* const opened[] = {formVideoSettings, formAudioSettings, formVideoAdvancedSettings};
    for (int i = 0; i < 300 && !::testing::Test::HasFailure(); ++i) {
        if (i % 50 == 0) rig.open(*opened[i / 50 % 3]);
        mouse.act();
        rig.player.position_ = std::fmod(i * 0.7, 100.0);
        expect_settings_in_bounds();
        expect_position_in_bounds(rig.player);
    }
    expect_forms_on_screen();
    // Whatever went on: let go, and everything answers again.
    rig.release();
    rig.pass(1);
    for (FormWidget* form : opened)
        form->hide();
    rig.pass(1);
    rig.open(*formAudioSettings);
    rig.click(FormsRig::button(*formAudioSettings, "Close"));
    rig.pass(0.5);
    EXPECT_FALSE(formAudioSettings->visible);
}

TEST(RandomMouse, LeavesFormsWhole) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        play_at_random(800, 600, seed);
        play_at_random(1600, 600, seed);
        play_at_random(8000, 100, seed);
        play_at_random(320, 1200, seed);
    }
}

}  // namespace
