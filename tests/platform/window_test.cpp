// SPDX-License-Identifier: MIT
#include "platform/window.h"

#include "platform/swap_interval.h"
#include "support/gl_fixture.h"

#include <GL/glxew.h>

#include <string>

namespace {
enum class SdlWithout { nothing, modes, surfaces };
SdlWithout sdl_without = SdlWithout::nothing;
}  // namespace

// The linker sends calls of SDL here.
extern "C" {
SDL_Rect** __real_SDL_ListModes(SDL_PixelFormat* format, Uint32 flags);
SDL_Rect** __wrap_SDL_ListModes(SDL_PixelFormat* format, Uint32 flags) {
    if (sdl_without == SdlWithout::modes) return nullptr;
    return __real_SDL_ListModes(format, flags);
}
SDL_Surface* __real_SDL_SetVideoMode(int width, int height, int bits, Uint32 flags);
SDL_Surface* __wrap_SDL_SetVideoMode(int width, int height, int bits, Uint32 flags) {
    if (sdl_without == SdlWithout::surfaces) return nullptr;
    return __real_SDL_SetVideoMode(width, height, bits, flags);
}
}

namespace {

TEST(LargestMode, ExceedsTheWindowOrStays) {
    SDL_Rect small{0, 0, 640, 480};
    SDL_Rect same{0, 0, 800, 600};
    SDL_Rect wide{0, 0, 1920, 1080};
    SDL_Rect tall{0, 0, 1080, 1920};
    SDL_Rect* const none[] = {nullptr};
    EXPECT_EQ(largest_mode(none).w, 800);
    EXPECT_EQ(largest_mode(none).h, 600);
    SDL_Rect* const smaller[] = {&small, &same, nullptr};
    EXPECT_EQ(largest_mode(smaller).w, 800);
    SDL_Rect* const larger[] = {&small, &wide, &tall, nullptr};
    EXPECT_EQ(largest_mode(larger).w, 1920) << "of equal ones the first";
}

class WindowTest : public GlTest {
  protected:
    void TearDown() override {
        set_reshape_handler(nullptr);
        if (get_fullscreen()) set_fullscreen(0);
        set_video_mode(window_width, window_height);
        GlTest::TearDown();
    }
};

int reshaped_width = 0;
int reshaped_height = 0;
void note_size(int width, int height) {
    reshaped_width = width;
    reshaped_height = height;
}

TEST_F(WindowTest, FullScreenAndBack) {
    set_reshape_handler(note_size);
    EXPECT_FALSE(get_fullscreen());
    EXPECT_TRUE(set_fullscreen(1));
    EXPECT_TRUE(get_fullscreen());
    const SDL_Rect largest = largest_mode(SDL_ListModes(nullptr, SDL_FULLSCREEN | SDL_HWSURFACE));
    const SDL_VideoInfo* info = SDL_GetVideoInfo();
    EXPECT_EQ(reshaped_width, screen->w);
    EXPECT_EQ(reshaped_height, screen->h);
    EXPECT_EQ(screen->w, largest.w);
    EXPECT_EQ(screen->h, largest.h);
    EXPECT_GE(screen->w * screen->h, 800 * 600);
    EXPECT_LE(screen->w, info->current_w) << "no mode larger than the screen is offered";
    EXPECT_LE(screen->h, info->current_h);
    EXPECT_TRUE(set_fullscreen(0));
    EXPECT_FALSE(get_fullscreen());
    EXPECT_EQ(screen->w, 800) << "whatever size the window had before";
    EXPECT_EQ(screen->h, 600);
    EXPECT_EQ(reshaped_width, 800);
    EXPECT_EQ(reshaped_height, 600);
}

TEST_F(WindowTest, WithoutAListOfModesItIs800By600) {
    set_reshape_handler(note_size);
    sdl_without = SdlWithout::modes;
    ::testing::internal::CaptureStderr();
    EXPECT_TRUE(set_fullscreen(1));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "No fullscreen display modes available!\n");
    EXPECT_EQ(reshaped_width, 800);
    EXPECT_EQ(reshaped_height, 600);
    sdl_without = SdlWithout::nothing;
}

TEST_F(WindowTest, ModeThatCannotBeSetIsTold) {
    SDL_Surface* const before = screen;
    reshaped_width = 0;
    set_reshape_handler(note_size);
    sdl_without = SdlWithout::surfaces;
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(set_fullscreen(1));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "SDL: could not set video mode\n");
    sdl_without = SdlWithout::nothing;
    EXPECT_EQ(screen, before) << "the window stays";
    EXPECT_EQ(reshaped_width, 0);
}

TEST_F(WindowTest, TexturesSurviveAChangeOfMode) {
    const Image image = random_image(16, 16, 1);
    const object_ref<gl_texture_resource> texture = upload(image, GL_RGBA32F_ARB);
    set_fullscreen(1);
    EXPECT_EQ(largest_difference(download(texture), image), 0.0F);
    set_fullscreen(0);
    set_video_mode(400, 300);
    EXPECT_EQ(largest_difference(download(texture), image), 0.0F);
}

TEST_F(WindowTest, SwapIntervalIsRememberedAndHarmless) {
    for (const int interval : {1, 0, 1}) {
        set_vsync(interval);
        EXPECT_EQ(get_vsync(), interval);
        SDL_GL_SwapBuffers();
    }
}

// The screen's own list decides, not what the client library knows. None may be in it.
TEST_F(WindowTest, SwapIntervalIsSetByTheFirstWayThatTheScreenHas) {
    Display* display = glXGetCurrentDisplay();
    ASSERT_NE(display, nullptr);
    const std::string list =
        std::string(" ") + glXQueryExtensionsString(display, DefaultScreen(display)) + " ";
    for (const int interval : {0, 1}) {
        const char* expected = nullptr;
        for (const char* name :
             {"GLX_SGI_swap_control", "GLX_MESA_swap_control", "GLX_EXT_swap_control"}) {
            if (interval == 0 && name == std::string("GLX_SGI_swap_control")) continue;
            if (list.find(std::string(" ") + name + " ") != std::string::npos) expected = name;
        }
        EXPECT_STREQ(set_swap_interval(interval), expected) << interval << " of" << list;
    }
    set_swap_interval(0);
}

TEST_F(WindowTest, RefreshRateIsSixty) {
    EXPECT_EQ(get_display_refresh_rate(), 60);
}

}  // namespace
