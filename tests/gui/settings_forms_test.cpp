// SPDX-License-Identifier: MIT
#include "core/settings.h"
#include "gui/screen.h"

#include "gui/forms_rig.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;

// Wide enough for two forms side by side.
constexpr int wide = 1600;

class SettingsForms : public ::testing::Test {
  protected:
    // Moves a form by its title bar so that its left edge lies at `x`.
    void drag_to(FormWidget& form, float x) {
        const pointf grip = rectf(form.get_titlerect()).center();
        const pointf from = FormsRig::in_window(form, grip);
        rig_.press(from);
        rig_.move(from + pointf((x - form.bounds.x) * gui.scale.x, 0));
        rig_.release();
    }

    FormsRig rig_{wide, 600};
};

// Every slider of a form takes its setting from one end to the other and back, and stops on the
// way.
void expect_sliders_move_their_settings(FormsRig& rig, FormWidget& form, int count) {
    rig.open(form);
    int found = 0;
    for (const object_ref<WidgetBase>& child : form.children) {
        auto* slider = dynamic_cast<SliderWidget*>(static_cast<WidgetBase*>(child));
        if (!slider) continue;
        ++found;
        const Value& setting = *slider->value;
        const float track = slider->bounds.w - slider->get_valuelabelwidth();
        rig.press(FormsRig::in_window(*slider, {track * 0.25F, 12}));
        EXPECT_NEAR(setting.getValue(),
                    setting.minimum() + 0.25F * (setting.maximum() - setting.minimum()),
                    1e-3F * (setting.maximum() - setting.minimum()));
        rig.move(FormsRig::in_window(*slider, {track + 300, 400}));
        EXPECT_EQ(setting.getValue(), setting.maximum()) << "outside the slider, still held";
        rig.move(FormsRig::in_window(*slider, {-300, 12}));
        EXPECT_EQ(setting.getValue(), setting.minimum());
        rig.release();
        rig.move(FormsRig::place(*slider));
        EXPECT_EQ(setting.getValue(), setting.minimum()) << "let go";
    }
    EXPECT_EQ(found, count);
}

void expect_options_choose_their_settings(FormsRig& rig, FormWidget& form, int count) {
    rig.open(form);
    int found = 0;
    for (const object_ref<WidgetBase>& child : form.children) {
        auto* list = dynamic_cast<OptionListWidget*>(static_cast<WidgetBase*>(child));
        // A part of the right-hand column lies outside the form, where no press arrives.
        if (!list) continue;
        ++found;
        list->layout();
        for (int i = static_cast<int>(list->option_texts.size()) - 1; i >= 0; --i) {
            const rectf& r = list->option_rectangles[static_cast<std::size_t>(i)];
            EXPECT_LT(list->bounds.x + r.center().x, form.bounds.w) << list->option_texts[0];
            rig.choose(*list, i);
            EXPECT_EQ(list->value->getValue(), static_cast<float>(i))
                << list->option_texts[static_cast<std::size_t>(i)];
        }
    }
    EXPECT_EQ(found, count);
}

TEST_F(SettingsForms, SlidersMoveTheirSettings) {
    expect_sliders_move_their_settings(rig_, *formVideoSettings, 3);
    expect_sliders_move_their_settings(rig_, *formAudioSettings, 8);
    expect_sliders_move_their_settings(rig_, *formVideoAdvancedSettings, 1);
}

TEST_F(SettingsForms, OptionsChooseTheirSettings) {
    expect_options_choose_their_settings(rig_, *formVideoSettings, 7);
    expect_options_choose_their_settings(rig_, *formVideoAdvancedSettings, 4);
}

TEST_F(SettingsForms, SlidersSnapToDefaults) {
    rig_.open(*formVideoSettings);
    SliderWidget* brightness = FormsRig::slider(*formVideoSettings, "Brightness:");
    // The default lies in the middle of the track less half a knob.
    rig_.press(FormsRig::in_window(*brightness, {167 + 3.5F, 12}));
    EXPECT_EQ(master_settings.brightness.getValue(), 0.0F);
    rig_.move(FormsRig::in_window(*brightness, {167 + 9, 12}));
    EXPECT_NE(master_settings.brightness.getValue(), 0.0F);
    rig_.release();
}

TEST_F(SettingsForms, CloseButtonsCloseTheirForms) {
    for (FormWidget* form :
         {static_cast<FormWidget*>(formVideoSettings), static_cast<FormWidget*>(formAudioSettings),
          static_cast<FormWidget*>(formVideoAdvancedSettings)}) {
        rig_.open(*form);
        ASSERT_TRUE(form->visible);
        rig_.click(FormsRig::button(*form, "Close"));
        EXPECT_EQ(form->animation_state, FormWidget::hiding) << form->title;
        rig_.pass(0.5);
        EXPECT_FALSE(form->visible) << form->title;
    }
}

TEST_F(SettingsForms, VsyncIsOnForOnAndAdaptive) {
    rig_.open(*formVideoSettings);
    OptionListWidget* vsync = FormsRig::options(*formVideoSettings, "VSync:");
    EXPECT_EQ(vsync, static_cast<OptionListWidget*>(formVideoSettings->vsync));
    rig_.choose(*vsync, 0);
    EXPECT_EQ(rig_.player.take_calls(), Calls{"vsync 0"});
    rig_.choose(*vsync, 1);
    EXPECT_EQ(rig_.player.take_calls(), Calls{"vsync 1"});
    rig_.choose(*vsync, 0);
    EXPECT_EQ(rig_.player.take_calls(), Calls{"vsync 0"});
    rig_.choose(*vsync, 2);
    EXPECT_EQ(rig_.player.take_calls(), Calls{"vsync 1"});
    EXPECT_EQ(master_settings.vsync.getValue(), 2.0F);
}

TEST_F(SettingsForms, OtherControlsAskNothingOfThePlayer) {
    rig_.open(*formVideoSettings);
    rig_.choose(*FormsRig::options(*formVideoSettings, "Algo:"), 1);
    rig_.choose(*FormsRig::options(*formVideoSettings, "Status:"), 1);
    rig_.choose(*FormsRig::options(*formVideoSettings, "Demo mode:"), 1);
    rig_.choose(*FormsRig::options(*formVideoSettings, "Spatial zoom:"), 3);
    rig_.click(FormsRig::slider(*formVideoSettings, "Contrast:"));
    rig_.open(*formVideoAdvancedSettings);
    rig_.choose(*FormsRig::options(*formVideoAdvancedSettings, "Offload decoding tasks to GPU:"),
                0);
    EXPECT_EQ(rig_.player.take_calls(), Calls{});
}

TEST_F(SettingsForms, FactorsThatFitATextureAreEnabled) {
    const std::vector<bool>& enabled = formVideoSettings->spatial_upscaling->option_enabled;
    rig_.player.width = 1920;
    rig_.player.height = 1080;
    rig_.player.largest_texture_ = 4096;
    rig_.open(*formVideoSettings);
    EXPECT_EQ(enabled, (std::vector<bool>{true, true, false, false}));
    // What is grey cannot be chosen.
    rig_.choose(*formVideoSettings->spatial_upscaling, 2);
    EXPECT_EQ(master_settings.spatial_upscaling_factor.getValue(), 0.0F);
    rig_.choose(*formVideoSettings->spatial_upscaling, 1);
    EXPECT_EQ(master_settings.spatial_upscaling_factor.getValue(), 1.0F);

    // Without a video they stay as they were.
    rig_.player.width = 0;
    formVideoSettings->hide();
    rig_.pass(0.5);
    rig_.open(*formVideoSettings);
    EXPECT_EQ(enabled, (std::vector<bool>{true, true, false, false}));
}

TEST_F(SettingsForms, EitherSideOfAPictureLimitsTheFactor) {
    struct Case {
        int width;
        int height;
        int largest;
        std::vector<bool> enabled;
    };
    const Case cases[] = {
        {1024, 10, 4096, {true, true, true, true}},
        {1025, 10, 4096, {true, true, true, false}},
        {10, 1024, 4096, {true, true, true, true}},
        {10, 1366, 4096, {true, true, false, false}},
        {10, 1365, 4096, {true, true, true, false}},
        {2049, 10, 4096, {true, false, false, false}},
        {9000, 9000, 4096, {true, false, false, false}},
        {640, 480, 8192, {true, true, true, true}},
        {2000000000, 1, 8192, {true, false, false, false}},
    };
    for (const Case& c : cases) {
        rig_.player.width = c.width;
        rig_.player.height = c.height;
        rig_.player.largest_texture_ = c.largest;
        rig_.open(*formVideoSettings);
        EXPECT_EQ(formVideoSettings->spatial_upscaling->option_enabled, c.enabled)
            << c.width << " x " << c.height;
        formVideoSettings->hide();
        rig_.pass(0.5);
    }
}

TEST_F(SettingsForms, AlgorithmIsShownByBothForms) {
    rig_.open(*formVideoSettings);
    rig_.open(*formVideoAdvancedSettings);
    formVideoSettings->visible = true;
    drag_to(*formVideoAdvancedSettings, 100);
    const auto both_clean = [] {
        formVideoSettings->dirty = formVideoAdvancedSettings->dirty = false;
    };
    rig_.pass(1);
    both_clean();
    OptionListWidget* algo = formVideoSettings->algorithm;
    EXPECT_EQ(algo, FormsRig::options(*formVideoSettings, "Algo:"));
    EXPECT_EQ(static_cast<OptionListWidget*>(formVideoAdvancedSettings->upscaling_algorithm),
              FormsRig::options(*formVideoAdvancedSettings, "Upscaling algorithm:"));
    EventArgs from_algo(algo, EventTypes::value_changed);
    formVideoSettings->onevent(from_algo);
    EXPECT_TRUE(formVideoAdvancedSettings->dirty);
    both_clean();
    EventArgs from_advanced(formVideoAdvancedSettings->upscaling_algorithm,
                            EventTypes::value_changed);
    formVideoAdvancedSettings->onevent(from_advanced);
    EXPECT_TRUE(formVideoSettings->dirty);
    both_clean();
    EventArgs from_other(FormsRig::options(*formVideoSettings, "Status:"),
                         EventTypes::value_changed);
    formVideoSettings->onevent(from_other);
    EXPECT_FALSE(formVideoAdvancedSettings->dirty);
}

TEST_F(SettingsForms, InloopFilterFollowsItsList) {
    rig_.open(*formVideoAdvancedSettings);
    OptionListWidget* list =
        FormsRig::options(*formVideoAdvancedSettings, "MPEG4/H264 inloop deblocking filter:");
    rig_.choose(*list, 0);
    EXPECT_EQ(rig_.player.take_calls(), Calls{"inloop 0"});
    rig_.choose(*list, 1);
    EXPECT_EQ(rig_.player.take_calls(), Calls{"inloop 1"});
}

TEST_F(SettingsForms, AdvancedButtonOpensAndCloses) {
    rig_.open(*formVideoSettings);
    drag_to(*formVideoSettings, -800);
    EXPECT_EQ(formVideoSettings->bounds.x, -800.0F);
    ButtonWidget* advanced = FormsRig::button(*formVideoSettings, "Advanced");
    rig_.click(advanced);
    rig_.pass(0.5);
    EXPECT_TRUE(formVideoAdvancedSettings->visible);
    EXPECT_TRUE(formVideoSettings->visible) << "they stand side by side";
    rig_.click(advanced);
    rig_.pass(0.5);
    EXPECT_FALSE(formVideoAdvancedSettings->visible);
}

TEST_F(SettingsForms, OpeningOneClosesWhatItCovers) {
    rig_.open(*formVideoSettings);
    rig_.open(*formAudioSettings);
    EXPECT_TRUE(formAudioSettings->visible);
    EXPECT_FALSE(formVideoSettings->visible);
}

TEST_F(SettingsForms, SettingsChangedElsewhereAreDrawnAnew) {
    rig_.open(*formAudioSettings);
    formAudioSettings->dirty = false;
    rig_.pass(0.1);
    EXPECT_FALSE(formAudioSettings->dirty);
    master_settings.volume.setValue(-3);
    rig_.pass(0.01);
    EXPECT_TRUE(formAudioSettings->dirty);
    rig_.open(*formVideoAdvancedSettings);
    formVideoAdvancedSettings->dirty = false;
    master_settings.denoising_level.setValue(3);
    rig_.pass(0.01);
    EXPECT_TRUE(formVideoAdvancedSettings->dirty);
    rig_.open(*formVideoSettings);
    formVideoSettings->dirty = false;
    master_settings.spatial_upscaling_factor.setValue(2);
    rig_.pass(0.01);
    EXPECT_TRUE(formVideoSettings->dirty);
}

TEST_F(SettingsForms, LiveWithoutAPlayerAndWithoutEachOther) {
    player_control = nullptr;
    rig_.open(*formVideoSettings);
    rig_.choose(*formVideoSettings->vsync, 1);
    EXPECT_EQ(master_settings.vsync.getValue(), 1.0F);
    formVideoAdvancedSettings = nullptr;
    rig_.choose(*formVideoSettings->algorithm, 1);
    rig_.click(FormsRig::button(*formVideoSettings, "Advanced"));
    EXPECT_EQ(master_settings.upscaling_algorithm.getValue(), 1.0F);
}

}  // namespace
