// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

/// Makes an OpenGL context that draws only into textures current on this thread: without a display
/// where EGL can do that, else in a window of the X display that is never shown. There is one for
/// the whole process, and it stays until exit, as the programs of the passes do; later calls do
/// nothing. Throws `EnhanceError` when no way works or the driver lacks what the passes need.
void make_headless_context();

/// A context, current from its making to its end.
class GlContext {
  public:
    virtual ~GlContext() = default;
};

/// The two ways; null where a way is not there.
std::unique_ptr<GlContext> make_surfaceless_context();
std::unique_ptr<GlContext> make_hidden_window_context();
