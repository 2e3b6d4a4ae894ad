// SPDX-License-Identifier: MIT
#include "player/key_commands.h"

#include "core/settings.h"
#include "gui/forms.h"
#include "platform/window.h"
#include "player/infolabel.h"
#include "player/stream.h"
#include "support/player_fixture.h"

namespace {

class KeyCommands : public PlayerTest {
  protected:
    void SetUp() override {
        PlayerTest::SetUp();
        infolabel_text.clear();
    }
    void TearDown() override {
        for (Value* value :
             {&master_settings.vsync, &master_settings.volume, &master_settings.status,
              &master_settings.demo_mode, &master_settings.show_original}) {
            value->setValue(value->default_value());
        }
        PlayerTest::TearDown();
    }

    // The label that a key leaves.
    std::string press(SDLKey key, int modifiers = KMOD_NONE) {
        SDL_keysym symbol{};
        symbol.sym = key;
        symbol.mod = static_cast<SDLMod>(modifiers);
        key_down(is_, symbol);
        return infolabel_text;
    }
    void release(SDLKey key) {
        SDL_keysym symbol{};
        symbol.sym = key;
        key_up(is_, symbol);
    }

    VideoState state_;
    VideoState* is_ = &state_;
};

TEST_F(KeyCommands, NeedAFilm) {
    is_ = nullptr;
    for (const SDLKey key : {SDLK_l, SDLK_m, SDLK_q, SDLK_o, SDLK_s, SDLK_d, SDLK_v, SDLK_i}) {
        infolabel_text.clear();
        EXPECT_EQ(press(key), "No video loaded.") << key;
    }
    EXPECT_EQ(master_settings.vsync.toInt(), 2) << "nothing changes";
    EXPECT_FALSE(master_settings.demo_mode.toBool());
    infolabel_text.clear();
    for (const SDLKey key :
         {SDLK_SPACE, SDLK_LEFT, SDLK_RIGHT, SDLK_KP_PLUS, SDLK_KP_MINUS, SDLK_x}) {
        EXPECT_EQ(press(key, KMOD_RSHIFT | KMOD_RCTRL | KMOD_RALT), "") << key;
    }
    release(SDLK_LEFT);
}

TEST_F(KeyCommands, Toggles) {
    EXPECT_EQ(press(SDLK_l), "Loop mode ON");
    EXPECT_TRUE(state_.loop);
    EXPECT_EQ(press(SDLK_l), "Loop mode OFF");
    EXPECT_EQ(press(SDLK_m), "Show motion vectors ON");
    EXPECT_TRUE(state_.show_motion_vectors);
    EXPECT_EQ(press(SDLK_m), "Show motion vectors OFF");
    EXPECT_EQ(press(SDLK_q), "Show quantization factors ON");
    EXPECT_TRUE(state_.show_quantization);
    EXPECT_EQ(press(SDLK_q), "Show quantization factors OFF");
    EXPECT_EQ(press(SDLK_o), "Original");
    EXPECT_TRUE(master_settings.show_original.toBool());
    EXPECT_EQ(press(SDLK_o), "Processed");
    EXPECT_EQ(press(SDLK_s), "Status ON");
    EXPECT_EQ(press(SDLK_s), "Status OFF");
    EXPECT_EQ(press(SDLK_d), "Demo mode ON");
    EXPECT_TRUE(master_settings.demo_mode.toBool());
    EXPECT_EQ(press(SDLK_d), "Demo mode OFF");
}

TEST_F(KeyCommands, VsyncGoesRound) {
    EXPECT_EQ(press(SDLK_v), "VSync OFF");
    EXPECT_EQ(get_vsync(), 0);
    EXPECT_EQ(press(SDLK_v), "VSync ON");
    EXPECT_EQ(get_vsync(), 1);
    EXPECT_EQ(press(SDLK_v), "VSync ADAPTIVE");
    EXPECT_EQ(get_vsync(), 1) << "which switches it plainly on";
    EXPECT_EQ(master_settings.vsync.toInt(), 2);
    set_vsync(0);
}

TEST_F(KeyCommands, VolumeInDecibels) {
    EXPECT_EQ(press(SDLK_UP), "Volume: +1.00 dB");
    EXPECT_EQ(press(SDLK_DOWN), "Volume: +0.00 dB");
    EXPECT_EQ(press(SDLK_DOWN), "Volume: -1.00 dB");
    for (int i = 0; i < 60; ++i)
        press(SDLK_DOWN);
    EXPECT_EQ(infolabel_text, "Volume: -40.00 dB");
    is_ = nullptr;
    EXPECT_EQ(press(SDLK_UP), "Volume: -39.00 dB") << "no film is needed";
}

TEST_F(KeyCommands, SpeedNeedsThreeModifiers) {
    constexpr int all = KMOD_RSHIFT | KMOD_RCTRL | KMOD_RALT;
    for (const int some : {0, KMOD_RSHIFT | KMOD_RCTRL, KMOD_LSHIFT | KMOD_RCTRL | KMOD_RALT}) {
        EXPECT_EQ(press(SDLK_KP_PLUS, some), "");
    }
    const char* const faster[] = {"110%", "120%", "130%", "140%", "150%", "150%"};
    for (const char* text : faster) {
        EXPECT_EQ(press(SDLK_KP_PLUS, all | KMOD_NUM), std::string("Playback speed: ") + text);
    }
    EXPECT_EQ(state_.playback_speed_index, 9);
    const char* const slower[] = {"140%", "130%", "120%", "110%", "100%",
                                  "080%", "070%", "060%", "050%", "050%"};
    for (const char* text : slower) {
        EXPECT_EQ(press(SDLK_KP_MINUS, all), std::string("Playback speed: ") + text);
    }
    EXPECT_EQ(state_.playback_speed_index, 0);
}

TEST_F(KeyCommands, SpaceTogglesThePause) {
    press(SDLK_SPACE);
    EXPECT_TRUE(state_.paused);
    EXPECT_TRUE(state_.pause_refresh);
    press(SDLK_SPACE);
    EXPECT_FALSE(state_.paused);
    EXPECT_EQ(infolabel_text, "");
}

TEST_F(KeyCommands, ArrowsScanWhileTheyAreHeld) {
    EXPECT_EQ(press(SDLK_RIGHT), ">>");
    EXPECT_TRUE(state_.fast_forward);
    EXPECT_TRUE(state_.paused);
    release(SDLK_RIGHT);
    EXPECT_FALSE(state_.fast_forward);
    EXPECT_FALSE(state_.paused);
    infolabel_text.clear();
    EXPECT_EQ(press(SDLK_LEFT), ">>") << "the same text";
    EXPECT_TRUE(state_.rewind);
    release(SDLK_x);
    EXPECT_TRUE(state_.rewind);
    release(SDLK_LEFT);
    EXPECT_FALSE(state_.rewind);
    EXPECT_FALSE(state_.paused);
}

TEST_F(KeyCommands, DescribeTheStreams) {
    EXPECT_EQ(press(SDLK_i), "");
    state_.audio_info = {"aac", 0, 0, 0.0, 96291, 2};
    state_.audio_stream_index = 1;
    EXPECT_EQ(press(SDLK_i), "Codec: aac, bitrate: 96291 bps");
    state_.video_info = {"h264", 1920, 1080, 27.02, 0, 0};
    state_.video_stream_index = 0;
    state_.yuv_direct = true;
    state_.pbo_supported = true;
    EXPECT_EQ(press(SDLK_i),
              "Video codec: h264 [1920x1080, 27.0 fps]\nMode: YUV420P, ST.ext: YES\n"
              "Audio codec: aac, bitrate: 96291 bps, channels: 2");
    state_.audio_stream_index = -1;
    state_.yuv_direct = false;
    state_.pbo_supported = false;
    EXPECT_EQ(press(SDLK_i),
              "Video codec: h264 [1920x1080, 27.0 fps]\nMode: SWS_SCALE, ST.ext: NO");
}

TEST_F(KeyCommands, F12TogglesFullScreen) {
    press(SDLK_F12);
    EXPECT_TRUE(get_fullscreen());
    press(SDLK_F12);
    EXPECT_FALSE(get_fullscreen());
    set_video_mode(window_width, window_height);
}

// The menu has forms grow out of its icons; keys have them grow out of their middle, but for the
// browser, which grows out of where it did before.
TEST_F(KeyCommands, FormsGrowOutOfTheirMiddle) {
    formMediaBrowser = new FormMediaBrowser(nullptr);
    formVideoSettings = new FormVideoSettings;
    formAudioSettings = new FormAudioSettings;
    formVideoAdvancedSettings = new FormVideoAdvancedSettings;
    const pointf elsewhere(-120.0F, 80.0F);
    const auto check = [&](SDLKey key, FormWidget& form, pointf wanted) {
        for (const bool shown : {true, false}) {
            form.scaling_center = elsewhere;
            press(key);
            EXPECT_EQ(form.visible && form.animation_state != FormWidget::hiding, shown) << key;
            EXPECT_EQ(form.scaling_center.x, wanted.x) << key;
            EXPECT_EQ(form.scaling_center.y, wanted.y) << key;
        }
    };
    check(SDLK_F1, *formMediaBrowser, elsewhere);
    check(SDLK_F2, *formVideoSettings, -formVideoSettings->bounds.center());
    check(SDLK_F3, *formAudioSettings, -formAudioSettings->bounds.center());
    check(SDLK_F4, *formVideoAdvancedSettings, -formVideoAdvancedSettings->bounds.center());
    formMediaBrowser = nullptr;
    formVideoSettings = nullptr;
    formAudioSettings = nullptr;
    formVideoAdvancedSettings = nullptr;
}

}  // namespace
