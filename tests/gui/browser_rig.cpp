// SPDX-License-Identifier: MIT
#include "gui/browser_rig.h"

#include "gui/screen.h"

#include <algorithm>
#include <fstream>

namespace {

DirectoryListing pretended_listing;

}  // namespace

gl_texture_resource* BrowserPlayer::thumbnail(const std::string& path) {
    asked.push_back(path);
    const auto found = thumbnails.find(path);
    return found == thumbnails.end() ? nullptr : static_cast<gl_texture_resource*>(found->second);
}

BrowserRig::BrowserRig(int width, int height)
    : world(width, height), browser(new FormMediaBrowser(path("none").c_str())) {
    player_control = &player;
    gui.add(browser);
    show();
    resize(width, height);
}

BrowserRig::~BrowserRig() {
    player_control = nullptr;
}

void BrowserRig::file(const std::string& name) const {
    std::ofstream(path(name)) << "x";
}

void BrowserRig::directory(const std::string& name) const {
    std::filesystem::create_directory(path(name));
}

DirectoryListing BrowserRig::pretended(const std::string& /*path*/) {
    return pretended_listing;
}

void BrowserRig::pretend(const std::vector<std::string>& rows, int directories) {
    pretended_listing = {};
    pretended_listing.directories = directories;
    for (std::string name : rows) {
        const bool is_directory = name.back() == '/';
        if (is_directory) name.pop_back();
        pretended_listing.entries.push_back({name, is_directory});
    }
    browser->lister = pretended;
    browser->update();
}

int BrowserRig::row(const std::string& text) const {
    const std::vector<std::string>& items = browser->list->items;
    const auto found = std::find(items.begin(), items.end(), text);
    if (found == items.end()) {
        ADD_FAILURE() << "no row reads " << text;
        return -1;
    }
    return static_cast<int>(found - items.begin());
}

std::vector<std::string> BrowserRig::sorted_rows() const {
    std::vector<std::string> rows = browser->list->items;
    std::sort(rows.begin(), rows.end());
    return rows;
}

void BrowserRig::click_row(int index) {
    world.clock += 1.0;  // no double click
    ListBoxWidget* list = browser->list;
    const auto top = static_cast<float>(index * list->item_height);
    list->scroll({0.0F, top - 120.0F}, true);
    const float middle = static_cast<float>(list->item_height) / 2.0F;
    world.click(in_window(list, {300.0F, top + middle - list->scroll_position.y}));
}

std::vector<std::string> BrowserRig::opened() {
    std::vector<std::string> paths;
    for (const std::string& call : player.take_calls()) {
        if (call.rfind("open ", 0) == 0) paths.push_back(call.substr(5));
    }
    return paths;
}

void BrowserRig::resize(int width, int height) const {
    GuiWorld::resize(width, height);
    browser->bounds.x = screenRectangle.x;
    browser->bounds.w = screenRectangle.w;
    browser->on_size_changed();
}

void BrowserRig::show() {
    world.pass(1.0);  // a form that is closing cannot be opened
    browser->show();
    world.pass(1.0);
}

std::vector<std::string> BrowserRig::files_in_view() const {
    const ListBoxWidget& list = *browser->list;
    const float view_top = list.scroll_position.y;
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < list.items.size(); ++i) {
        const float top = static_cast<float>(i) * 60.0F;
        const bool seen = top + 59.0F >= view_top && top < view_top + list.bounds.h;
        if (seen && list.items[i][0] != '[') {
            paths.push_back(joined_path(browser->current_directory, list.items[i]));
        }
    }
    return paths;
}
