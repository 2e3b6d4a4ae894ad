// SPDX-License-Identifier: MIT
#include "gui/slider_widget.h"

#include "gui/gl_font.h"
#include "support/drawing_recorder.h"
#include "support/gui_test.h"

namespace {

using Actions = std::vector<EventTypes::Action>;

class SliderTest : public GuiTest {
  protected:
    SliderTest() {
        form->addLabel(10, 50, 140, 24, "Volume:");
        slider->bounds = {150, 50, 212, 24};
        slider->value = new Value("volume", -40.0F, 60.0F, 10.0F, "dB");
        form->add(slider);
        form->dirty = false;
        setopacity(1.0F);
    }
    ~SliderTest() override { setopacity(0.0F); }

    pointf at(float x) const { return in_window(slider, {x, 12}); }
    rectf knob() const {
        rectf r;
        slider->get_knobrect(&r);
        return r;
    }

    object_ref<SliderWidget> slider = new SliderWidget;
};

TEST_F(SliderTest, StartsWithASettingOfItsOwn) {
    const object_ref<SliderWidget> fresh(new SliderWidget);
    EXPECT_EQ(fresh->value->minimum(), 0.0F);
    EXPECT_EQ(fresh->value->maximum(), 100.0F);
    EXPECT_EQ(fresh->getValue(), 50.0F);
    EXPECT_FALSE(fresh->update_on_release);
    EXPECT_FALSE(fresh->show_value_label);
    EXPECT_TRUE(fresh->snap_to_default);
    EXPECT_FALSE(fresh->custom_draw);
    EXPECT_FALSE(fresh->dragging);
    EXPECT_EQ(fresh->value_label_width, 60.0F);
}

TEST_F(SliderTest, TheKnobStandsWhereTheSettingIs) {
    slider->value->setValue(-40);
    EXPECT_FLOAT_EQ(knob().x, 0.0F);
    slider->value->setValue(10);
    EXPECT_FLOAT_EQ(knob().x, 100.0F);
    slider->value->setValue(60);
    EXPECT_FLOAT_EQ(knob().x, 200.0F);
    EXPECT_EQ(knob().y, 0.0F);
    EXPECT_EQ(knob().w, 12.0F);
    EXPECT_EQ(knob().h, 24.0F);
    slider->show_value_label = true;
    EXPECT_EQ(slider->get_valuelabelwidth(), 60.0F);
    EXPECT_FLOAT_EQ(knob().x, 140.0F);
}

TEST_F(SliderTest, DraggingWritesTheSettingAndTellsOfEveryMove) {
    SliderWidget* found = find_slider(form, "Volume:");
    ASSERT_EQ(found, slider);
    EXPECT_TRUE(world.press(at(53)));
    EXPECT_TRUE(slider->dragging);
    EXPECT_TRUE(form->dirty);
    EXPECT_EQ(slider->value->getValue(), -40.0F + 25.0F) << "53 of 212";
    EXPECT_TRUE(world.move(at(159)));
    EXPECT_EQ(slider->value->getValue(), 35.0F);
    EXPECT_EQ(slider->getValue(), 35.0F);
    world.release(at(159));
    EXPECT_FALSE(slider->dragging);
    EXPECT_EQ(slider->value->getValue(), 35.0F);
    EXPECT_EQ(form->actions(), (Actions{EventTypes::value_changed, EventTypes::value_changed}));
    EXPECT_EQ(form->events[0].sender, slider);
}

TEST_F(SliderTest, GoesToItsEndsAndNoFurther) {
    world.drag(at(100), at(-5000));
    EXPECT_EQ(slider->value->getValue(), -40.0F);
    world.drag(at(100), at(5000));
    EXPECT_EQ(slider->value->getValue(), 60.0F);
}

TEST_F(SliderTest, NearTheDefaultItIsExactlyTheDefault) {
    // The default is at half of 212 - 6 pixels.
    const float place = 103.0F;
    const auto dragged_to = [&](float x) {
        slider->mousemove({x, 5}, 1);
        return slider->value->getValue();
    };
    EXPECT_EQ(dragged_to(place + 4.0F), 10.0F);
    EXPECT_EQ(dragged_to(place - 4.0F), 10.0F);
    EXPECT_EQ(dragged_to(place + 4.9F), 10.0F) << "cut to whole pixels";
    EXPECT_NE(dragged_to(place + 5.0F), 10.0F);
    EXPECT_NE(dragged_to(place - 5.0F), 10.0F);
    slider->snap_to_default = false;
    EXPECT_NE(dragged_to(place + 1.0F), 10.0F);
}

TEST_F(SliderTest, DoesNotSnapToADefaultAtAnEnd) {
    slider->value = new Value("", 0.0F, 212.0F, 0.0F);
    slider->mousemove({2, 5}, 1);
    EXPECT_NEAR(slider->value->getValue(), 2.0F, 1e-3);
    slider->value = new Value("", 0.0F, 212.0F, 212.0F);
    slider->mousemove({207, 5}, 1);
    EXPECT_NEAR(slider->value->getValue(), 207.0F, 1e-3);
}

TEST_F(SliderTest, EverySettingSnapsToItsDefaultExactly) {
    for (const Value& setting : master_settings.list()) {
        const float middle = setting.default_value();
        if (!(setting.minimum() < middle && middle < setting.maximum())) continue;
        slider->value = new Value(setting.name(), setting.minimum(), setting.maximum(), middle);
        slider->value->setValue(setting.maximum());
        slider->mousemove({206.0F * setting.getNormalizedValue(middle) + 3.0F, 5}, 1);
        EXPECT_EQ(slider->drag_value, middle) << setting.name();
        EXPECT_NEAR(slider->value->getValue(), middle, 1e-6) << setting.name();
    }
}

TEST_F(SliderTest, WithUpdateOnReleaseTheSettingWaits) {
    slider->update_on_release = true;
    world.press(at(53));
    world.move(at(159));
    EXPECT_EQ(slider->value->getValue(), 10.0F);
    EXPECT_EQ(slider->getValue(), 35.0F) << "what the knob shows";
    EXPECT_FLOAT_EQ(knob().x, 150.0F);
    EXPECT_TRUE(form->actions().empty());
    slider->value->setValue(22);  // somebody else keeps writing
    EXPECT_EQ(slider->getValue(), 35.0F);
    world.release(at(159));
    EXPECT_EQ(slider->value->getValue(), 35.0F);
    EXPECT_EQ(form->actions(), Actions{EventTypes::value_changed});
}

TEST_F(SliderTest, APressWithoutAMoveKeepsTheSetting) {
    slider->update_on_release = true;
    slider->drag_value = 50.0F;
    gui.mousedown(at(20), 1);
    EXPECT_EQ(slider->getValue(), 10.0F);
    gui.mouseup(at(20), 1);
    EXPECT_EQ(slider->value->getValue(), 10.0F);
}

TEST_F(SliderTest, TheCursorIsAwayWhileDragging) {
    world.press(at(53));
    EXPECT_FALSE(world.cursor);
    world.release(at(53));
    EXPECT_TRUE(world.cursor);
}

TEST_F(SliderTest, OnlyTheLeftButtonAloneCounts) {
    EXPECT_FALSE(slider->mousedown({50, 5}, 2));
    EXPECT_FALSE(slider->mousemove({50, 5}, 0));
    EXPECT_FALSE(slider->mousemove({50, 5}, 3));
    EXPECT_FALSE(slider->mouseup({50, 5}, 3));
    EXPECT_EQ(slider->value->getValue(), 10.0F);
    EXPECT_EQ(world.cursor_calls, 0);
}

TEST_F(SliderTest, TheLabelHasTwoDecimalsAndTheUnit) {
    const auto label = [&](float v) {
        slider->value = new Value("", -100.0F, 100.0F, v, "dB");
        return slider->get_valuelabel();
    };
    EXPECT_EQ(label(0.004F), "0.00dB");
    EXPECT_EQ(label(-0.004F), "0.00dB");
    EXPECT_EQ(label(-0.0099F), "0.00dB");
    EXPECT_EQ(label(-0.02F), "-0.02dB");
    EXPECT_EQ(label(-0.01F), "-0.01dB") << "strictly between";
    EXPECT_EQ(label(12.345F), "12.35dB");
    slider->value = new Value("", 0, 1, 0.25F);
    EXPECT_EQ(slider->get_valuelabel(), "0.25");
    slider->value = new Value("", -3.4e38F, 3.4e38F, -3.4e38F, std::string(1000, 's'));
    EXPECT_EQ(slider->get_valuelabel().size(), 1 + 39 + 3 + 1000U);
}

TEST_F(SliderTest, TheLabelShowsTheSettingNotTheDrag) {
    slider->update_on_release = true;
    slider->mousedown({50, 5}, 1);
    slider->mousemove({200, 5}, 1);
    EXPECT_EQ(slider->get_valuelabel(), "10.00dB");
}

TEST_F(SliderTest, IsDrawnAsTrackGroovesKnobAndLabel) {
    slider->show_value_label = true;
    slider->bounds.w = 272;
    const DrawingRecorder recorder;
    slider->draw();
    const auto fills = recorder.of_kind(Drawn::fill);
    ASSERT_EQ(fills.size(), 4U);
    EXPECT_NEAR(fills[0].box().w, 212.0F, 1e-3);
    EXPECT_NEAR(fills[0].box().h, 24.0F, 1e-3);
    EXPECT_EQ(fills[0].color.a, 112.0F / 255.0F);
    const rectf left = fills[1].box();
    EXPECT_EQ(left.x, 1.0F);
    EXPECT_EQ(left.y, 10.0F);
    EXPECT_EQ(left.w, 98.0F);
    EXPECT_EQ(left.h, 5.0F);
    EXPECT_EQ(fills[1].color.r, 16.0F / 255.0F);
    EXPECT_EQ(fills[1].color.a, 190.0F / 255.0F);
    const rectf right = fills[2].box();
    EXPECT_EQ(right.x, 113.0F);
    EXPECT_EQ(right.w, 212.0F - 100.0F - 12.0F - 2.0F);
    EXPECT_EQ(right.h, 5.0F);
    EXPECT_NEAR(fills[3].box().x, 100.0F, 1e-3);
    EXPECT_NEAR(fills[3].box().w, 12.0F, 1e-3);
    EXPECT_EQ(fills[3].color.a, 112.0F / 255.0F);
    const auto outlines = recorder.of_kind(Drawn::outline);
    ASSERT_EQ(outlines.size(), 2U);
    EXPECT_EQ(outlines[0].color.a, 128.0F / 255.0F);
    EXPECT_EQ(outlines[1].color.r, 256.0F / 255.0F) << "out of range and not clamped";
    EXPECT_EQ(outlines[1].color.a, 96.0F / 255.0F);
    std::pair<int, int> size;
    default_font.GetStringSize("10.00dB", &size);
    const Drawn text = recorder.text("10.00dB");
    EXPECT_FLOAT_EQ(text.points[0].x, 272.0F - (60.0F + 0.5F * float(size.first)) / 2.0F);
    EXPECT_FLOAT_EQ(text.points[0].y, (24.0F + 0.5F * float(size.second)) / 2.0F);
    EXPECT_EQ(text.scale, 0.5F);
    EXPECT_EQ(text.clip.x, 0.0F);
    EXPECT_EQ(text.clip.y, 0.0F);
    EXPECT_EQ(text.clip.w, 272.0F);
    EXPECT_EQ(text.clip.h, 24.0F);
    EXPECT_EQ(recorder.open_clips(), 0);
}

TEST_F(SliderTest, ThePressedKnobIsHighlighted) {
    slider->pressed = true;
    const DrawingRecorder recorder;
    slider->draw();
    EXPECT_TRUE(recorder.of_kind(Drawn::text).empty());
    EXPECT_EQ(recorder.of_kind(Drawn::fill)[3].color.r, 128.0F / 255.0F);
}

TEST_F(SliderTest, ItsParentMayDrawWhatIsOnTheTrack) {
    slider->custom_draw = true;
    slider->show_value_label = true;
    const DrawingRecorder recorder;
    slider->draw();
    EXPECT_EQ(form->actions(), Actions{EventTypes::custom_draw});
    EXPECT_EQ(recorder.drawn.size(), 2U) << "the track's fill and outline";
}

}  // namespace
