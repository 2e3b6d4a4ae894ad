// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"

#include <functional>

/// A drawing kept as pixels, with how much each of them covers what lies below it: drawing it
/// again is one quad, whatever it consists of. It holds GL objects: [main] only.
class KeptDrawing {
  public:
    KeptDrawing() = default;
    KeptDrawing(const KeptDrawing&) = delete;
    KeptDrawing& operator=(const KeptDrawing&) = delete;
    /// At the end of the process the context is gone, and the texture with it.
    ~KeptDrawing();

    /// Has `draw` draw into the picture instead of the window. `area`, in the coordinates of the
    /// current matrices, encloses what is drawn; what lies outside it or the window is lost.
    /// Returns false, and has not called `draw`, where the driver cannot do that, or where nothing
    /// of the area is in the window.
    bool make(const rectf& area, const std::function<void()>& draw);

    /// Blends the picture over the window, under the matrices it was made with. It may be recorded.
    void draw() const;

  private:
    bool prepare_texture(int width, int height);

    unsigned texture_ = 0;
    unsigned framebuffer_ = 0;
    int width_ = 0;
    int height_ = 0;
    rectf place_;  // where the picture lies, in the coordinates it was made in
};
