// SPDX-License-Identifier: MIT
#include "gui/list_box_widget.h"

#include "gui/gl_font.h"
#include "support/drawing_recorder.h"
#include "support/gui_test.h"

#include <limits>

namespace {

using Actions = std::vector<EventTypes::Action>;

// Notes the rows that are drawn; may change them.
class RowsForm : public ListeningForm {
  public:
    void onevent(EventArgs& event) override {
        ListeningForm::onevent(event);
        if (event.action != EventTypes::custom_draw) return;
        auto& row = static_cast<ListBoxWidget::CustomDrawArgs&>(event);
        rows.push_back(row);
        row.x += shift.x;
        row.y += shift.y;
        if (!replacement.empty()) row.text = replacement;
    }

    std::vector<ListBoxWidget::CustomDrawArgs> rows;
    rect shift;
    std::string replacement;
};

class ListBoxTest : public ::testing::Test {
  protected:
    ListBoxTest() {
        form->bounds = {-200, -200, 400, 400};
        gui.add(form);
        list->bounds = {50, 50, 300, 200};
        form->add(list);
        fill(100);
        setopacity(1.0F);
    }
    ~ListBoxTest() override { setopacity(0.0F); }

    void fill(int count) {
        list->items.clear();
        for (int i = 0; i < count; ++i)
            list->items.push_back("item " + std::to_string(i));
        list->update_scroll_max();
        list->scroll({0, 0}, true);
    }

    pointf at(float y) const {
        // The list's points are content points; this one is of its window.
        return pointf(200 + 50 + 20, 100 + 50 + y);
    }

    std::vector<int> drawn_rows() {
        form->rows.clear();
        const DrawingRecorder recorder;
        list->draw();
        EXPECT_EQ(recorder.open_clips(), 0);
        std::vector<int> result;
        for (const auto& row : form->rows)
            result.push_back(row.index);
        return result;
    }

    GuiWorld world;
    object_ref<RowsForm> form = new RowsForm;
    object_ref<ListBoxWidget> list = new ListBoxWidget;
};

TEST_F(ListBoxTest, StartsEmptyWithRowsOf40) {
    const object_ref<ListBoxWidget> fresh(new ListBoxWidget);
    EXPECT_TRUE(fresh->items.empty());
    EXPECT_EQ(fresh->item_height, 40);
    EXPECT_EQ(fresh->selected, -1);
    EXPECT_FALSE(fresh->flag);
    EXPECT_TRUE(fresh->ticking);
}

TEST_F(ListBoxTest, ScrollsAsFarAsTheLastItem) {
    EXPECT_EQ(list->scroll_max.x, 0.0F);
    EXPECT_EQ(list->scroll_max.y, 100 * 40 - 200.0F);
    list->item_height = 60;
    list->update_scroll_max();
    EXPECT_EQ(list->scroll_max.y, 100 * 60 - 200.0F);
    fill(2);
    EXPECT_EQ(list->scroll_max.y, 0.0F);
}

TEST_F(ListBoxTest, SelectingShowsTheItemAsTheFifthRow) {
    EXPECT_TRUE(list->select_item_by_index(50));
    EXPECT_EQ(list->selected, 50);
    EXPECT_EQ(list->scroll_position.y, 40.0F * 46);
    EXPECT_TRUE(list->select_item_by_index(2));
    EXPECT_EQ(list->scroll_position.y, 0.0F) << "clamped at the top";
    EXPECT_TRUE(list->select_item_by_index(99));
    EXPECT_EQ(list->scroll_position.y, 100 * 40 - 200.0F);
    EXPECT_FALSE(list->select_item_by_index(100));
    EXPECT_FALSE(list->select_item_by_index(-1));
    EXPECT_FALSE(list->select_item_by_index(std::numeric_limits<int>::min()));
    EXPECT_FALSE(list->select_item_by_index(std::numeric_limits<int>::max()));
    EXPECT_EQ(list->selected, 99);
    list->item_height = 60;
    EXPECT_TRUE(list->select_item_by_index(50));
    EXPECT_EQ(list->scroll_position.y, 60.0F * 46);
}

TEST_F(ListBoxTest, AClickSelectsAndChoosesTheItemUnderIt) {
    list->scroll({0, 100}, true);
    world.click(at(30));
    EXPECT_EQ(list->selected, 3);
    EXPECT_EQ(form->actions(), Actions{EventTypes::item_chosen});
    EXPECT_EQ(form->events[0].sender, list);
}

TEST_F(ListBoxTest, ThePressSelectsAndTheReleaseChooses) {
    gui.mousedown(at(10), 1);
    EXPECT_EQ(list->selected, 0);
    EXPECT_TRUE(form->actions().empty());
    gui.mouseup(at(90), 1);
    EXPECT_EQ(list->selected, 2) << "where it came up";
    EXPECT_EQ(form->actions(), Actions{EventTypes::item_chosen});
}

TEST_F(ListBoxTest, AScrollIsNoClick) {
    world.drag(at(150), at(150) + pointf(-5, -60), 3, 10.0);
    EXPECT_TRUE(form->actions().empty());
    EXPECT_GT(list->scroll_position.y, 60.0F);
    list->velocity = {0, 100};
    world.click(at(20));
    EXPECT_TRUE(form->actions().empty()) << "it only stopped the list";
    world.click(at(20));
    EXPECT_EQ(form->actions().size(), 1U);
}

TEST_F(ListBoxTest, AFlickLeavesItAtTheRightPlace) {
    // Three moves of 20 up: 20, 22 and 22.2; the rest of the way makes the speed.
    world.drag(at(150), at(90), 3, 0.099);
    const float dragged = 20.0F + 22.0F + 22.2F;
    EXPECT_NEAR(list->scroll_position.y, dragged, 1e-2);
    const float speed = 2.22F * 6.0F / 0.1F;
    EXPECT_NEAR(list->velocity.y, speed, 0.1F);
    world.pass(1.0);
    EXPECT_NEAR(list->scroll_position.y, dragged + speed, 0.2F);
}

TEST_F(ListBoxTest, BelowTheLastItemNothingIsChosen) {
    fill(3);
    world.click(at(130));
    EXPECT_EQ(list->selected, 3) << "outside the list";
    EXPECT_TRUE(form->actions().empty());
    EXPECT_EQ(drawn_rows().size(), 3U);
}

TEST_F(ListBoxTest, OtherButtonsSelectButDoNotChoose) {
    gui.mousedown(at(90), 3);
    EXPECT_EQ(list->selected, 2);
    gui.mouseup(at(50), 3);
    EXPECT_EQ(list->selected, 2);
    EXPECT_TRUE(form->actions().empty());
}

TEST_F(ListBoxTest, ANotchOfTheWheelScrollsThreeRowsAndChoosesNothing) {
    const auto turn = [this](int button) {
        EXPECT_TRUE(world.press(at(30), button));
        world.release(at(30));
    };
    list->select_item_by_index(1);
    turn(ScrollableWidget::wheel_down);
    EXPECT_EQ(list->scroll_position.y, 120.0F);
    list->item_height = 60;
    turn(ScrollableWidget::wheel_down);
    EXPECT_EQ(list->scroll_position.y, 300.0F);
    turn(ScrollableWidget::wheel_up);
    EXPECT_EQ(list->scroll_position.y, 120.0F);
    turn(ScrollableWidget::wheel_up);
    EXPECT_EQ(list->scroll_position.y, 0.0F) << "not above the first row";
    EXPECT_EQ(list->selected, 1);
    EXPECT_TRUE(form->actions().empty());
    world.click(at(30));
    EXPECT_EQ(form->actions(), Actions{EventTypes::item_chosen}) << "a click is a click again";
}

TEST_F(ListBoxTest, DrawsTheRowsThatTouchTheView) {
    EXPECT_EQ(drawn_rows(), (std::vector<int>{0, 1, 2, 3, 4}));
    list->scroll({0, 20}, true);
    EXPECT_EQ(drawn_rows(), (std::vector<int>{0, 1, 2, 3, 4, 5}));
    list->scroll({0, 39}, true);
    EXPECT_EQ(drawn_rows().front(), 0) << "its last line is in view";
    list->scroll({0, 39.5F}, true);
    EXPECT_EQ(drawn_rows().front(), 1);
    list->scroll({0, 1e9F}, true);
    EXPECT_EQ(drawn_rows(), (std::vector<int>{95, 96, 97, 98, 99}));
    list->item_height = 60;
    list->scroll({0, 0}, true);
    EXPECT_EQ(drawn_rows(), (std::vector<int>{0, 1, 2, 3}));
    list->items.clear();
    EXPECT_TRUE(drawn_rows().empty());
    EXPECT_EQ(list->scroll_max.y, 0.0F) << "brought up to date by drawing";
}

TEST_F(ListBoxTest, EachRowIsOfferedToTheParent) {
    list->scroll({0, 80}, true);
    drawn_rows();
    ASSERT_EQ(form->rows.size(), 5U);
    const auto& row = form->rows[1];
    EXPECT_EQ(row.sender, list);
    EXPECT_EQ(row.action, EventTypes::custom_draw);
    EXPECT_EQ(row.y, 120);
    EXPECT_EQ(row.x, 10);
    EXPECT_EQ(row.index, 3);
    EXPECT_EQ(row.text, "item 3");
}

TEST_F(ListBoxTest, RowsHaveTextAndASeparator) {
    fill(1);
    const DrawingRecorder recorder;
    list->draw();
    std::pair<int, int> size;
    default_font.GetStringSize("item 0", &size);
    const Drawn text = recorder.text("item 0");
    EXPECT_EQ(text.points[0].x, 10.0F);
    EXPECT_FLOAT_EQ(text.points[0].y, (40.0F + 0.5F * float(size.second)) / 2.0F);
    EXPECT_EQ(text.scale, 0.5F);
    EXPECT_EQ(text.clip.x, 0.0F);
    EXPECT_EQ(text.clip.y, 0.0F);
    EXPECT_EQ(text.clip.w, 300.0F);
    EXPECT_EQ(text.clip.h, 200.0F);
    const auto lines = recorder.of_kind(Drawn::line);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].points[0].x, 0.0F);
    EXPECT_EQ(lines[0].points[0].y, 40.0F);
    EXPECT_EQ(lines[0].points[1].x, 300.0F);
    EXPECT_EQ(lines[0].points[1].y, 40.0F);
    EXPECT_FLOAT_EQ(lines[0].color.g, 128.0F / 255.0F);
    EXPECT_TRUE(recorder.of_kind(Drawn::fill).empty());
}

TEST_F(ListBoxTest, TheSelectedRowIsHighlightedInTheSecondTextColour) {
    list->style = new WidgetStyle;
    list->style->second_text_color = 0xFF0000FFU;
    list->selected = 2;
    const DrawingRecorder recorder;
    list->draw();
    const auto fills = recorder.of_kind(Drawn::fill);
    ASSERT_EQ(fills.size(), 1U);
    EXPECT_EQ(fills[0].box().y, 81.0F);
    EXPECT_EQ(fills[0].box().h, 39.0F);
    EXPECT_EQ(fills[0].box().w, 300.0F);
    EXPECT_FLOAT_EQ(fills[0].color.r, 128.0F / 255.0F);
    EXPECT_EQ(recorder.text("item 2").color.r, 0.0F);
    EXPECT_EQ(recorder.text("item 1").color.r, 1.0F);
}

TEST_F(ListBoxTest, TheParentMayMoveAndReplaceTheText) {
    fill(1);
    form->shift = {70, 5, 0, 0};
    form->replacement = "other";
    const DrawingRecorder recorder;
    list->draw();
    std::pair<int, int> size;
    default_font.GetStringSize("other", &size);
    const Drawn text = recorder.text("other");
    EXPECT_EQ(text.points[0].x, 80.0F);
    EXPECT_FLOAT_EQ(text.points[0].y, 5.0F + (40.0F + 0.5F * float(size.second)) / 2.0F);
    EXPECT_EQ(recorder.of_kind(Drawn::line)[0].points[0].y, 40.0F) << "the row stays";
}

TEST_F(ListBoxTest, AHundredThousandItemsCostNoMoreThanTheVisibleOnes) {
    fill(100000);
    EXPECT_TRUE(list->select_item_by_index(77777));
    const auto rows = drawn_rows();
    EXPECT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[4], 77777);
}

}  // namespace
