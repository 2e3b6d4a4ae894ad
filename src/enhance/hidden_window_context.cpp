// SPDX-License-Identifier: MIT
#include "enhance/headless_context.h"

#include <GL/glx.h>
#include <X11/Xlib.h>

namespace {

class HiddenWindowContext : public GlContext {
  public:
    explicit HiddenWindowContext(Display* display) : display_(display) {}
    ~HiddenWindowContext() override {
        if (context_) {
            glXMakeCurrent(display_, 0, nullptr);
            glXDestroyContext(display_, context_);
        }
        if (window_) XDestroyWindow(display_, window_);
        if (colours_) XFreeColormap(display_, colours_);
        XCloseDisplay(display_);
    }

    bool make_current() {
        int wanted[] = {GLX_RGBA, GLX_RED_SIZE, 8, GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE, 8, 0};
        XVisualInfo* visual = glXChooseVisual(display_, DefaultScreen(display_), wanted);
        if (!visual) return false;
        const Window root = DefaultRootWindow(display_);
        XSetWindowAttributes attributes{};
        colours_ = XCreateColormap(display_, root, visual->visual, AllocNone);
        attributes.colormap = colours_;
        window_ = XCreateWindow(display_, root, 0, 0, 16, 16, 0, visual->depth, InputOutput,
                                visual->visual, CWColormap, &attributes);
        context_ = glXCreateContext(display_, visual, nullptr, True);
        XFree(visual);
        return context_ && glXMakeCurrent(display_, window_, context_);
    }

  private:
    Display* display_;
    Colormap colours_ = 0;
    Window window_ = 0;
    GLXContext context_ = nullptr;
};

}  // namespace

std::unique_ptr<GlContext> make_hidden_window_context() {
    Display* display = XOpenDisplay(nullptr);
    if (!display) return nullptr;
    auto made = std::make_unique<HiddenWindowContext>(display);
    if (!glXQueryExtension(display, nullptr, nullptr) || !made->make_current()) return nullptr;
    return made;
}
