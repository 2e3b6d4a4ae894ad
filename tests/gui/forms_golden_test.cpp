// SPDX-License-Identifier: MIT
#include "core/settings.h"
#include "gui/gl_font.h"

#include "gui/forms_picture.h"
#include "gui/forms_rig.h"
#include "support/gl_fixture.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

constexpr int width = 800;
constexpr int height = 600;

// Leaves what was found, and where it differs, for whoever looks into a failure.
void save(const std::string& name, const PngPicture& found, const PngPicture& golden) {
    write_png("failed-" + name + ".png", found);
    if (found.bytes.size() != golden.bytes.size()) return;
    PngPicture differences = found;
    for (std::size_t i = 0; i < found.bytes.size(); ++i) {
        const int d = std::abs(int{found.bytes[i]} - int{golden.bytes[i]});
        differences.bytes[i] = static_cast<std::uint8_t>(std::min(255, d * 16));
    }
    write_png("failed-" + name + "-difference.png", differences);
}

class FormPictures : public GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        // Lines on the border of two pixels light either of them: with softpipe the largest
        // difference is 241 and the mean 6.1, all of it beside such lines.
        const std::string driver = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
        if (driver.find("llvmpipe") == std::string::npos) GTEST_SKIP() << "drawn by " << driver;
        create_default_font();
    }

    // The window around a form, with some room for what stands out of it.
    PngPicture picture_of(const FormWidget& form) {
        constexpr float room = 50.0F;
        const pointf origin = FormsRig::in_window(form, {-room, -room});
        const float left = std::max(0.0F, origin.x);
        const float top = std::max(0.0F, origin.y);
        const rectf area(left, top, std::min(form.bounds.w + 2 * room, width - left),
                         std::min(form.bounds.h + 2 * room, height - top));
        return drawn_picture(width, height, area, [this] { rig_.draw(); });
    }

    void expect_golden(const std::string& name, const PngPicture& found) {
        const std::string kept = GOLDEN_FOLDER "/" + name + ".png";
        if (std::getenv("VYX_WRITE_GOLDEN")) {
            ASSERT_TRUE(write_png(kept, found));
            return;
        }
        const PngPicture golden = read_png(kept);
        ASSERT_EQ(found.width, golden.width);
        ASSERT_EQ(found.height, golden.height);
        int largest = 0;
        double sum = 0.0;
        for (std::size_t i = 0; i < found.bytes.size(); ++i) {
            const int d = std::abs(int{found.bytes[i]} - int{golden.bytes[i]});
            largest = std::max(largest, d);
            sum += d;
        }
        const double mean = sum / static_cast<double>(found.bytes.size());
        RecordProperty("largest", largest);
        RecordProperty("mean", std::to_string(mean));
        // Measured 0 and 0.0.
        EXPECT_LE(largest, 3) << "saved as failed-" << name;
        EXPECT_LE(mean, 0.05);
        if (HasFailure()) save(name, found, golden);
    }

    FormsRig rig_{width, height};
};

TEST_F(FormPictures, VideoSettings) {
    rig_.player.width = 1920;
    rig_.player.height = 1080;
    rig_.player.largest_texture_ = 4096;
    rig_.open(*formVideoSettings);
    expect_golden("video_settings", picture_of(*formVideoSettings));
}

TEST_F(FormPictures, VideoSettingsBetweenTwoOptions) {
    rig_.open(*formVideoSettings);
    master_settings.temporal_upscaling_factor.setValue(1.5F);
    master_settings.brightness.setValue(0.25F);
    rig_.press(FormsRig::place(*FormsRig::button(*formVideoSettings, "Advanced")));
    expect_golden("video_settings_moving", picture_of(*formVideoSettings));
    rig_.move({10, 10});
    rig_.release();
}

TEST_F(FormPictures, HalfShownFormZoomsAboutItsButton) {
    rig_.move(FormsRig::in_window(*formMenu, {2, 2}));
    rig_.advance(0.5);
    rig_.click(*formMenu->buttons[FormMenu::audio]);
    rig_.advance(0.25);
    expect_golden("audio_settings_zooming",
                  drawn_picture(width, height, {0, 0, 500, 450}, [this] { rig_.draw(); }));
}

TEST_F(FormPictures, AudioSettings) {
    master_settings.eq_low.setValue(-12.5F);
    master_settings.audio_latency.setValue(0.25F);
    rig_.open(*formAudioSettings);
    expect_golden("audio_settings", picture_of(*formAudioSettings));
}

TEST_F(FormPictures, VideoAdvancedSettings) {
    rig_.open(*formVideoAdvancedSettings);
    expect_golden("video_advanced_settings", picture_of(*formVideoAdvancedSettings));
}

TEST_F(FormPictures, TransportBarPlayingWithItsPosition) {
    rig_.player.duration_ = 100;
    rig_.player.position_ = 40;
    rig_.move(FormsRig::place(*formTransportBar->position));
    rig_.advance(0.5);
    expect_golden("transport_bar_playing", picture_of(*formTransportBar));
}

TEST_F(FormPictures, TransportBarPausedWithItsVolume) {
    rig_.player.paused = true;
    rig_.move(FormsRig::place(*formTransportBar->volume));
    rig_.advance(0.5);
    expect_golden("transport_bar_paused", picture_of(*formTransportBar));
}

TEST_F(FormPictures, Menu) {
    rig_.move(FormsRig::in_window(*formMenu, {2, 2}));
    rig_.advance(0.5);
    expect_golden("menu", picture_of(*formMenu));
}

TEST_F(FormPictures, MenuInFullScreenInMotion) {
    rig_.player.fullscreen = true;
    rig_.move(FormsRig::in_window(*formMenu, {2, 2}));
    rig_.advance(0.5);
    formMenu->phases = {1.5F, 15, 2, 0.5F};
    expect_golden("menu_moving", picture_of(*formMenu));
}

}  // namespace
