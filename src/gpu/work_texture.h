// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/texture_cache.h"

#include <utility>

/// A texture that a filter works in: from the texture cache, and back into it at the end of the
/// scope. [main]
class WorkTexture {
  public:
    /// `format` 0 is the default float format. The contents are undefined.
    WorkTexture(int height, int width, int format) {
        alloc_texture(texture_, height, width, format);
    }
    ~WorkTexture() {
        if (texture_) release_texture(texture_);
    }
    WorkTexture(const WorkTexture&) = delete;
    WorkTexture& operator=(const WorkTexture&) = delete;

    operator gl_texture_resource*() const { return texture_; }

    /// Exchanges what two names stand for: a pass must not write what it reads, so it writes
    /// another texture, which then takes the place of the first.
    friend void swap(WorkTexture& a, WorkTexture& b) { std::swap(a.texture_, b.texture_); }

  private:
    gl_texture_resource* texture_ = nullptr;
};
