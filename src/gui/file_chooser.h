// SPDX-License-Identifier: MIT
#pragma once

class FormWidget;

/// The form in which files are chosen, as far as other forms need it. [main]
class FileChooser {
  public:
    virtual ~FileChooser() = default;

    /// Opens the file after, or before, the one chosen last.
    virtual void play_next() = 0;
    virtual void play_previous() = 0;
    /// What is shown and hidden.
    virtual FormWidget& form() = 0;
};

/// Null before there is one. Not owned.
extern FileChooser* file_chooser;
