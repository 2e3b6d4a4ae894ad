// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"
#include "gui/form_media_browser.h"

#include "gui/forms_rig.h"
#include "support/gui_world.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

/// A player that notes which small pictures it was asked for, and has those that a test gave it.
class BrowserPlayer : public FakePlayer {
  public:
    gl_texture_resource* thumbnail(const std::string& path) override;

    std::vector<std::string> asked;
    std::map<std::string, object_ref<gl_texture_resource>> thumbnails;
};

/// An open browser, alone in `gui`, in a real folder of its own. [main]
class BrowserRig {
  public:
    explicit BrowserRig(int width = 800, int height = 600);
    ~BrowserRig();
    BrowserRig(const BrowserRig&) = delete;
    BrowserRig& operator=(const BrowserRig&) = delete;

    void file(const std::string& name) const;
    void directory(const std::string& name) const;
    std::string path(const std::string& name) const { return folder.path(name); }
    std::string top() const { return folder.folder().string(); }

    /// Lists these rows from now on, whatever is in the folder. "name/" is a folder.
    void pretend(const std::vector<std::string>& rows, int directories);
    /// Index of the row that reads so; -1, failing the test, where there is none.
    int row(const std::string& text) const;
    /// What the rows say, sorted.
    std::vector<std::string> sorted_rows() const;
    /// Brings a row into view and clicks it.
    void click_row(int index);
    void click_row(const std::string& text) { click_row(row(text)); }
    /// The files that were opened since the last look.
    std::vector<std::string> opened();
    /// The window changes its size, and the browser its width.
    void resize(int width, int height) const;
    void show();
    /// Paths of the files whose rows are in view, from the top.
    std::vector<std::string> files_in_view() const;

    GuiWorld world;
    TemporaryFolder folder;
    BrowserPlayer player;
    object_ref<FormMediaBrowser> browser;

  private:
    static DirectoryListing pretended(const std::string& path);
};

/// A test with such a browser, without a GL context.
class BrowserTest : public ::testing::Test, public BrowserRig {};
