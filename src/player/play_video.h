// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/postprocessing.h"

#include <cstddef>
#include <cstdint>

/// How the player starts. Clear the record to zero, then fill it.
struct PlayVideoArgs {
    std::int32_t size;   ///< of this record; later ones may be longer
    char title[256];     ///< window caption
    std::int32_t width;  ///< of the window in pixels; 0 x 0 takes the desktop's
    std::int32_t height;
    bool center_window;
    bool show_banner;
    bool fullscreen;
    bool loop;           ///< start again at the end of the file
    bool preload;        ///< read the file twice before it plays
    double rate;         ///< reserved
    char filename[256];  ///< file or "cam:" device to open, empty for none
    PostprocessingCallback postprocessing_callback;
    float denoising;  ///< values for settings; 0 leaves the setting alone
    float sharpening;
    float contrast;
    float brightness;
    float temp_thresh;
    bool demo;
};
static_assert(sizeof(void*) != 8 || sizeof(PlayVideoArgs) == 576);
static_assert(sizeof(void*) != 8 || offsetof(PlayVideoArgs, postprocessing_callback) == 544);

/// Runs the player until the user quits. Returns 0 then, and 1 when it cannot start, with the
/// reason on standard error. Of the record only the size of the window is written. Once per
/// process: programs and textures do not survive the window. [main]
int play_video(PlayVideoArgs* args);

/// Fixed state of OpenGL, and vertical synchronisation on. [main]
void init();

/// Goes to full screen, or back to a window with a visible pointer. [main]
void cover_screen(bool on);

/// Adapts projection, framebuffers and the interface to a window of `width` x `height`. [main]
void reshape(int width, int height);

/// Closes the open film and shuts everything down. [main]
void do_exit();

/// Applies the values of the record that are not 0 to the settings.
void apply_start_values(const PlayVideoArgs& args);

/// Refreshes per second of the display: 60, whatever the display, once `reshape` has run. [main]
extern int display_refresh_rate;
