// SPDX-License-Identifier: MIT
#include "enhance/headless_context.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>

namespace {

class SurfacelessContext : public GlContext {
  public:
    SurfacelessContext(EGLDisplay display, EGLContext context)
        : display_(display), context_(context) {}
    ~SurfacelessContext() override {
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(display_, context_);
        eglTerminate(display_);
    }

  private:
    EGLDisplay display_;
    EGLContext context_;
};

EGLDisplay surfaceless_display() {
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (!extensions || !std::strstr(extensions, "EGL_MESA_platform_surfaceless")) {
        return EGL_NO_DISPLAY;
    }
    return eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
}

EGLContext make_context(EGLDisplay display) {
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_DONT_CARE, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                             EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglBindAPI(EGL_OPENGL_API) || !eglChooseConfig(display, wanted, &config, 1, &count) ||
        count < 1) {
        return EGL_NO_CONTEXT;
    }
    return eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
}

}  // namespace

std::unique_ptr<GlContext> make_surfaceless_context() {
    const EGLDisplay display = surfaceless_display();
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr)) return nullptr;
    const EGLContext context = make_context(display);
    if (context == EGL_NO_CONTEXT) {
        eglTerminate(display);
        return nullptr;
    }
    auto made = std::make_unique<SurfacelessContext>(display, context);
    if (!eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context)) return nullptr;
    return made;
}
