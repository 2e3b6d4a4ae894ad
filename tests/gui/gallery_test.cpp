// SPDX-License-Identifier: MIT
// The pictures of the documentation show what is drawn today.
#include "gallery/sheets.h"
#include "gui/gl_font.h"
#include "gui/widget_style.h"

#include "gui/golden_picture.h"
#include "support/gl_fixture.h"

namespace {

// Measured 0 and 0.0.
constexpr PictureLimits limits{3, 0.05};

class GalleryTest : public GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        const std::string driver = foreign_driver();
        // The kept sheets are llvmpipe's; another driver lights other pixels beside lines.
        if (!driver.empty()) GTEST_SKIP() << "kept sheets are llvmpipe's, not of " << driver;
        create_default_font();
        defaultStyle = new WidgetStyle;
    }
};

TEST_F(GalleryTest, Widgets) {
    expect_golden("gallery-widgets", widget_sheet(), limits, DOCUMENTED_FOLDER);
}

TEST_F(GalleryTest, Icons) {
    expect_golden("gallery-icons", icon_sheet(), limits, DOCUMENTED_FOLDER);
}

TEST_F(GalleryTest, Forms) {
    expect_golden("gallery-forms", form_sheet(), limits, DOCUMENTED_FOLDER);
}

}  // namespace
