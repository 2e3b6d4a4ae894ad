// SPDX-License-Identifier: MIT
#include "gui/browser_rig.h"
#include "support/drawing_recorder.h"

#include <unistd.h>

#include <algorithm>
#include <random>

namespace {

using Rows = std::vector<std::string>;
namespace fs = std::filesystem;

TEST_F(BrowserTest, FileThatBeginsWithABracketIsPlayed) {
    file("[Group] Show 01.mkv");
    browser->update();
    click_row("[Group] Show 01.mkv");
    EXPECT_EQ(opened(), Rows{path("[Group] Show 01.mkv")});
    EXPECT_EQ(browser->current_directory, top());
}

TEST_F(BrowserTest, FileAndFolderThatReadTheSameAreToldApart) {
    pretend({"../", "[x]", "x/", "[..]"}, 3);
    ASSERT_EQ(browser->list->items, (Rows{"[..]", "[x]", "[x]", "[..]"}));
    directory("x");
    click_row(1);
    EXPECT_EQ(opened(), Rows{path("[x]")});
    show();
    click_row(3);
    EXPECT_EQ(opened(), Rows{path("[..]")});
    show();
    click_row(2);
    EXPECT_EQ(opened(), Rows{});
    EXPECT_EQ(browser->current_directory, path("x"));
}

TEST_F(BrowserTest, FolderWhoseNameHasBracketsIsEntered) {
    directory("[x]");
    directory("[y] z]");
    browser->update();
    click_row("[[y] z]]");
    EXPECT_EQ(browser->current_directory, path("[y] z]"));
    click_row("[..]");
    click_row("[[x]]");
    EXPECT_EQ(browser->current_directory, path("[x]"));
}

TEST_F(BrowserTest, NamesAreOpenedByteForByte) {
    const Rows names{
        " .mp4",      "a\nb.mp4", "\xFF\xFE\x80.mp4",     "\x01\x7F.mp4",
        "%s%n%d.mp4", "a\\b.mp4", "\xD0\xBA\xD0\xB8.mp4", std::string(251, 'n') + ".mp4"};
    for (const std::string& name : names)
        file(name);
    browser->update();
    for (const std::string& name : names) {
        click_row(name);
        EXPECT_EQ(opened(), Rows{path(name)});
        show();
        DrawingRecorder recorder;
        gui.draw();
        EXPECT_EQ(recorder.open_clips(), 0);
    }
}

TEST_F(BrowserTest, OddFoldersAreEntered) {
    for (const std::string& name : {std::string("a\nb"), std::string("\xFF\x80"), std::string(" "),
                                    std::string(255, 'n'), std::string("c: d")}) {
        directory(name);
        file(name + "/film.mp4");
        browser->update();
        click_row("[" + name + "]");
        EXPECT_EQ(browser->current_directory, path(name));
        click_row("film.mp4");
        EXPECT_EQ(opened(), Rows{path(name + "/film.mp4")});
        show();
        world.click(browser->back);
    }
}

TEST_F(BrowserTest, VanishedFileIsLeftToThePlayer) {
    file("a.mp4");
    file("b.mp4");
    browser->update();
    fs::remove(path("a.mp4"));
    click_row("a.mp4");
    EXPECT_EQ(opened(), Rows{path("a.mp4")}) << "the player says what is wrong with it";
    EXPECT_EQ(sorted_rows(), (Rows{"[..]", "a.mp4", "b.mp4"}));
}

TEST_F(BrowserTest, VanishedFolderDisappearsFromTheList) {
    directory("sub");
    file("b.mp4");
    browser->update();
    fs::remove(path("sub"));
    click_row("[sub]");
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_EQ(sorted_rows(), (Rows{"[..]", "b.mp4"}));
    EXPECT_TRUE(browser->history.empty());
}

TEST_F(BrowserTest, FolderThatBecameAFileHasAWayUp) {
    directory("sub");
    browser->update();
    fs::remove(path("sub"));
    file("sub");
    click_row("[sub]");
    EXPECT_EQ(browser->list->items, Rows{"[..]"});
    EXPECT_EQ(browser->directory_count, 0);
    click_row("[..]");
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_EQ(sorted_rows(), (Rows{"[..]", "sub"}));
}

TEST_F(BrowserTest, RemovedCurrentFolderHasAWayUp) {
    directory("sub");
    directory("sub/deep");
    file("film.mp4");
    browser->update();
    click_row("[sub]");
    click_row("[deep]");
    fs::remove_all(path("sub"));
    click_row("[..]");
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_EQ(sorted_rows(), (Rows{"[..]", "film.mp4"}));
    world.click(browser->back);
    EXPECT_EQ(browser->list->items, Rows{"[..]"}) << "the folder come from is gone as well";
    world.click(browser->back);
    EXPECT_EQ(browser->list->items, Rows{"[..]"});
    world.click(browser->back);
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_EQ(sorted_rows(), (Rows{"[..]", "film.mp4"}));
}

// Nothing is forbidden to the superuser, who is somebody else meanwhile.
class AsNobody {
  public:
    AsNobody() : changed_(geteuid() == 0 && seteuid(65534) == 0) {}
    ~AsNobody() {
        if (changed_ && seteuid(0) != 0) std::abort();
    }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

  private:
    bool changed_;
};

TEST_F(BrowserTest, UnreadableFolderHasOnlyTheWayUp) {
    directory("secret");
    file("secret/film.mp4");
    browser->update();
    fs::permissions(folder.folder(), fs::perms::all);
    fs::permissions(path("secret"), fs::perms::none);
    {
        const AsNobody nobody;
        click_row("[secret]");
        EXPECT_EQ(browser->current_directory, path("secret"));
        EXPECT_EQ(browser->list->items, Rows{"[..]"});
        EXPECT_EQ(browser->directory_count, 0);
        browser->play_next();
        click_row("[..]");
        EXPECT_EQ(browser->current_directory, top());
        EXPECT_EQ(sorted_rows(), (Rows{"[..]", "[secret]"}));
    }
    EXPECT_EQ(opened(), Rows{});
    fs::permissions(path("secret"), fs::perms::owner_all);
}

TEST_F(BrowserTest, LinksThatLoopLeadNowhereNew) {
    fs::create_directory_symlink(".", path("loop"));
    browser->update();
    for (int i = 0; i < 50; ++i)
        click_row("[loop]");
    EXPECT_EQ(browser->current_directory, top());
    EXPECT_EQ(browser->history.size(), 50U);
}

TEST_F(BrowserTest, WithoutAPlayerItStillBrowses) {
    directory("sub");
    file("sub/a.mp4");
    browser->update();
    player_control = nullptr;
    click_row("[sub]");
    click_row("a.mp4");
    DrawingRecorder recorder;
    gui.draw();
    EXPECT_EQ(browser->current_directory, path("sub"));
}

TEST_F(BrowserTest, RowsThatItDoesNotKnowAreLeftAlone) {
    file("a.mp4");
    browser->update();
    browser->list->items.assign(8, "unknown");
    click_row(7);
    EXPECT_EQ(opened(), Rows{});
    DrawingRecorder recorder;
    gui.draw();
    EXPECT_EQ(recorder.of_kind(Drawn::text).size(), 12U);
}

TEST_F(BrowserTest, FiveThousandFilesCostNoMoreThanWhatIsSeen) {
    for (int i = 0; i < 5000; ++i)
        file(std::to_string(i) + ".mp4");
    browser->update();
    ASSERT_EQ(browser->list->items.size(), 5001U);
    browser->list->scroll({0, 1e9F}, true);
    player.asked.clear();
    DrawingRecorder recorder;
    gui.draw();
    EXPECT_EQ(player.asked, files_in_view());
    EXPECT_LE(player.asked.size(), 10U);
    EXPECT_GE(player.asked.size(), 7U);
    // The way up may be the last row as well.
    const int last = browser->list->items[5000][0] == '[' ? 4999 : 5000;
    click_row(last);
    EXPECT_EQ(opened(), Rows{path(browser->list->items[static_cast<std::size_t>(last)])});
}

TEST_F(BrowserTest, AnythingCanBeClicked) {
    std::mt19937 random(20);
    const auto below = [&](int end) {
        return static_cast<int>(random() % static_cast<unsigned>(end));
    };
    for (int step = 0; step < 1500; ++step) {
        const std::string name = std::to_string(below(4));
        const pointf p(static_cast<float>(below(900) - 50), static_cast<float>(below(700) - 50));
        switch (below(12)) {
            case 0:
                directory(name);
                break;
            case 1:
                file(name + ".mp4");
                break;
            case 2:
                fs::remove_all(path(name));
                break;
            case 3:
                world.press(p, 1 + below(3));
                break;
            case 4:
                world.move(p);
                break;
            case 5:
                world.release(p);
                break;
            case 6:
                world.pass(0.05);
                break;
            case 7:
                browser->play_next();
                break;
            case 8:
                browser->play_previous();
                break;
            case 9:
                resize(1 + below(2000), 1 + below(1000));
                break;
            case 10:
                browser->update();
                break;
            default: {
                DrawingRecorder recorder;
                gui.draw();
                EXPECT_EQ(recorder.open_clips(), 0);
                EXPECT_EQ(recorder.open_transforms(), 0);
            }
        }
        browser->show();
        // Away from the test's folder there may be anything.
        if (browser->current_directory.rfind(top(), 0) != 0) {
            browser->current_directory = top();
            browser->update();
        }
        ASSERT_FALSE(browser->list->items.empty());
    }
    EXPECT_GT(player.asked.size(), 0U);
}

}  // namespace
