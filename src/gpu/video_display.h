// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/direct_display.h"
#include "gpu/picture_upload.h"
#include "gpu/postprocessing.h"
#include "gpu/video_picture.h"

/// What one redraw of the window works with. The player fills it from the open film; nothing in it
/// is owned. [main]
struct DisplayView {
    int screen_width = 0;
    int screen_height = 0;

    /// The picture queue: `picture_slots` slots, the one to show, and how many are queued from
    /// there. With none queued the last picture stays.
    VideoPicture* slots = nullptr;
    int read_index = 0;
    int queued = 0;
    /// The slot prepared last, -1 for none. Written by the display.
    int& shown_index;

    bool paused = false;
    bool rewind = false;
    bool fast_forward = false;
    /// Asks for one refresh of a paused picture, without interpolation. Cleared when it is done.
    bool& step;

    bool pixel_buffers = false;  ///< pictures travel through pixel-buffer objects
    bool show_motion_vectors = false;
    bool show_quantization = false;

    int phase_step = 0;     ///< sub-frames of the picture shown before this one
    float& phase_fraction;  ///< position between the pictures in free-running mode, 0 to T

    PostprocessingCallback hook = nullptr;
    int playback_speed_index = 0;
    PictureSource& source;

    object_ref<gl_texture_resource>& staging;  ///< packed YUV on its way to RGB
    object_ref<gl_texture_resource>& output;   ///< where passes write the picture to show
    object_ref<gl_texture_resource>& shown;    ///< what the window shows: `output`, or a picture
    DirectPlanes& planes;                      ///< what it shows where `shown` is null
};

/// Draws the picture and its overlays into the back buffer: uploads and converts what is new, runs
/// the passes that the settings ask for, and puts the result on screen at its place.
/// Returns false, having cleared the window, when there is no picture to draw. [main]
bool display_picture(const DisplayView& view);

/// Clears the window to the player's dark grey and leaves it ready for drawing in pixels, origin at
/// the top left. [main]
void clear_window(int width, int height);
