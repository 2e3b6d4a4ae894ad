// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

/// An OpenGL context that draws only into textures: without a display where EGL can do that, else
/// in a window of the X display that is never shown. Current on the thread that made it, which also
/// destroys it.
class HeadlessContext {
  public:
    /// Throws `EnhanceError` when no way works or the driver lacks what the passes need.
    HeadlessContext();
    ~HeadlessContext();
    HeadlessContext(const HeadlessContext&) = delete;
    HeadlessContext& operator=(const HeadlessContext&) = delete;

    /// One way to get a context.
    class Backend {
      public:
        virtual ~Backend() = default;
    };

  private:
    std::unique_ptr<Backend> backend_;
};

/// The two ways; null where a way is not there. For tests, too.
std::unique_ptr<HeadlessContext::Backend> make_surfaceless_context();
std::unique_ptr<HeadlessContext::Backend> make_hidden_window_context();
