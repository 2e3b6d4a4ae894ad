// SPDX-License-Identifier: MIT
#include "gui/browser_rig.h"

namespace {

using Rows = std::vector<std::string>;

void expect_bounds(const WidgetBase* widget, const rectf& r) {
    EXPECT_EQ(widget->bounds.x, r.x);
    EXPECT_EQ(widget->bounds.y, r.y);
    EXPECT_EQ(widget->bounds.w, r.w);
    EXPECT_EQ(widget->bounds.h, r.h);
}

TEST(MediaBrowserLayout, FormIsMadeHiddenWithoutFrame) {
    const GuiWorld world;
    const object_ref<FormMediaBrowser> browser(new FormMediaBrowser);
    expect_bounds(browser, {-400, -300, 800, 600});
    EXPECT_FALSE(browser->visible);
    EXPECT_FALSE(browser->auto_hide);
    EXPECT_FALSE(browser->has_title_bar);
    EXPECT_FALSE(browser->has_frame);
    EXPECT_TRUE(browser->full_width);
    EXPECT_TRUE(browser->draws_without_list);
    EXPECT_TRUE(browser->hastype(WidgetTypes::form));
}

TEST(MediaBrowserLayout, Members) {
    const GuiWorld world;
    const object_ref<FormMediaBrowser> browser(new FormMediaBrowser);
    ASSERT_EQ(browser->children.size(), 5U);
    const TextLabelWidget& title = *browser->title_label;
    EXPECT_EQ(browser->children[0], &title);
    expect_bounds(&title, {20, 15, 300, 30});
    EXPECT_EQ(title.text, "VYX Media Browser");
    EXPECT_EQ(title.horizontal_alignment, TextLabelWidget::left);
    EXPECT_EQ(title.vertical_alignment, TextLabelWidget::bottom);
    const TextLabelWidget& path = *browser->path_label;
    EXPECT_EQ(browser->children[1], &path);
    expect_bounds(&path, {320, 15, 470, 30});
    EXPECT_EQ(path.horizontal_alignment, TextLabelWidget::right);
    EXPECT_EQ(path.vertical_alignment, TextLabelWidget::bottom);
    const ListBoxWidget& list = *browser->list;
    EXPECT_EQ(browser->children[2], &list);
    expect_bounds(&list, {0, 62, 800, 488});
    EXPECT_EQ(list.item_height, 60);
    EXPECT_TRUE(list.flag);
    EXPECT_EQ(list.selected, -1);
    const ButtonWidget& back = *browser->back;
    EXPECT_EQ(browser->children[3], &back);
    expect_bounds(&back, {10, 560, 100, 24});
    EXPECT_EQ(back.text, "Back");
    EXPECT_EQ(back.action_code, 0);
    const ButtonWidget& close = *browser->close;
    EXPECT_EQ(browser->children[4], &close);
    expect_bounds(&close, {120, 560, 100, 24});
    EXPECT_EQ(close.text, "Close");
    EXPECT_EQ(close.action_code, 4);
    EXPECT_TRUE(browser->history.empty());
}

TEST(MediaBrowserStart, WorkingFolderWithoutAFile) {
    const GuiWorld world;
    const TemporaryFolder folder;
    const WorkingFolder here(folder);
    for (const char* file : {static_cast<const char*>(nullptr), "", "film.mp4"}) {
        const object_ref<FormMediaBrowser> browser(new FormMediaBrowser(file));
        EXPECT_EQ(browser->current_directory, folder.folder().string());
        EXPECT_EQ(browser->path_label->text, folder.folder().string());
        EXPECT_EQ(browser->list->items, Rows{"[..]"});
        EXPECT_EQ(browser->list->selected, -1);
    }
}

TEST(MediaBrowserStart, FolderOfTheFile) {
    const GuiWorld world;
    const TemporaryFolder folder;
    const object_ref<FormMediaBrowser> browser(new FormMediaBrowser(folder.path("x.mp4").c_str()));
    EXPECT_EQ(browser->current_directory, folder.folder().string());
}

TEST_F(BrowserTest, IsAsWideAsTheWindow) {
    resize(1600, 600);
    expect_bounds(browser, {-800, -300, 1600, 600});
    expect_bounds(browser->list, {0, 62, 1600, 488});
    expect_bounds(browser->path_label, {320, 15, 1270, 30});
    resize(400, 600);
    expect_bounds(browser->list, {0, 62, 800, 488});
    expect_bounds(browser->path_label, {320, 15, 470, 30});
    browser->bounds.w = 100;
    browser->on_size_changed();
    EXPECT_EQ(browser->path_label->bounds.w, 0);
}

TEST_F(BrowserTest, UpdateStartsAtTheTopWithNothingSelected) {
    for (int i = 0; i < 30; ++i)
        file(std::to_string(i) + ".mp4");
    browser->update();
    ASSERT_TRUE(browser->list->select_item_by_index(20));
    EXPECT_GT(browser->list->scroll_position.y, 0);
    browser->list->velocity = {0, 100};
    directory("new");
    browser->update();
    EXPECT_EQ(browser->list->scroll_position.y, 0);
    EXPECT_EQ(browser->list->velocity.y, 0);
    EXPECT_EQ(browser->list->selected, -1);
    EXPECT_EQ(browser->list->items.size(), 32U);
    EXPECT_EQ(browser->list->scroll_max.y, 32 * 60 - 488);
    EXPECT_EQ(browser->directory_count, 3);
    world.pass(0.5);
    EXPECT_EQ(browser->list->scroll_position.y, 0);
}

TEST_F(BrowserTest, ClickOnAFolderEntersIt) {
    directory("sub");
    file("sub/a.mp4");
    browser->update();
    click_row("[sub]");
    EXPECT_EQ(browser->current_directory, path("sub"));
    EXPECT_EQ(browser->path_label->text, path("sub"));
    EXPECT_EQ(sorted_rows(), (Rows{"[..]", "a.mp4"}));
    EXPECT_EQ(browser->history, Rows{top()});
    EXPECT_EQ(opened(), Rows{});
    EXPECT_TRUE(browser->visible);
    EXPECT_FALSE(browser->is_animating());
    click_row("[..]");
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_EQ(browser->history, (Rows{top(), path("sub")}));
}

TEST_F(BrowserTest, LinkedFolderIsEnteredByItsRealPath) {
    directory("real");
    std::filesystem::create_directory_symlink("real", path("link"));
    browser->update();
    click_row("[link]");
    EXPECT_EQ(browser->current_directory, path("real"));
}

TEST_F(BrowserTest, ClickOnAFilePlaysItAndHides) {
    file("a b.mp4");
    browser->update();
    click_row("a b.mp4");
    EXPECT_EQ(opened(), Rows{path("a b.mp4")});
    EXPECT_TRUE(browser->is_animating());
    world.pass(0.5);
    EXPECT_FALSE(browser->visible);
    EXPECT_EQ(browser->list->selected, row("a b.mp4"));
    EXPECT_TRUE(browser->history.empty());
}

TEST_F(BrowserTest, PathsBelowTheRootHaveOneSeparator) {
    browser->current_directory = "/";
    pretend({"a.mp4"}, 2);
    click_row("a.mp4");
    EXPECT_EQ(opened(), Rows{"/a.mp4"});
}

TEST_F(BrowserTest, DoubleClickChoosesOnce) {
    directory("sub");
    file("a.mp4");
    file("sub/b.mp4");
    file("sub/c.mp4");
    browser->update();
    click_row("[sub]");
    const pointf there = world.mouse;
    world.clock += 0.2;
    world.click(there);
    EXPECT_EQ(opened(), Rows{}) << "not what has come to lie there";
    EXPECT_EQ(browser->current_directory, path("sub"));
    click_row("b.mp4");
    EXPECT_EQ(opened(), Rows{path("sub/b.mp4")});
    world.pass(0.3);
    world.click(world.mouse);
    EXPECT_EQ(opened(), Rows{}) << "the list is shrinking away";
    browser->play_next();
    EXPECT_EQ(opened().size(), 1U);
}

TEST_F(BrowserTest, BackReturnsThroughTheHistory) {
    directory("sub");
    directory("sub/deep");
    browser->update();
    click_row("[sub]");
    click_row("[deep]");
    EXPECT_EQ(browser->history, (Rows{top(), path("sub")}));
    world.click(find_button(browser, "Back"));
    EXPECT_EQ(browser->current_directory, path("sub"));
    EXPECT_EQ(sorted_rows(), (Rows{"[..]", "[deep]"}));
    world.click(find_button(browser, "Back"));
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_TRUE(browser->history.empty());
}

TEST_F(BrowserTest, BackWithoutHistoryDoesNothing) {
    file("a.mp4");
    browser->update();
    browser->list->select_item_by_index(1);
    world.click(find_button(browser, "Back"));
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_EQ(browser->list->selected, 1) << "not listed anew";
    EXPECT_TRUE(browser->visible);
    EXPECT_FALSE(browser->is_animating());
}

TEST_F(BrowserTest, CloseHides) {
    world.click(find_button(browser, "Close"));
    EXPECT_EQ(browser->animation_state, FormWidget::hiding);
    world.pass(0.5);
    EXPECT_FALSE(browser->visible);
    EXPECT_EQ(opened(), Rows{});
}

TEST_F(BrowserTest, ClickBelowTheLastRowDoesNothing) {
    browser->update();
    click_row(4);
    EXPECT_EQ(browser->list->selected, 4);
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_EQ(opened(), Rows{});
}

TEST_F(BrowserTest, ScrollingChoosesNothing) {
    for (int i = 0; i < 50; ++i)
        file(std::to_string(i) + ".mp4");
    browser->update();
    world.drag(in_window(browser->list, {300, 400}), in_window(browser->list, {310, 100}), 4, 0.2);
    EXPECT_GT(browser->list->scroll_position.y, 200);
    EXPECT_EQ(opened(), Rows{});
    EXPECT_TRUE(browser->visible);
}

TEST_F(BrowserTest, OtherFormsReachItAsAChooser) {
    FileChooser& chooser = *browser;
    EXPECT_EQ(&chooser.form(), browser);
    pretend({"../", "a.mp4"}, 2);
    chooser.play_next();
    EXPECT_EQ(opened(), Rows{path("a.mp4")});
}

}  // namespace
