// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"
#include "gpu/video_picture.h"

/// The planes of the picture on screen, for films that are shown as they are.
///
/// Converting a picture into a texture and enlarging that costs more than twice as much as doing
/// both while drawing into the window (measured: 11 and 3.5 ms of processor time for 1280 x 720 in
/// a window of 800 x 600, in software). So it is done where no pass wants the picture as a texture.
/// [main]
struct DirectPlanes {
    object_ref<gl_texture_resource> y;
    object_ref<gl_texture_resource> uv;      ///< U as luminance, V as alpha
    object_ref<gl_texture_resource> halved;  ///< instead of both: Y, U, V of half the size

    bool empty() const { return y.IsNull() && halved.IsNull(); }
    void clear() {
        y = nullptr;
        uv = nullptr;
        halved = nullptr;
    }
};

/// Whether the settings leave pictures as they are, so that no pass needs them as a texture.
bool pictures_stay_untouched();

/// Brings the interleaved or halved YUV in the picture's pixel buffer into `planes`.
void upload_planes(const VideoPicture& pic, DirectPlanes& planes);

/// Draws `planes` as a quad from (0, 0) to (`width`, `height`).
void draw_planes(DirectPlanes& planes, int width, int height);
