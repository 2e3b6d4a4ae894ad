// SPDX-License-Identifier: MIT
#include "core/settings.h"
#include "gui/screen.h"

#include "gui/forms_rig.h"
#include "support/drawing_recorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace {

using Calls = std::vector<std::string>;

class TransportBar : public ::testing::Test {
  protected:
    TransportBar() {
        rig_.player.duration_ = 100.0;
        rig_.player.position_ = 40.0;
        rig_.move(FormsRig::in_window(bar_, {5, 5}));
        rig_.pass(0.5);
    }

    Calls click(const WidgetBase* button) {
        rig_.click(button);
        return rig_.player.take_calls();
    }

    FormsRig rig_;
    FormTransportBar& bar_ = *formTransportBar;
};

TEST_F(TransportBar, AppearsUnderThePointerAndGoes) {
    EXPECT_TRUE(bar_.visible);
    EXPECT_EQ(bar_.animation_state, FormWidget::idle);
    EXPECT_EQ(bar_.opacity, 1.0F);
    rig_.move({400, 100});
    // Of its three seconds, 0.3 are over since it had faded in.
    rig_.pass(2.65);
    EXPECT_EQ(bar_.animation_state, FormWidget::idle);
    rig_.pass(0.1);
    EXPECT_EQ(bar_.animation_state, FormWidget::hiding);
    rig_.pass(0.25);
    EXPECT_FALSE(bar_.visible);
    rig_.move(FormsRig::in_window(bar_, {499, 49}));
    rig_.pass(0.1);
    EXPECT_TRUE(bar_.visible);
    EXPECT_EQ(bar_.animation_state, FormWidget::showing);
    EXPECT_EQ(bar_.scale.x, 1.0F) << "it only fades";
    EXPECT_NEAR(bar_.opacity, 0.45F, 0.06F) << "in 0.2 seconds";
}

TEST_F(TransportBar, StaysWhileAButtonIsHeld) {
    rig_.press(FormsRig::place(*bar_.position));
    rig_.move({400, 100});
    rig_.pass(5);
    EXPECT_TRUE(bar_.visible);
    rig_.release();
    rig_.pass(3);
    EXPECT_FALSE(bar_.visible);
}

TEST_F(TransportBar, PausePausesOnce) {
    EXPECT_EQ(click(bar_.pause), (Calls{"pause", "label ||"}));
    EXPECT_TRUE(rig_.player.paused);
    EXPECT_EQ(click(bar_.pause), Calls{});
}

TEST_F(TransportBar, PlayResumesOnce) {
    EXPECT_EQ(click(bar_.play), Calls{});
    rig_.player.paused = true;
    EXPECT_EQ(click(bar_.play), (Calls{"pause", "label >"}));
    EXPECT_FALSE(rig_.player.paused);
}

TEST_F(TransportBar, RewindScansWhileHeld) {
    rig_.press(FormsRig::place(*bar_.rewind));
    EXPECT_EQ(rig_.player.take_calls(), (Calls{"rewind", "label <<"}));
    rig_.cursor = false;
    rig_.pass(1);
    EXPECT_EQ(rig_.player.take_calls(), Calls{});
    rig_.release();
    EXPECT_EQ(rig_.player.take_calls(), Calls{"pause"});
    EXPECT_TRUE(rig_.cursor);
    EXPECT_FALSE(rig_.player.rewinding);
}

TEST_F(TransportBar, FastForwardScansWhileHeld) {
    rig_.press(FormsRig::place(*bar_.fast_forward));
    EXPECT_EQ(rig_.player.take_calls(), Calls{"fast forward"});
    rig_.cursor = false;
    rig_.release();
    EXPECT_EQ(rig_.player.take_calls(), Calls{"pause"});
    EXPECT_TRUE(rig_.cursor);
}

TEST_F(TransportBar, ScanEndsWhenLetGoElsewhere) {
    rig_.press(FormsRig::place(*bar_.fast_forward));
    rig_.move({400, 100});
    EXPECT_EQ(rig_.player.take_calls(), Calls{"fast forward"});
    rig_.release();
    EXPECT_EQ(rig_.player.take_calls(), Calls{"pause"});
    rig_.click(pointf{400, 100});
    EXPECT_EQ(rig_.player.take_calls(), Calls{}) << "once";
}

TEST_F(TransportBar, PreviousRestartsOrGoesBack) {
    rig_.player.position_ = 10;
    rig_.pass(0.02);
    EXPECT_EQ(click(bar_.previous), Calls{"seek 0"});
    EXPECT_EQ(rig_.chooser->calls, Calls{});
    rig_.player.position_ = 2;
    rig_.pass(0.02);
    EXPECT_EQ(click(bar_.previous), Calls{});
    EXPECT_EQ(rig_.chooser->calls, Calls{"previous"});
}

TEST_F(TransportBar, PreviousAtTheLimit) {
    rig_.player.position_ = 2.5;
    rig_.pass(0.02);
    EXPECT_EQ(click(bar_.previous), Calls{});
    EXPECT_EQ(rig_.chooser->calls, Calls{"previous"});
    rig_.player.position_ = 2.501;
    rig_.pass(0.02);
    EXPECT_EQ(click(bar_.previous), Calls{"seek 0"});
}

TEST_F(TransportBar, NextNeedsNoFile) {
    EXPECT_EQ(click(bar_.next), Calls{});
    EXPECT_EQ(rig_.chooser->calls, Calls{"next"});
    rig_.player.open_ = false;
    click(bar_.next);
    EXPECT_EQ(rig_.chooser->calls, (Calls{"next", "next"}));
}

TEST_F(TransportBar, OthersDoNothingWithoutAFile) {
    rig_.player.open_ = false;
    for (const WidgetBase* widget :
         {static_cast<WidgetBase*>(bar_.previous), static_cast<WidgetBase*>(bar_.rewind),
          static_cast<WidgetBase*>(bar_.pause), static_cast<WidgetBase*>(bar_.play),
          static_cast<WidgetBase*>(bar_.fast_forward), static_cast<WidgetBase*>(bar_.position)})
        EXPECT_EQ(click(widget), Calls{});
    rig_.player.paused = true;
    EXPECT_EQ(click(bar_.play), Calls{});
    EXPECT_EQ(rig_.chooser->calls, Calls{});
}

TEST_F(TransportBar, LivesWithoutPlayerAndFiles) {
    player_control = nullptr;
    file_chooser = nullptr;
    for (const object_ref<WidgetBase>& child : bar_.children)
        if (child->visible) rig_.click(child);
    rig_.pass(0.1);
    EXPECT_EQ(bar_.position->getValue(), 0.0F);
}

TEST_F(TransportBar, FollowsPositionAndDuration) {
    EXPECT_EQ(bar_.position->value->maximum(), 100.0F);
    EXPECT_EQ(bar_.position->getValue(), 40.0F);
    rig_.player.duration_ = 7200.5;
    rig_.player.position_ = 3600.25;
    rig_.pass(0.01);
    EXPECT_EQ(bar_.position->value->maximum(), 7200.5F);
    EXPECT_NEAR(bar_.position->getValue(), 3600.25F, 1e-3F);
    rig_.player.open_ = false;
    rig_.pass(0.01);
    EXPECT_EQ(bar_.position->getValue(), 0.0F);
}

TEST_F(TransportBar, OddPositionsAndDurations) {
    const double odd[] = {-5, 0, 1e300, -1e300, INFINITY, NAN};
    for (const double duration : odd) {
        for (const double position : odd) {
            rig_.player.duration_ = duration;
            rig_.player.position_ = position;
            rig_.move(FormsRig::place(*bar_.position));
            rig_.pass(0.02);
            EXPECT_GE(bar_.position->getValue(), 0.0F);
            EXPECT_LE(bar_.position->getValue(), bar_.position->value->maximum());
            EXPECT_LE(bar_.position->value->maximum(), 2e6F);
            rectf knob;
            bar_.position->get_knobrect(&knob);
            EXPECT_GE(knob.x, 0.0F);
            EXPECT_LE(knob.x, 208.0F);
        }
    }
}

TEST_F(TransportBar, DraggingSeeksOnceOnRelease) {
    rig_.press(FormsRig::in_window(*bar_.position, {110, 12}));
    rig_.move(FormsRig::in_window(*bar_.position, {165, 12}));
    rig_.player.position_ = 41;
    rig_.pass(0.1);
    EXPECT_EQ(rig_.player.take_calls(), Calls{});
    EXPECT_EQ(bar_.position->getValue(), 75.0F) << "the player does not move a held knob";
    EXPECT_EQ(bar_.balloon->text, "00:01:15:000");
    rectf knob;
    bar_.position->get_knobrect(&knob);
    EXPECT_EQ(bar_.balloon->bounds.x, 220.0F + knob.x + 6.0F - 20.0F);
    EXPECT_FLOAT_EQ(knob.x, 208.0F * 0.75F);
    rig_.release();
    EXPECT_EQ(rig_.player.take_calls(), Calls{"seek 75000000"});
    rig_.pass(0.1);
    EXPECT_EQ(rig_.player.take_calls(), Calls{});
    EXPECT_EQ(bar_.position->getValue(), 41.0F) << "now it does";
}

TEST_F(TransportBar, PositionDoesNotSnap) {
    // Where a slider of its kind has its default.
    rig_.press(FormsRig::in_window(*bar_.position, {2.2F, 12}));
    EXPECT_NEAR(bar_.position->getValue(), 1.0F, 1e-3F);
    rig_.release();
    EXPECT_EQ(rig_.player.take_calls().size(), 1U);
    master_settings.volume.setValue(-10);
    // The default lies at 0.8 of the width; no knob jumps there.
    rig_.press(FormsRig::in_window(*bar_.volume, {36.5F, 12}));
    EXPECT_NEAR(master_settings.volume.getValue(), -3.5F, 1e-3F);
    rig_.release();
    EXPECT_EQ(rig_.player.take_calls(), Calls{});
}

TEST_F(TransportBar, BalloonTellsThePositionUnderThePointer) {
    EXPECT_FALSE(bar_.balloon->visible);
    rig_.move(FormsRig::in_window(*bar_.position, {0, 0}));
    rig_.pass(0.01);
    EXPECT_TRUE(bar_.balloon->visible);
    EXPECT_EQ(bar_.balloon->text, "00:00:40:000");
    EXPECT_FLOAT_EQ(bar_.balloon->bounds.x, 220 + 208 * 0.4F + 6 - 20);
    EXPECT_EQ(bar_.balloon->bounds.y, -28.0F);
    rig_.move(FormsRig::in_window(*bar_.position, {220.5F, 12}));
    rig_.pass(0.01);
    EXPECT_FALSE(bar_.balloon->visible) << "between the sliders";
}

TEST_F(TransportBar, BalloonTellsTheVolumeUnderThePointer) {
    master_settings.volume.setValue(3);
    rig_.move(FormsRig::place(*bar_.volume));
    rig_.pass(0.01);
    EXPECT_TRUE(bar_.balloon->visible);
    EXPECT_EQ(bar_.balloon->text, "Vol: +3.00 dB");
    EXPECT_EQ(bar_.balloon->bounds.x, 445.0F);
    rig_.press(FormsRig::in_window(*bar_.volume, {0, 12}));
    rig_.move({10, 10});
    rig_.pass(0.01);
    EXPECT_TRUE(bar_.balloon->visible) << "while it is dragged";
    EXPECT_EQ(bar_.balloon->text, "Vol: -40.00 dB");
    EXPECT_EQ(master_settings.volume.getValue(), -40.0F);
    rig_.release();
    rig_.pass(0.01);
    EXPECT_FALSE(bar_.balloon->visible);
}

TEST_F(TransportBar, DraggedPositionWinsOverTheVolumeBelowThePointer) {
    rig_.press(FormsRig::place(*bar_.position));
    rig_.move(FormsRig::place(*bar_.volume));
    rig_.pass(0.01);
    EXPECT_EQ(bar_.balloon->text, "00:01:40:000");
    rig_.release();
}

TEST(TransportTexts, Positions) {
    EXPECT_EQ(position_text(0), "00:00:00:000");
    EXPECT_EQ(position_text(1.5F), "00:00:01:500");
    EXPECT_EQ(position_text(59.75F), "00:00:59:750");
    EXPECT_EQ(position_text(60), "00:01:00:000");
    EXPECT_EQ(position_text(3599), "00:59:59:000");
    EXPECT_EQ(position_text(3661.25F), "01:01:01:250");
    EXPECT_EQ(position_text(360000), "100:00:00:000");
    EXPECT_EQ(position_text(-1), "00:00:00:000");
    EXPECT_EQ(position_text(NAN), "00:00:00:000");
    EXPECT_EQ(position_text(INFINITY), "555:33:20:000");
}

TEST(TransportTexts, Volumes) {
    EXPECT_EQ(volume_text(0), "Vol: 0.00 dB");
    EXPECT_EQ(volume_text(-0.004F), "Vol: 0.00 dB");
    EXPECT_EQ(volume_text(0.0099F), "Vol: 0.00 dB");
    EXPECT_EQ(volume_text(0.01F), "Vol: +0.01 dB");
    EXPECT_EQ(volume_text(-0.01F), "Vol: -0.01 dB");
    EXPECT_EQ(volume_text(3), "Vol: +3.00 dB");
    EXPECT_EQ(volume_text(-40), "Vol: -40.00 dB");
    EXPECT_EQ(volume_text(10), "Vol: +10.00 dB");
}

class TransportBarDrawing : public TransportBar {
  protected:
    using Buttons = std::vector<std::string>;

    // The buttons that are drawn with the highlight of what is going on.
    Buttons highlighted() {
        rig_.pass(0.02);
        bar_.invalidate();
        const DrawingRecorder recorder;
        gui.draw();
        Buttons found;
        for (const Drawn& fill : recorder.of_kind(Drawn::fill)) {
            if (fill.color.r != 128.0F / 255.0F || fill.color.g != 0.0F) continue;
            found.push_back(button_at(fill.box()));
        }
        return found;
    }

  private:
    std::string button_at(const rectf& box) const {
        const std::pair<const char*, const WidgetBase*> buttons[] = {
            {"previous", bar_.previous}, {"rewind", bar_.rewind},        {"pause", bar_.pause},
            {"play", bar_.play},         {"forward", bar_.fast_forward}, {"next", bar_.next}};
        for (const auto& [name, button] : buttons) {
            const pointf from = FormsRig::in_window(*button, {0, 0});
            if (box.x == from.x && box.y == from.y && box.w == 30 && box.h == 24) return name;
        }
        return "elsewhere";
    }
};

TEST_F(TransportBarDrawing, ShowsWhetherTheFilmPlays) {
    EXPECT_EQ(highlighted(), Buttons{"play"});
    rig_.player.paused = true;
    EXPECT_EQ(highlighted(), Buttons{"pause"});
    rig_.player.open_ = false;
    EXPECT_EQ(highlighted(), Buttons{});
    rig_.player.paused = false;
    EXPECT_EQ(highlighted(), Buttons{});
}

TEST_F(TransportBarDrawing, NeitherPlaysNorPausesWhileItScans) {
    for (bool* scan : {&rig_.player.rewinding, &rig_.player.fast_forwarding}) {
        *scan = true;
        for (const bool paused : {true, false}) {
            rig_.player.paused = paused;
            EXPECT_EQ(highlighted(), Buttons{}) << paused;
        }
        *scan = false;
        EXPECT_EQ(highlighted(), Buttons{"play"}) << "afterwards";
    }
}

// What makes the bar be drawn anew, and what does not.
TEST_F(TransportBar, IsDrawnAnewOnlyWhenItChanges) {
    rig_.pass(0.1);
    bar_.dirty = false;
    rig_.player.position_ += 0.02;
    rig_.pass(0.05);
    EXPECT_FALSE(bar_.dirty) << "too little to see";
    rig_.player.position_ += 1;
    rig_.pass(0.01);
    EXPECT_TRUE(bar_.dirty);
    bar_.dirty = false;
    rig_.player.paused = true;
    rig_.pass(0.01);
    EXPECT_TRUE(bar_.dirty);
    bar_.dirty = false;
    master_settings.volume.setValue(5);
    rig_.pass(0.01);
    EXPECT_TRUE(bar_.dirty);
    bar_.dirty = false;
    rig_.pass(0.05);
    EXPECT_FALSE(bar_.dirty);
    rig_.move(FormsRig::place(*bar_.volume));
    rig_.pass(0.01);
    EXPECT_TRUE(bar_.dirty);
    rig_.move(FormsRig::in_window(bar_, {5, 5}));
    bar_.dirty = false;
    rig_.pass(0.01);
    EXPECT_TRUE(bar_.dirty) << "the balloon went";
}

TEST_F(TransportBar, SmallStepsAddUp) {
    rig_.pass(0.1);
    bar_.dirty = false;
    int drawn = 0;
    for (int i = 0; i < 100; ++i) {
        rig_.player.position_ += 0.01;
        rig_.pass(0.01);
        drawn += bar_.dirty ? 1 : 0;
        bar_.dirty = false;
    }
    // 1 s is 2.08 units here; steps of 0.125 and more are drawn.
    EXPECT_GE(drawn, 14);
    EXPECT_LE(drawn, 17);
}

}  // namespace
