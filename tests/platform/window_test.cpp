// SPDX-License-Identifier: MIT
#include "platform/window.h"

#include "platform/swap_interval.h"
#include "support/gl_fixture.h"

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
    const SDL_VideoInfo* info = SDL_GetVideoInfo();
    EXPECT_EQ(reshaped_width, screen->w);
    EXPECT_EQ(reshaped_height, screen->h);
    EXPECT_GE(screen->w * screen->h, 800 * 600);
    EXPECT_LE(screen->w, info->current_w) << "no mode larger than the screen is offered";
    EXPECT_TRUE(set_fullscreen(0));
    EXPECT_FALSE(get_fullscreen());
    EXPECT_EQ(screen->w, 800) << "whatever size the window had before";
    EXPECT_EQ(screen->h, 600);
    EXPECT_EQ(reshaped_width, 800);
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
    EXPECT_STRNE(set_swap_interval(0), "GLX_SGI_swap_control") << "which takes no 0";
}

TEST_F(WindowTest, RefreshRateIsSixty) {
    EXPECT_EQ(get_display_refresh_rate(), 60);
}

}  // namespace
