// SPDX-License-Identifier: MIT
#include "gui/widget.h"

#include "gui/gui_environment.h"
#include "support/gui_test.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace {

static_assert(std::is_base_of_v<object, WidgetBase>);
static_assert(std::is_base_of_v<object, WidgetStyle>);
static_assert(std::is_base_of_v<WidgetBase, SliderWidget>);
static_assert(std::is_base_of_v<WidgetBase, OptionListWidget>);
static_assert(std::is_base_of_v<WidgetBase, ButtonWidget>);
static_assert(std::is_base_of_v<WidgetBase, WidgetContainer>);
static_assert(std::is_base_of_v<TextLabelWidget, TextBalloonWidget>);
static_assert(std::is_base_of_v<WidgetContainer, ScrollableWidget>);
static_assert(std::is_base_of_v<ScrollableWidget, ListBoxWidget>);
static_assert(std::is_base_of_v<WidgetContainer, FormWidget>);
static_assert(sizeof(EventTypes::Action) == 4);

class WidgetTest : public ::testing::Test {
  protected:
    GuiWorld world;
    object_ref<WidgetBase> widget = new WidgetBase;
};

TEST_F(WidgetTest, StartsVisibleUnscaledAndInTheDefaultStyle) {
    EXPECT_EQ(widget->bounds.x, 0.0F);
    EXPECT_EQ(widget->bounds.w, 0.0F);
    EXPECT_EQ(static_cast<WidgetStyle*>(widget->style), static_cast<WidgetStyle*>(defaultStyle));
    EXPECT_EQ(widget->scale.x, 1.0F);
    EXPECT_EQ(widget->scale.y, 1.0F);
    EXPECT_EQ(widget->offset.x, 0.0F);
    EXPECT_TRUE(widget->visible);
    EXPECT_EQ(widget->parent, nullptr);
    EXPECT_FALSE(widget->pressed);
    EXPECT_FALSE(widget->ticking);
}

TEST_F(WidgetTest, EveryClassHasItsCode) {
    const auto code = [](WidgetBase* w) {
        const object_ref<WidgetBase> owner(w);
        EXPECT_TRUE(w->hastype(w->getType()));
        EXPECT_FALSE(w->hastype(w->getType() + 1));
        return w->getType();
    };
    EXPECT_EQ(code(new WidgetBase), 0);
    EXPECT_EQ(code(new WidgetContainer), 1);
    EXPECT_EQ(code(new ScrollableWidget), 1);
    EXPECT_EQ(code(new ListBoxWidget), 1);
    EXPECT_EQ(code(new SliderWidget), 2);
    EXPECT_EQ(code(new OptionListWidget), 3);
    EXPECT_EQ(code(new TextLabelWidget), 4);
    EXPECT_EQ(code(new ButtonWidget), 5);
    EXPECT_EQ(code(new FormWidget), 6);
    EXPECT_EQ(code(new TextBalloonWidget), 7);
}

TEST_F(WidgetTest, ActionsHaveTheirCodes) {
    EXPECT_EQ(EventTypes::item_chosen, 0);
    EXPECT_EQ(EventTypes::pressed, 1);
    EXPECT_EQ(EventTypes::released, 2);
    EXPECT_EQ(EventTypes::value_changed, 3);
    EXPECT_EQ(EventTypes::close_request, 4);
    EXPECT_EQ(EventTypes::custom_draw, 5);
    EXPECT_EQ(EventTypes::shown, 6);
}

TEST_F(WidgetTest, BaseTakesNoMouse) {
    widget->bounds = {0, 0, 10, 10};
    EXPECT_FALSE(widget->mousedown({5, 5}, 1));
    EXPECT_FALSE(widget->mousemove({5, 5}, 1));
    EXPECT_FALSE(widget->mouseup({5, 5}, 1));
    EXPECT_EQ(widget->hittest({5, 5}), nullptr);
}

TEST_F(WidgetTest, LocalPointsAreUnzoomedAboutTheCentre) {
    widget->bounds = {1000, 2000, 100, 40};
    widget->scale = {2.0F, 0.5F};
    widget->offset = {6, -4};
    pointf p(56, 16);  // the centre, as it is drawn
    widget->screen2point(p, true);
    EXPECT_FLOAT_EQ(p.x, 50.0F);
    EXPECT_FLOAT_EQ(p.y, 20.0F);
    p = {76, 21};
    widget->screen2point(p, true);
    EXPECT_FLOAT_EQ(p.x, 60.0F) << "20 to the right at twice the size";
    EXPECT_FLOAT_EQ(p.y, 30.0F) << "5 below at half the size";
}

TEST_F(WidgetTest, WindowPixelsPassThroughEveryParent) {
    GuiWorld::resize(1600, 1200);
    const object_ref<WidgetContainer> box(new WidgetContainer);
    gui.add(box);
    box->add(widget);
    box->bounds = {-100, -50, 200, 100};
    widget->bounds = {30, 20, 50, 50};
    pointf p(800 + 2 * (-100 + 30 + 7), 600 + 2 * (-50 + 20 + 9));
    widget->screen2point(p, false);
    EXPECT_NEAR(p.x, 7.0F, 1e-3);
    EXPECT_NEAR(p.y, 9.0F, 1e-3);
}

TEST_F(WidgetTest, ScalingCentreOfAContainerDoesNotMovePoints) {
    const object_ref<WidgetContainer> box(new WidgetContainer);
    box->bounds = {0, 0, 100, 100};
    box->scale = {2, 2};
    box->scaling_center = {30, -70};
    pointf p(70, 50);
    box->screen2point(p, true);
    EXPECT_EQ(p.x, 60.0F);
    EXPECT_EQ(p.y, 50.0F);
}

TEST_F(WidgetTest, NoScaleDividesByZero) {
    widget->bounds = {0, 0, 100, 100};
    widget->scale = {0.0F, NAN};
    pointf p(51, 49);
    widget->screen2point(p, true);
    EXPECT_NEAR(p.x, 1050.0F, 0.1) << "as with a scale of 0.001";
    EXPECT_NEAR(p.y, -950.0F, 0.1);
}

TEST_F(WidgetTest, ConversionsThereAndBackAgree) {
    GuiWorld::resize(1234, 777);
    gui.add(widget);
    widget->bounds = {-13, 17, 90, 60};
    widget->scale = {0.7F, 1.3F};
    pointf p = in_window(widget, {11, 22});
    widget->screen2point(p, false);
    EXPECT_NEAR(p.x, 11.0F, 1e-2);
    EXPECT_NEAR(p.y, 22.0F, 1e-2);
}

TEST_F(WidgetTest, ClockAndMouseComeFromTheEnvironment) {
    gui.add(widget);
    widget->bounds = {-100, -100, 50, 50};
    world.clock = 12.5;
    world.mouse = {310, 220};
    world.buttons = 5;
    EXPECT_EQ(WidgetBase::now(), 12.5);
    EXPECT_EQ(WidgetBase::getMouseButton(), 5U);
    EXPECT_FLOAT_EQ(widget->getMousePosition().x, 10.0F);
    EXPECT_FLOAT_EQ(widget->getMousePosition().y, 20.0F);
}

TEST_F(WidgetTest, InvalidatingClimbsToTheForm) {
    const object_ref<FormWidget> form(new FormWidget);
    const object_ref<WidgetContainer> box(new WidgetContainer);
    widget->invalidate();  // nobody to tell
    gui.add(form);
    form->add(box);
    box->add(widget);
    form->dirty = false;
    widget->invalidate();
    EXPECT_TRUE(form->dirty);
}

TEST_F(WidgetTest, EventsWithoutAParentAreLost) {
    const object_ref<ButtonWidget> button(new ButtonWidget);
    EXPECT_TRUE(button->mousedown({0, 0}, 1));
    const object_ref<SliderWidget> slider(new SliderWidget);
    slider->bounds = {0, 0, 100, 24};
    EXPECT_TRUE(slider->mousemove({100, 0}, 1));
    EXPECT_EQ(slider->value->getValue(), 100.0F);
}

#if defined(__x86_64__)
// Where a virtual function stands in the table.
template <class Function>
std::size_t slot(Function function) {
    struct {
        std::uintptr_t offset;
        std::ptrdiff_t adjustment;
    } pointer{};
    static_assert(sizeof pointer == sizeof function);
    std::memcpy(&pointer, &function, sizeof pointer);
    return (pointer.offset - 1) / sizeof(void*);
}

TEST_F(WidgetTest, VirtualOperationsStandInTheirOrder) {
    EXPECT_EQ(slot(&WidgetBase::addref), 0U);
    EXPECT_EQ(slot(&WidgetBase::release), 1U);
    EXPECT_EQ(slot(&WidgetBase::queryInterface), 2U);
    // The destructor has two.
    EXPECT_EQ(slot(&WidgetBase::screen2point), 5U);
    EXPECT_EQ(slot(&WidgetBase::draw), 6U);
    EXPECT_EQ(slot(&WidgetBase::mousedown), 7U);
    EXPECT_EQ(slot(&WidgetBase::mousemove), 8U);
    EXPECT_EQ(slot(&WidgetBase::mouseup), 9U);
    EXPECT_EQ(slot(&WidgetBase::hittest), 10U);
    EXPECT_EQ(slot(&WidgetBase::tick), 11U);
    EXPECT_EQ(slot(&WidgetBase::begin_draw), 12U);
    EXPECT_EQ(slot(&WidgetBase::end_draw), 13U);
    EXPECT_EQ(slot(&WidgetBase::invalidate), 14U);
    EXPECT_EQ(slot(&WidgetContainer::onevent), 15U);
    EXPECT_EQ(slot(&FormWidget::on_size_changed), 16U);
    EXPECT_EQ(slot(&WidgetStyle::SetDefaultBackground), 5U);
    EXPECT_EQ(slot(&WidgetStyle::SetHighlightBackground), 6U);
    EXPECT_EQ(slot(&WidgetStyle::SetGrayedBackground), 7U);
    EXPECT_EQ(slot(&WidgetStyle::SetDefaultBorder), 8U);
    using Floats = void (WidgetStyle::*)(float, float, float, float);
    using Rectangle = void (WidgetStyle::*)(rectf);
    EXPECT_EQ(slot<Floats>(&WidgetStyle::DrawRoundedRect), 9U);
    EXPECT_EQ(slot<Rectangle>(&WidgetStyle::DrawRoundedRect), 10U);
    EXPECT_EQ(slot<Floats>(&WidgetStyle::FillRoundedRect), 11U);
    EXPECT_EQ(slot<Rectangle>(&WidgetStyle::FillRoundedRect), 12U);
}
#endif

}  // namespace
