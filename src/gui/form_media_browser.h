// SPDX-License-Identifier: MIT
#pragma once

#include "gui/button_widget.h"
#include "gui/directory_listing.h"
#include "gui/file_chooser.h"
#include "gui/form_widget.h"
#include "gui/list_box_widget.h"
#include "gui/text_label_widget.h"

#include <string>
#include <vector>

/// A form as wide as the window to choose the file to play: one folder at a time, small pictures
/// before the names. Made hidden. [main]
class FormMediaBrowser : public FormWidget, public FileChooser {
  public:
    /// Starts in the folder of `file`; null or empty: in the working folder.
    explicit FormMediaBrowser(const char* file = nullptr);

    /// Lists the current directory anew, from its top, with nothing selected.
    void update();
    /// Returns to where the last folder was entered from. Nothing where none was entered.
    void go_back();
    /// Plays the file after or before the selected one; folders are passed over. After the last
    /// item comes the one whose index is the number of directories, before the first file the last.
    void play_next() override;
    void play_previous() override;
    /// Selects the file of this path's name, if the list has it; the path's folder does not count.
    void select(const char* path);
    FormWidget& form() override { return *this; }

    void draw() override;
    void onevent(EventArgs& event) override;
    void on_size_changed() override;

    object_ref<TextLabelWidget> title_label;
    object_ref<TextLabelWidget> path_label;
    object_ref<ListBoxWidget> list;
    object_ref<ButtonWidget> back;
    object_ref<ButtonWidget> close;
    std::vector<std::string> history;  ///< directories to return to
    std::string current_directory;     ///< its real path
    int directory_count = 0;           ///< of the last listing, "." and ".." included
    /// How folders are listed.
    DirectoryListing (*lister)(const std::string& path) = list_directory;

  private:
    void add_label(object_ref<TextLabelWidget>& label, const rectf& place,
                   TextLabelWidget::HorizontalAlignment alignment);
    void add_button(object_ref<ButtonWidget>& button, float x, const char* text,
                    EventTypes::Action action);
    void add_list();
    /// Null where the list has no such row.
    const DirectoryEntry* entry_at(int index) const;
    bool is_file(int index) const;
    bool select_named(const std::string& name);
    /// The first file from `index` on in steps of 1 or -1, round the end once; -1 where there is
    /// none.
    int file_from(int index, int step) const;
    int next_index() const;
    int previous_index() const;
    void play(int index);
    void choose_clicked(int index);
    void choose(int index);
    void enter(const DirectoryEntry& entry);
    void open(const DirectoryEntry& entry);
    void draw_row(ListBoxWidget::CustomDrawArgs& row);

    /// What the rows of the list stand for: a file's name may begin with a bracket, too.
    std::vector<DirectoryEntry> entries_;
    double last_click_ = -1.0;  ///< seconds, by the environment's clock
};

/// The player's one, null until it starts. [main]
extern object_ref<FormMediaBrowser> formMediaBrowser;
