// SPDX-License-Identifier: MIT
// What is drawn over the picture or instead of it, as the window shows it.

#include "core/settings.h"
#include "gpu/display_geometry.h"
#include "gpu/video_display.h"
#include "gui/gl_font.h"
#include "gui/graphics.h"
#include "platform/window.h"
#include "player/clocks.h"
#include "player/display.h"
#include "player/infolabel.h"
#include "player/play_video.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"
#include "support/temporary_folder.h"

#include "media/subtitles.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

// Ends of drawing and swaps, in their order.
static std::string window_calls;

extern "C" {
void __real_glFinish();
void __wrap_glFinish() {
    window_calls += "finish ";
    __real_glFinish();
}
void __real_SDL_GL_SwapBuffers();
void __wrap_SDL_GL_SwapBuffers() {
    window_calls += "swap ";
    __real_SDL_GL_SwapBuffers();
}
}

namespace {

constexpr std::int64_t second = 1000000;
std::int64_t now_us = 0;

class OverlayDisplay : public PlayerTest {
  protected:
    void SetUp() override {
        PlayerTest::SetUp();
        create_default_font();
        setopacity(0.0F);
        now_us = 1000 * second;
        set_wall_clock([] { return now_us; });
        reset_video_scaling_animation();
        infolabel_text.clear();
        is_.picture_queue_mutex = make_mutex();
        is_.filename = "/music/a song.ogg";
        is_.audio_info.time_base = is_.video_info.time_base = {1, 1000000};
    }
    void TearDown() override {
        set_wall_clock(nullptr);
        infolabel_text.clear();
        for (Value* value : {&master_settings.status, &master_settings.vsync})
            value->setValue(value->default_value());
        set_vsync(1);
        default_font.Destroy();
        global_video_pkt_pts = AV_NOPTS_VALUE;
        subtitles.load("");
        reset_video_scaling_animation();
        PlayerTest::TearDown();
    }

    // A film of sound alone with this many channels of this amplitude.
    void play_sound(int channels, float amplitude) {
        is_.audio_stream_index = 0;
        is_.audio_info.channels = channels;
        for (int i = 0; i < std::min(channels, 2); ++i) {
            is_.audio_scope[i] = new CircularBuffer<float>(4096);
            write_sound(i, 4096, amplitude);
        }
    }
    void write_sound(int channel, int samples, float amplitude) {
        CircularBuffer<float>& scope = *is_.audio_scope[channel];
        float* places[2] = {};
        int counts[2] = {};
        scope.Lock(scope.WritePosition(), samples, &places[0], &counts[0], &places[1], &counts[1]);
        for (int part = 0; part < 2; ++part) {
            for (int i = 0; i < counts[part]; ++i)
                CircularBuffer<float>::Store(places[part][i], amplitude);
        }
        scope.IncrementWritePointer(samples);
    }

    // What the redraw leaves. Buffers are swapped by it; the texture of the waveforms stays.
    Image hud(VideoState* is) {
        clear_window(window_width, window_height);
        hud_display(is);
        return window();
    }

    struct Found {
        float brightest = 0.0F;
        int pixels = 0;  // brighter than the background
    };
    static Found look(const Image& image, int x0, int y0, int x1, int y1) {
        Found found;
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                found.brightest = std::max(found.brightest, image.at(x, y).r);
                found.pixels += image.at(x, y).r > 0.1F;
            }
        }
        return found;
    }
    static Found label(const Image& image) { return look(image, 0, 10, window_width, 60); }

    VideoState is_;
};

TEST_F(OverlayDisplay, LabelFadesAndGoes) {
    set_infolabel("Label");
    EXPECT_GT(label(hud(nullptr)).brightest, 0.95F);
    EXPECT_EQ(look(hud(nullptr), 0, 10, 49, 60).pixels, 0) << "left of it";
    now_us += 2 * second;
    EXPECT_NEAR(label(hud(nullptr)).brightest, 0.51F, 0.01F);
    now_us += second / 2 + 1;
    EXPECT_EQ(label(hud(nullptr)).pixels, 0);
    EXPECT_EQ(infolabel_text, "");
}

TEST_F(OverlayDisplay, StatusLineStandsAtTheRight) {
    play_sound(1, 0.0F);
    EXPECT_EQ(label(hud(&is_)).pixels, 0) << "off";
    is_.rewind = true;
    const Image time = hud(&is_);
    EXPECT_GT(label(time).brightest, 0.95F);
    EXPECT_EQ(look(time, window_width - 49, 0, window_width, 80).pixels, 0) << "50 pixels free";
    EXPECT_GT(look(time, window_width - 80, 0, window_width - 49, 80).pixels, 20);
    is_.rewind = false;
    master_settings.status.setValue(1);
    EXPECT_GT(label(hud(&is_)).pixels, label(time).pixels) << "a longer text";
    EXPECT_EQ(label(hud(nullptr)).pixels, 0) << "without a film there is none";
}

TEST_F(OverlayDisplay, SubtitleShowsAtItsTimes) {
    const TemporaryFolder folder;
    std::ofstream(folder.path("film.srt")) << "1\n0:0:1,0 --> 0:0:2,0\nHello\n\n";
    subtitles.load(folder.path("film.mp4"));
    is_.video_stream_index = 0;
    const auto bottom = [this](std::int64_t position) {
        global_video_pkt_pts = position;
        return look(hud(&is_), 0, window_height - 120, window_width, window_height).pixels;
    };
    EXPECT_EQ(bottom(999999), 0);
    EXPECT_GT(bottom(second), 30);
    EXPECT_GT(bottom(2 * second), 30);
    EXPECT_EQ(bottom(2500001), 0);
    subtitles.seek(0);
    is_.seek_request = true;
    EXPECT_EQ(bottom(2 * second), 0) << "on the way to another place";
    is_.seek_request = false;
    is_.seeking = true;
    EXPECT_EQ(bottom(2 * second), 0);
    is_.seeking = false;
    is_.seeks_done = 1;
    EXPECT_EQ(bottom(2 * second), 0) << "no picture from there yet";
    is_.seeks_seen = 1;
    EXPECT_GT(bottom(2 * second), 30);
}

TEST_F(OverlayDisplay, TimesOfPicturesAreNoted) {
    const int before = lastframe_timestamp_qi;
    hud(&is_);
    EXPECT_EQ(lastframe_timestamp[before], now_us);
    EXPECT_EQ(lastframe_timestamp_qi, (before + 1) % timestamp_ring_size);
    for (int i = 0; i < timestamp_ring_size; ++i)
        hud(nullptr);
    EXPECT_EQ(lastframe_timestamp_qi, (before + 1) % timestamp_ring_size);
}

TEST_F(OverlayDisplay, AutomaticVsyncFollowsTheRate) {
    const auto shown_at = [](int fps) {
        for (int i = 0; i < 300; ++i) {
            now_us += second / fps;
            hud_display(nullptr);
        }
    };
    const int rate_before = std::exchange(display_refresh_rate, 60);
    master_settings.vsync.setValue(2);
    shown_at(30);
    EXPECT_EQ(get_vsync(), 0);
    shown_at(59);
    EXPECT_EQ(get_vsync(), 1) << "of 60";
    shown_at(58);
    EXPECT_EQ(get_vsync(), 0);
    shown_at(200);
    EXPECT_EQ(get_vsync(), 1);
    display_refresh_rate = 75;
    shown_at(73);
    EXPECT_EQ(get_vsync(), 0) << "the rate is that of the window";
    shown_at(74);
    EXPECT_EQ(get_vsync(), 1);
    display_refresh_rate = rate_before;
    master_settings.vsync.setValue(1);
    shown_at(30);
    EXPECT_EQ(get_vsync(), 1) << "not automatic";
}

// Pictures that wait for the display are swapped when they are complete, others at once.
TEST_F(OverlayDisplay, DrawingIsFinishedBeforeASwapThatWaits) {
    set_vsync(1);
    window_calls.clear();
    gui_display();
    EXPECT_EQ(window_calls, "finish swap ");
    set_vsync(0);
    window_calls.clear();
    gui_display();
    EXPECT_EQ(window_calls, "swap ");
}

// Lit rows of a column of the picture of the waveforms.
int lit(const Image& image, int x, int from = 0, int to = waveform_height) {
    int count = 0;
    for (int y = from; y < to; ++y)
        count += image.at(x, y).b > 0.5F;
    return count;
}

TEST_F(OverlayDisplay, SoundAloneShowsItsWaveform) {
    play_sound(1, 0.4F);
    audio_display(&is_);
    const Image picture = download(is_.output_texture);
    EXPECT_EQ(picture.width(), 600);
    EXPECT_EQ(picture.height(), 450);
    EXPECT_NEAR(lit(picture, 300), 90, 2);

    // Half of the ring becomes silent, the newer half: the right one.
    write_sound(0, 2048, 0.0F);
    for (int i = 0; i < 40; ++i)
        audio_display(&is_);  // until what was there has faded
    const Image later = download(is_.output_texture);
    EXPECT_NEAR(lit(later, 150), 90, 2);
    EXPECT_LE(lit(later, 450), 2) << "a thin line";
}

TEST_F(OverlayDisplay, FiveChannelsDrawTwo) {
    play_sound(5, 1.0F);
    EXPECT_EQ(read_waveforms(&is_).size(), 2U);
    audio_display(&is_);
    const Image picture = download(is_.output_texture);
    EXPECT_NEAR(lit(picture, 300, 0, 225), 112, 2);
    EXPECT_NEAR(lit(picture, 300, 225, 450), 112, 2);
}

TEST_F(OverlayDisplay, ColumnsReadTheRingFromItsOldestSampleOn) {
    play_sound(1, 0.0F);
    for (int i = 0; i < 4096; ++i)
        write_sound(0, 1, static_cast<float>(i) / 4096.0F);
    const std::vector<Waveform> waveforms = read_waveforms(&is_);
    ASSERT_EQ(waveforms.size(), 1U);
    for (const std::size_t x : {0U, 1U, 300U, 599U})
        EXPECT_EQ(waveforms[0][x], static_cast<float>(x * 4096 / 600) / 4096.0F) << x;
    is_.audio_scope[0] = nullptr;
    EXPECT_TRUE(read_waveforms(&is_).empty());
}

// The back buffer after a redraw is what was drawn, since the window copies it.
TEST_F(OverlayDisplay, NameOfTheFileStandsBelow) {
    play_sound(1, 0.4F);
    audio_display(&is_);
    const SDL_Rect r = waveform_rectangle(0, 1, window_width, window_height);
    const auto y = r.y + r.h * 400 / 450;
    const Image shown = window();
    EXPECT_GT(look(shown, r.x, y, r.x + r.w, r.y + r.h).pixels, 50);
    is_.filename = "/music/.ogg";
    audio_display(&is_);
    EXPECT_EQ(look(window(), r.x, y, r.x + r.w, r.y + r.h).pixels, 0) << "the name alone";
}

// The height that the noise of scanning is given.
std::vector<float> uniforms;
PFNGLUNIFORM1FPROC real_uniform = nullptr;
void GLAPIENTRY note_uniform(GLint location, GLfloat value) {
    uniforms.push_back(value);
    real_uniform(location, value);
}

TEST_F(OverlayDisplay, ScanningThroughSoundShowsItsEffectAtTheHeightOfTheWaveforms) {
    play_sound(1, 0.4F);
    const auto given = [this](float value) {
        uniforms.clear();
        real_uniform = std::exchange(__glewUniform1f, note_uniform);
        audio_display(&is_);
        __glewUniform1f = real_uniform;
        return std::count(uniforms.begin(), uniforms.end(), value);
    };
    const SDL_Rect r = waveform_rectangle(0, 1, window_width, window_height);
    ASSERT_EQ(r.h, 210);
    const float scale = 9876.78F / 210.0F;
    EXPECT_EQ(given(scale), 0) << "plays";
    for (std::atomic<bool>* scan : {&is_.rewind, &is_.fast_forward}) {
        *scan = true;
        EXPECT_EQ(given(scale), 1);
        *scan = false;
    }
}

// In a window that is larger than the waveforms at their own size.
class LargeOverlayDisplay : public OverlayDisplay {
  protected:
    void SetUp() override {
        OverlayDisplay::SetUp();
        ASSERT_TRUE(set_video_mode(width, height));
        reshape(width, height);
        play_sound(1, 0.4F);
        gui_display();  // the driver takes over the new size with a swap
    }
    void TearDown() override {
        for (Value* value :
             {&master_settings.spatial_zoom, &master_settings.spatial_upscaling_factor}) {
            value->setValue(value->default_value());
        }
        set_video_mode(window_width, window_height);
        reshape(window_width, window_height);
        OverlayDisplay::TearDown();
    }

    // Left, top, width and height of what the picture of the waveforms covers: it is black, the
    // rest of the window dark grey.
    using Area = std::array<int, 4>;
    Area covered() {
        reset_video_scaling_animation();
        audio_display(&is_);
        std::vector<unsigned char> pixels(std::size_t{4} * width * height);
        glReadBuffer(GL_BACK);
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        int left = width, top = height;
        int right = 0, bottom = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (pixels[static_cast<std::size_t>(4 * (y * width + x))] != 0) continue;
                left = std::min(left, x);
                right = std::max(right, x + 1);
                top = std::min(top, height - 1 - y);
                bottom = std::max(bottom, height - y);
            }
        }
        return {left, top, right - left, bottom - top};
    }

    static constexpr int width = 1240;
    static constexpr int height = 960;
};

TEST_F(LargeOverlayDisplay, WaveformsHaveTheSizeThatIsSet) {
    EXPECT_EQ(covered(), (Area{60, 5, 1120, 840}));
    master_settings.spatial_zoom.setValue(2);
    EXPECT_EQ(covered(), (Area{320, 200, 600, 450}));
    master_settings.spatial_upscaling_factor.setValue(1);
    EXPECT_EQ(covered(), (Area{20, 0, 1200, 875}));
    master_settings.spatial_upscaling_factor.setValue(0);
    master_settings.spatial_zoom.setValue(3);
    EXPECT_EQ(covered(), (Area{20, 0, 1200, 875}));
}

TEST_F(OverlayDisplay, WithoutSoundThereIsNoWaveform) {
    audio_display(&is_);
    const Image shown = window();
    EXPECT_EQ(look(shown, 0, 0, window_width, window_height).pixels, 0);
    EXPECT_NEAR(shown.at(160, 100).b, 0.02F, 0.002F);
}

TEST_F(OverlayDisplay, FilmWithoutAPictureYetShowsItsSound) {
    is_.video_stream_index = 0;
    video_display(&is_);
    EXPECT_TRUE(is_.output_texture.IsNull()) << "a film without sound stays dark";
    play_sound(1, 0.4F);
    video_display(&is_);
    ASSERT_FALSE(is_.output_texture.IsNull());
    EXPECT_NEAR(lit(download(is_.output_texture), 300), 90, 2);
    SDL_Rect other{1, 2, 30, 40};
    video_scaling_animation(other);
    EXPECT_EQ(other.w, 30) << "the film does not grow out of it";
}

TEST_F(OverlayDisplay, WithoutAFilmAFieldIsBlue) {
    set_infolabel("Label");
    video_nosignal_display();
    const Image shown = window();
    EXPECT_NEAR(shown.at(5, 5).b, 0.02F, 0.002F);
    EXPECT_NEAR(shown.at(5, window_height - 5).b, 0.02F, 0.002F);
    EXPECT_GT(shown.at(5, window_height / 2).b, 0.3F);
    EXPECT_GT(label(shown).brightest, 0.95F);
}

}  // namespace
