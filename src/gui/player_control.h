// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

class gl_texture_resource;

/// What the forms know of the player and ask of it. The player offers one; tests have their own.
/// Everything is called on the main thread. What needs an open file does nothing without one.
class PlayerControl {
  public:
    virtual ~PlayerControl() = default;

    /// Whether a file is open.
    virtual bool is_open() const = 0;
    virtual bool is_paused() const = 0;
    virtual bool is_rewinding() const = 0;
    virtual bool is_fast_forwarding() const = 0;
    /// Seconds; 0 where unknown.
    virtual double position() const = 0;
    virtual double duration() const = 0;

    /// Size of the decoded pictures. Returns false, changing nothing, where no video is being
    /// decoded.
    virtual bool picture_size(int* width, int* height) const = 0;
    /// Largest side of a texture, in texels.
    virtual int largest_texture() const = 0;
    /// Lets the video decoder smooth block edges itself, or not, from the next picture on.
    virtual void set_inloop_filter(bool on) = 0;

    /// Pauses or resumes; ends scanning.
    virtual void toggle_pause() = 0;
    virtual void rewind() = 0;
    virtual void fast_forward() = 0;
    /// Seeks to `microseconds` and refreshes the picture.
    virtual void seek(std::int64_t microseconds) = 0;

    /// Closes what is open and plays `path`.
    virtual void open(const std::string& path) = 0;
    /// Shows a short text over the picture.
    virtual void show_label(const std::string& text) = 0;

    virtual bool is_fullscreen() const = 0;
    virtual void set_fullscreen(bool on) = 0;
    /// Waits for the display's refresh when showing pictures, or not.
    virtual void set_vsync(bool on) = 0;

    /// The small picture of a film, or null while there is none (yet); asking is what makes the
    /// player prepare it. The texture lives until the next call.
    virtual gl_texture_resource* thumbnail(const std::string& path) = 0;
};

/// The player behind the forms; null before there is one. Not owned. [main]
extern PlayerControl* player_control;
