// SPDX-License-Identifier: MIT
#include "gui/form_media_browser.h"

#include "core/split_path.h"
#include "gui/graphics.h"
#include "gui/player_control.h"
#include "gui/thumbnail_drawing.h"

#include <algorithm>
#include <utility>

namespace {

constexpr unsigned background = 0xFF000000U;
constexpr unsigned line_color = 0xFF808080U;
constexpr float upper_line = 60.0F;
constexpr float lower_line = 550.0F;
constexpr float list_top = 62.0F;
constexpr float beside_list = 112.0F;  // what the list leaves of the form's height
constexpr int row_height = 60;
constexpr int row_margin = 2;
constexpr int text_gap = 10;
constexpr float path_margin = 10.0F;
constexpr double double_click_seconds = 0.25;

std::string split_name(const std::string& path) {
    std::string name;
    std::string extension;
    _splitpath(path.c_str(), nullptr, nullptr, &name, &extension);
    return name + extension;
}

// One row is one line, and what the font lacks still takes its place.
std::string shown_text(const std::string& name) {
    std::string text;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continues = byte >= 0x80 && byte < 0xC0;
        if (byte >= 0x20 && byte <= 0x7F) {
            text += c;
        } else if (!continues) {
            text += '?';
        }
    }
    return text;
}

}  // namespace

FormMediaBrowser::FormMediaBrowser(const char* file) {
    bounds = {-400.0F, -300.0F, 800.0F, 600.0F};
    visible = false;
    has_title_bar = false;
    has_frame = false;
    full_width = true;
    draws_without_list = true;
    add_label(title_label, {20.0F, 15.0F, 300.0F, 30.0F}, TextLabelWidget::left);
    title_label->text = "VYX Media Browser";
    add_label(path_label, {320.0F, 15.0F, 470.0F, 30.0F}, TextLabelWidget::right);
    add_list();
    add_button(back, 10.0F, "Back", EventTypes::item_chosen);
    add_button(close, 120.0F, "Close", EventTypes::close_request);
    current_directory = directory_of(file ? file : "");
    update();
}

void FormMediaBrowser::add_label(object_ref<TextLabelWidget>& label, const rectf& place,
                                 TextLabelWidget::HorizontalAlignment alignment) {
    label = new TextLabelWidget;
    label->bounds = place;
    label->horizontal_alignment = alignment;
    label->vertical_alignment = TextLabelWidget::bottom;
    add(label);
}

void FormMediaBrowser::add_list() {
    list = new ListBoxWidget;
    list->bounds = {0.0F, list_top, bounds.w, bounds.h - beside_list};
    list->item_height = row_height;
    list->flag = true;
    add(list);
}

void FormMediaBrowser::add_button(object_ref<ButtonWidget>& button, float x, const char* text,
                                  EventTypes::Action action) {
    button = new ButtonWidget;
    button->bounds = {x, 560.0F, 100.0F, 24.0F};
    button->text = text;
    button->action_code = action;
    add(button);
}

void FormMediaBrowser::update() {
    DirectoryListing listing = lister(current_directory);
    entries_ = std::move(listing.entries);
    directory_count = listing.directories;
    list->items.clear();
    list->items.reserve(entries_.size());
    for (const DirectoryEntry& entry : entries_)
        list->items.push_back(entry.label());
    list->update_scroll_max();
    list->scroll({0.0F, 0.0F}, true);
    list->velocity = {};
    list->selected = -1;
    path_label->text = current_directory;
    invalidate();
}

void FormMediaBrowser::go_back() {
    if (history.empty()) return;
    current_directory = std::move(history.back());
    history.pop_back();
    update();
}

const DirectoryEntry* FormMediaBrowser::entry_at(int index) const {
    const bool listed = index >= 0 && index < static_cast<int>(entries_.size());
    return listed ? &entries_[static_cast<std::size_t>(index)] : nullptr;
}

bool FormMediaBrowser::is_file(int index) const {
    const DirectoryEntry* entry = entry_at(index);
    return entry && !entry->is_directory;
}

int FormMediaBrowser::file_from(int index, int step) const {
    if (!entry_at(index)) return -1;
    const int count = static_cast<int>(entries_.size());
    for (int i = 0; i < count; ++i, index = (index + step + count) % count) {
        if (is_file(index)) return index;
    }
    return -1;
}

int FormMediaBrowser::next_index() const {
    const int count = static_cast<int>(entries_.size());
    int next = list->selected >= -1 && list->selected < count ? list->selected + 1 : count;
    while (next < count && !is_file(next))
        ++next;
    return next < count ? next : file_from(directory_count, 1);
}

int FormMediaBrowser::previous_index() const {
    const int last = static_cast<int>(entries_.size()) - 1;
    const int before = list->selected > 0 ? std::min(list->selected - 1, last) : last;
    return file_from(before, -1);
}

void FormMediaBrowser::play_next() {
    play(next_index());
}

void FormMediaBrowser::play_previous() {
    play(previous_index());
}

void FormMediaBrowser::play(int index) {
    if (list->select_item_by_index(index)) choose(index);
}

void FormMediaBrowser::select(const char* path) {
    std::string name(path);
    name.erase(0, name.rfind('/') + 1);
    // Names that hold colons or backslashes are not what splitting takes them for.
    if (!select_named(name)) select_named(split_name(name));
}

bool FormMediaBrowser::select_named(const std::string& name) {
    bool found = false;
    for (int i = 0; entry_at(i); ++i) {
        if (is_file(i) && entry_at(i)->name == name) found = list->select_item_by_index(i);
    }
    return found;
}

void FormMediaBrowser::onevent(EventArgs& event) {
    const bool chosen = event.action == EventTypes::item_chosen;
    if (chosen && event.sender == list) {
        choose_clicked(list->selected);
    } else if (chosen && event.sender == back) {
        go_back();
    } else if (event.action == EventTypes::custom_draw && event.sender == list) {
        draw_row(static_cast<ListBoxWidget::CustomDrawArgs&>(event));
    } else {
        FormWidget::onevent(event);
    }
}

// The second click of a double click would meet another row: the list has changed by then, or
// shrinks away under the pointer.
void FormMediaBrowser::choose_clicked(int index) {
    const bool second_click = now() - last_click_ < double_click_seconds && now() >= last_click_;
    last_click_ = now();
    if (!second_click && animation_state != hiding) choose(index);
}

void FormMediaBrowser::choose(int index) {
    if (!entry_at(index)) return;
    // A copy: listing another folder replaces the entries.
    const DirectoryEntry entry = *entry_at(index);
    if (entry.is_directory) {
        enter(entry);
    } else {
        open(entry);
    }
}

void FormMediaBrowser::enter(const DirectoryEntry& entry) {
    std::string entered = entered_directory(current_directory, entry.name);
    // A folder that has vanished disappears from the list and leaves the rest.
    if (!entered.empty()) {
        history.push_back(std::move(current_directory));
        current_directory = std::move(entered);
    }
    update();
}

void FormMediaBrowser::open(const DirectoryEntry& entry) {
    if (player_control) player_control->open(joined_path(current_directory, entry.name));
    hide();
}

void FormMediaBrowser::draw() {
    begin_draw();
    setbrushcolor(background);
    fillrectanglef(0.0F, 0.0F, bounds.w, bounds.h);
    setpencolor(line_color);
    drawlinef(0.0F, upper_line, bounds.w, upper_line);
    drawlinef(0.0F, lower_line, bounds.w, lower_line);
    end_draw();
    draw_children();
}

void FormMediaBrowser::draw_row(ListBoxWidget::CustomDrawArgs& row) {
    row.text = shown_text(row.text);
    if (!is_file(row.index) || !player_control) return;
    const std::string path = joined_path(current_directory, entry_at(row.index)->name);
    const gl_texture_resource* thumbnail = player_control->thumbnail(path);
    if (!thumbnail) return;
    const int height = list->item_height - 2 * row_margin;
    const int width = thumbnail_width(*thumbnail, height);
    draw_thumbnail(*thumbnail, static_cast<float>(row.x), static_cast<float>(row.y + row_margin),
                   width, height);
    row.x += width + text_gap;
}

void FormMediaBrowser::on_size_changed() {
    list->bounds.w = bounds.w;
    path_label->bounds.w = std::max(0.0F, bounds.w - path_margin - path_label->bounds.x);
    invalidate();
}
