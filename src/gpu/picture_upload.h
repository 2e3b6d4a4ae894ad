// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_texture.h"
#include "gpu/video_picture.h"

#include <cstdint>

/// Where the display gets what only the player knows. [main]
class PictureSource {
  public:
    virtual ~PictureSource() = default;

    /// Writes the picture into memory of width x 3 x height bytes in rows of width x 3 for RGB, and
    /// of half of that in rows of width for the two forms of YUV.
    virtual void fill_picture(const VideoPicture& pic, std::uint8_t* destination,
                              BufferForm form) = 0;

    /// The clocks in seconds, for the post-processing hook.
    virtual double video_clock() = 0;
    virtual double master_clock() = 0;
};

/// Makes the pixel-unpack buffer of a slot, which has no memory before it is filled; deletes it.
/// [main]
void make_pixel_buffer(VideoPicture& pic);
void delete_pixel_buffer(VideoPicture& pic);

/// Fills the slot's pixel buffer from the source; it gets the memory that a picture of `width` x
/// `height` takes in that form. The slot counts as filled also when the buffer could not be mapped.
/// [main]
void fill_pixel_buffer(VideoPicture& pic, PictureSource& source, BufferForm form);

/// What an upload works with besides the picture.
struct UploadOptions {
    bool pixel_buffers;                        ///< pictures travel through pixel buffers
    bool enhanced;                             ///< it will be enhanced: keeps the texture for that
    object_ref<gl_texture_resource>& staging;  ///< packed YUV on its way to RGB
};

/// Brings the picture and its vectors into its textures, brightness and contrast applied, and marks
/// it uploaded. [main]
void upload_picture(VideoPicture& pic, const UploadOptions& options);
