// SPDX-License-Identifier: MIT
#pragma once

#include "core/grid.h"
#include "core/object.h"
#include "gpu/gl_texture.h"

#include <SDL.h>

#include <cstdint>
#include <memory>
#include <utility>

/// How far a block moved, in whole pixels of the picture.
struct MotionVector {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// How a picture of W x H lies in its pixel buffer. All but the first need planar YUV 4:2:0 of even
/// sizes.
enum class BufferForm {
    rgb,          ///< H rows of W times R, G, B
    packed,       ///< H rows of W times Y; H/2 rows of W/2 times U, then W/2 times V
    interleaved,  ///< H rows of W times Y; H/2 rows of W/2 times U, V
    halved,       ///< H/2 rows of W/2 times the mean of four Y, U, V, 0
};

/// A decoded picture as planes. Only the player looks inside.
struct DecodedFrame {
    virtual ~DecodedFrame() = default;
};

struct SurfaceDeleter {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};

/// One slot of the picture queue.
///
/// The video thread writes a slot while it is neither queued nor on screen; the main thread reads
/// it while it is. GL objects are made and deleted on the main thread.
struct VideoPicture {
    VideoPicture() = default;
    VideoPicture(VideoPicture&&) = default;
    /// Slots change places. References have no assignment that a generated one could use.
    VideoPicture& operator=(VideoPicture&& other) noexcept {
        if (this == &other) return *this;
        std::destroy_at(this);
        return *std::construct_at(this, std::move(other));
    }
    ~VideoPicture() = default;

    /// 24-bit RGB pixels, without pixel-buffer objects.
    std::unique_ptr<SDL_Surface, SurfaceDeleter> surface;
    /// The decoder's planes, with pixel-buffer objects.
    std::unique_ptr<DecodedFrame> frame;
    /// Size of the picture in pixels, for which the slot was allocated.
    int width = 0;
    int height = 0;
    /// The slot has storage for width x height. Guarded by the picture queue's mutex.
    int allocated = 0;
    /// Presentation time in seconds.
    double pts = 0.0;
    /// How many seeks lay before it.
    int seeks = 0;
    /// Counts the pictures of a film as they are decoded.
    std::int64_t number = 0;
    /// Width of a pixel over its height; 0 when the stream does not say.
    double sample_aspect = 0.0;

    /// Pixels in a cell of the two grids below.
    int block_width = 0;
    int block_height = 0;
    /// Cells in a row and in a column.
    int grid_width = 0;
    int grid_height = 0;
    /// A vector per cell, grid_height + 1 rows of grid_width + 1; empty when the stream has none.
    Grid<MotionVector> motion_vectors;
    /// A quantiser per cell, grid_height rows of grid_width, 0 to 127.
    Grid<std::uint8_t> quantization_table;

    /// The picture at its own size, 8 bits.
    object_ref<gl_texture_resource> rgb;
    /// The picture after the spatial enhancement, at the enhanced size; null while there is none.
    object_ref<gl_texture_resource> enhanced;
    /// The vectors, a texel per cell: the cell's own and those of the next cell below on the right.
    object_ref<gl_texture_resource> motion;

    /// Pixel-unpack buffer, 0 for none.
    GLuint pbo = 0;
    /// Its size: width x 3 x height bytes for RGB, half of that for YUV, a third of it halved; 0
    /// until it is filled.
    GLsizeiptr pbo_bytes = 0;
    /// The picture can be converted on the GPU: planar YUV 4:2:0 of even width and height.
    bool yuv_direct = false;
    /// How `pbo` holds it, once it is filled.
    BufferForm buffer_form = BufferForm::rgb;

    /// The slot holds a complete picture.
    bool ready = false;
    /// The picture was on screen.
    bool seen = false;
    /// `rgb` holds this picture.
    bool uploaded = false;
    /// `enhanced` holds this picture.
    bool is_enhanced = false;
    /// `pbo` holds this picture.
    bool buffer_filled = false;
    /// Brightness and contrast are applied already.
    bool converted = false;

    /// Forgets what the display made of the last picture in this slot.
    void clear_flags() { seen = uploaded = is_enhanced = buffer_filled = converted = false; }

    /// Nothing lies between the two: vectors and differences lead from one to the other.
    bool follows(const VideoPicture& other) const {
        return number == other.number + 1 && seeks == other.seeks;
    }

    /// The texture to show or to interpolate: the enhanced one once there is one.
    gl_texture_resource* source() const { return is_enhanced ? enhanced : rgb; }
};

/// Slots of the picture queue. One of them stays with the picture on screen.
inline constexpr int picture_slots = 4;
