// SPDX-License-Identifier: MIT
#pragma once

#include <SDL.h>

/// The window's surface, as the last successful mode change returned it; null before. [main]
extern SDL_Surface* screen;

/// Called with the new size after `set_fullscreen` changed the mode. [main]
using ReshapeHandler = void (*)(int width, int height);
void set_reshape_handler(ReshapeHandler handler);

/// Sets the video mode: OpenGL, resizable, the current depth, plus `flags`. 0 x 0 asks for the
/// size of the desktop. Stores the surface in `screen` when it worked; returns whether it did.
/// [main]
bool set_video_mode(int width, int height, Uint32 flags = 0);

/// Whether the window covers the screen.
bool get_fullscreen();

/// Goes to the largest full-screen mode (`on` not 0), or to a window of 800 x 600, whatever size it
/// had before. Returns whether the mode was set; a failure is reported on standard error. [main]
bool set_fullscreen(int on);

/// Whether a size that the window is said to have is that of the full screen it left within the
/// last second: classic SDL tells it late, and to set it would enlarge the window again. [main]
bool is_size_of_left_screen(int width, int height);

/// The largest mode of more than 800 x 600 pixels in a list as `SDL_ListModes` returns it; 800 x
/// 600 where there is none. Of equal ones the first.
SDL_Rect largest_mode(SDL_Rect* const* modes);

/// Whether anything of the window can be on the screen: not while it is an icon. [main]
bool window_is_shown();

/// Waits for buffer swaps to follow the display: 0 not at all, 1 every refresh. [main]
void set_vsync(int interval);

/// The interval asked for last.
int get_vsync();

/// Refreshes of the display per second. Always 60.
int get_display_refresh_rate();

/// Things other window systems need done; nothing here.
void show_taskbar(bool visible);
void set_visible(bool visible);
void set_focus(bool focused);
void load_icon();
