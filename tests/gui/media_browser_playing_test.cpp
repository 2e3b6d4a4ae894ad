// SPDX-License-Identifier: MIT
// Next, previous, and selecting by path.
#include "gui/browser_rig.h"

#include <climits>
#include <ostream>

namespace {

using Rows = std::vector<std::string>;

// What is listed, how many folders it says there are, what is selected, and what plays then.
struct Step {
    Rows rows;
    int directories;
    int selected;
    std::string next;  // empty: nothing
    std::string previous;
};

// Names the test: rows, number of folders, selected one.
std::ostream& operator<<(std::ostream& out, const Step& step) {
    for (const std::string& row : step.rows)
        out << row << ' ';
    return out << step.directories << ' ' << step.selected;
}

const Step steps[] = {
    // One after the other.
    {{"../", "a", "b", "c"}, 2, 1, "b", "c"},
    {{"../", "a", "b", "c"}, 2, 2, "c", "a"},
    // After the last one comes the one whose index is the number of folders.
    {{"../", "a", "b", "c"}, 2, 3, "b", "b"},
    {{"../", "x/", "y/", "a", "b", "c"}, 4, 5, "b", "b"},
    // Nothing selected, or a folder.
    {{"../", "a", "b"}, 2, -1, "a", "b"},
    {{"../", "a", "b"}, 2, 0, "a", "b"},
    // Folders are passed over wherever they stand.
    {{"a", "../", "x/", "b", "y/"}, 4, 0, "b", "b"},
    {{"a", "../", "x/", "b", "y/"}, 4, 3, "a", "a"},
    {{"a", "../", "x/", "b", "y/"}, 4, 2, "b", "a"},
    {{"a", "b", "../"}, 2, 1, "a", "a"},
    // There is no such index.
    {{"../", "a"}, 2, 1, "", "a"},
    {{"../", "x/"}, 3, -1, "", ""},
    {{"../"}, 0, -1, "", ""},
    {{}, 0, -1, "", ""},
    {{"a", "b"}, 7, 1, "", "a"},
    // Presses beside the rows leave such selections behind.
    {{"../", "a", "b", "c"}, 2, 4, "b", "c"},
    {{"../", "a", "b", "c"}, 2, 400, "b", "c"},
    {{"../", "a", "b", "c"}, 2, INT_MAX, "b", "c"},
    {{"../", "a", "b", "c"}, 2, -2, "b", "c"},
    {{"../", "a", "b", "c"}, 2, INT_MIN, "b", "c"},
};

class Steps : public ::testing::TestWithParam<Step>, public BrowserRig {
  protected:
    void start() {
        pretend(GetParam().rows, GetParam().directories);
        browser->list->selected = GetParam().selected;
    }
    void expect_played(const std::string& name) {
        if (name.empty()) {
            EXPECT_EQ(opened(), Rows{});
            EXPECT_EQ(browser->list->selected, GetParam().selected);
            EXPECT_FALSE(browser->is_animating());
            return;
        }
        EXPECT_EQ(opened(), Rows{path(name)});
        EXPECT_EQ(browser->list->selected, row(name));
        EXPECT_EQ(browser->animation_state, FormWidget::hiding);
    }
};

TEST_P(Steps, Next) {
    start();
    browser->play_next();
    expect_played(GetParam().next);
}

TEST_P(Steps, Previous) {
    start();
    browser->play_previous();
    expect_played(GetParam().previous);
}

INSTANTIATE_TEST_SUITE_P(MediaBrowser, Steps, ::testing::ValuesIn(steps));

TEST_F(BrowserTest, NextTakesTheFileAfterTheClickedOne) {
    for (const char* name : {"a.mp4", "b.mp4", "c.mp4", "d.mp4"})
        file(name);
    directory("sub");
    browser->update();
    // The order is the system's; folders may stand in between.
    Rows files;
    for (const std::string& item : browser->list->items) {
        if (item[0] != '[') files.push_back(path(item));
    }
    const std::string first = files[0].substr(top().size() + 1);
    click_row(first);
    browser->play_next();
    browser->play_next();
    browser->play_previous();
    EXPECT_EQ(opened(), (Rows{files[0], files[1], files[2], files[1]}));
}

TEST_F(BrowserTest, NextWorksWhileHidden) {
    pretend({"../", "a", "b"}, 2);
    browser->hide();
    world.pass(0.5);
    browser->play_next();
    EXPECT_EQ(opened(), Rows{path("a")});
    EXPECT_FALSE(browser->visible);
}

TEST_F(BrowserTest, NextBringsItsRowIntoView) {
    Rows rows{"../"};
    for (int i = 0; i < 50; ++i)
        rows.push_back(std::to_string(i));
    pretend(rows, 2);
    browser->list->selected = 20;
    browser->play_next();
    EXPECT_EQ(browser->list->selected, 21);
    EXPECT_EQ(browser->list->scroll_position.y, 60 * (21 - 4));
}

TEST_F(BrowserTest, SelectFindsTheNameOfAPath) {
    pretend({"../", "a.mp4", "b.mp4", "b.mp4", "mp4"}, 2);
    browser->select("/anywhere/a.mp4");
    EXPECT_EQ(browser->list->selected, 1);
    browser->select("b.mp4");
    EXPECT_EQ(browser->list->selected, 3) << "the last one of that name";
    browser->select("D:\\films\\a.mp4");
    EXPECT_EQ(browser->list->selected, 1);
    EXPECT_EQ(opened(), Rows{});
}

TEST_F(BrowserTest, SelectLeavesTheSelectionWhereNothingMatches) {
    pretend({"../", "a.mp4", "sub/", "[x]/"}, 4);
    browser->select("a.mp4");
    for (const char* path :
         {"", "/", "b.mp4", "a", "..", "[..]", "[sub]", "sub", "/a.mp4/", "A.MP4"})
        browser->select(path);
    EXPECT_EQ(browser->list->selected, 1);
}

TEST_F(BrowserTest, SelectTakesOddNamesAsTheyAre) {
    pretend({"../", "one: two.mp4", "C:d.mp4", "e\\f.mp4", "f.mp4", "[x] y.mp4"}, 2);
    browser->select("/films: old/one: two.mp4");
    EXPECT_EQ(browser->list->selected, 1);
    browser->select("/films/C:d.mp4");
    EXPECT_EQ(browser->list->selected, 2);
    browser->select("/films/e\\f.mp4");
    EXPECT_EQ(browser->list->selected, 3);
    browser->select("/films/[x] y.mp4");
    EXPECT_EQ(browser->list->selected, 5);
}

TEST_F(BrowserTest, SelectScrollsToTheRow) {
    Rows rows{"../"};
    for (int i = 0; i < 50; ++i)
        rows.push_back(std::to_string(i));
    pretend(rows, 2);
    browser->select("/x/30");
    EXPECT_EQ(browser->list->scroll_position.y, 60 * (31 - 4));
}

}  // namespace
