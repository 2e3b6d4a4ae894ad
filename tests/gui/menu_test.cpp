// SPDX-License-Identifier: MIT
#include "gui/screen.h"

#include "gui/forms_rig.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;

class Menu : public ::testing::Test {
  protected:
    Menu() {
        rig_.move(FormsRig::in_window(menu_, {2, 2}));
        rig_.pass(0.5);
    }

    pointf button_center(std::size_t button) const {
        return FormsRig::place(*menu_.buttons[button]);
    }

    FormsRig rig_;
    FormMenu& menu_ = *formMenu;
};

TEST_F(Menu, AppearsUnderThePointerAndGoes) {
    EXPECT_TRUE(menu_.visible);
    rig_.move({400, 300});
    // Of its three seconds, 0.3 are over since it had faded in.
    rig_.pass(2.65);
    EXPECT_EQ(menu_.animation_state, FormWidget::idle);
    rig_.pass(0.35);
    EXPECT_FALSE(menu_.visible);
}

TEST_F(Menu, OnlyTheIconUnderThePointerMoves) {
    const float speeds[] = {3, 60, 9, 4};
    for (std::size_t hovered = 0; hovered < 4; ++hovered) {
        const auto before = menu_.phases;
        rig_.move(button_center(hovered));
        rig_.pass(0.5);
        for (std::size_t i = 0; i < 4; ++i) {
            const float moved = i == hovered ? speeds[i] * 0.5F : 0.0F;
            EXPECT_NEAR(menu_.phases[i] - before[i], moved, 1e-3F) << i << " of " << hovered;
        }
    }
}

TEST_F(Menu, NothingMovesBetweenTheButtons) {
    rig_.move(FormsRig::in_window(menu_, {46, 20}));
    menu_.dirty = false;
    rig_.pass(0.5);
    EXPECT_EQ(menu_.phases, (std::array<float, 4>{}));
    EXPECT_FALSE(menu_.dirty);
    rig_.move(button_center(0));
    rig_.pass(0.01);
    EXPECT_TRUE(menu_.dirty);
}

TEST_F(Menu, ButtonsOpenAndCloseTheirForms) {
    FormWidget* const forms[] = {rig_.chooser, formVideoSettings, formAudioSettings};
    for (std::size_t i = 0; i < 3; ++i) {
        // A form may lie over the menu.
        forms[i]->bounds = {-100, -100, 200, 200};
        rig_.click(button_center(i));
        rig_.pass(0.5);
        EXPECT_TRUE(forms[i]->visible) << i;
        rig_.click(button_center(i));
        rig_.pass(0.5);
        EXPECT_FALSE(forms[i]->visible) << i;
    }
    EXPECT_EQ(rig_.player.take_calls(), Calls{});
}

// In window pixels, the point about which a form zooms.
pointf pivot(const FormWidget& form) {
    return pointf(form.bounds) + pointf(form.bounds.w / 2, form.bounds.h / 2) + form.scaling_center;
}

TEST_F(Menu, FormsZoomOutOfTheirButtons) {
    FormWidget* const forms[] = {rig_.chooser, formVideoSettings, formAudioSettings};
    const float centers[] = {27, 66, 105};
    for (std::size_t i = 0; i < 3; ++i) {
        forms[i]->bounds.x += 30;  // as if it had been dragged
        forms[i]->reset_scaling_center();
        rig_.click(button_center(i));
        EXPECT_EQ(pivot(*forms[i]).x, -390 + centers[i]);
        EXPECT_EQ(pivot(*forms[i]).y, -290 + 5 + 17.0F);
        forms[i]->visible = false;
        forms[i]->animation_state = FormWidget::idle;
    }
}

TEST_F(Menu, FollowsTheCornerOfTheScreen) {
    menu_.bounds.x = -500;
    menu_.bounds.y = -280;
    rig_.move(button_center(1));
    rig_.pass(0.5);
    rig_.click(button_center(1));
    EXPECT_EQ(pivot(*formVideoSettings).x, -500 + 66.0F);
    EXPECT_EQ(pivot(*formVideoSettings).y, -280 + 22.0F);
}

TEST_F(Menu, LastButtonSwitchesFullScreen) {
    rig_.click(button_center(3));
    EXPECT_EQ(rig_.player.take_calls(), Calls{"fullscreen 1"});
    rig_.click(button_center(3));
    EXPECT_EQ(rig_.player.take_calls(), Calls{"fullscreen 0"});
}

TEST_F(Menu, LivesWithoutPlayerAndForms) {
    player_control = nullptr;
    file_chooser = nullptr;
    formVideoSettings = nullptr;
    formAudioSettings = nullptr;
    for (std::size_t i = 0; i < 4; ++i)
        rig_.click(button_center(i));
    EXPECT_TRUE(menu_.visible);
}

TEST_F(Menu, ADraggedFormPushesItAway) {
    rig_.open(*formAudioSettings);
    const pointf grip =
        FormsRig::in_window(*formAudioSettings, formAudioSettings->get_titlerect().center());
    rig_.press(grip);
    rig_.move(grip + pointf(-150, 0));
    EXPECT_EQ(menu_.animation_state, FormWidget::idle);
    rig_.move(grip + pointf(-190, -130));
    EXPECT_EQ(menu_.animation_state, FormWidget::hiding);
    rig_.release();
}

}  // namespace
