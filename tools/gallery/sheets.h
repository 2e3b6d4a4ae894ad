// SPDX-License-Identifier: MIT
#pragma once

#include "support/png_picture.h"

// The sheets of the gallery. They need a GL context, the default font and the default style, and
// are the same whatever the window. [main]

/// Every widget in every state.
PngPicture widget_sheet();
/// Every icon and every kind of outline.
PngPicture icon_sheet();
/// Every form. `gui` is empty afterwards and every setting at its default.
PngPicture form_sheet();
