// SPDX-License-Identifier: MIT
#include "gui/forms_picture.h"

#include <GL/glew.h>

namespace {

// A framebuffer of its own size, whatever the window's.
class Canvas {
  public:
    Canvas(int width, int height) {
        glGenFramebuffers(1, &framebuffer_);
        glGenRenderbuffers(1, &renderbuffer_);
        glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer_);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER,
                                  renderbuffer_);
    }
    ~Canvas() {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &framebuffer_);
        glDeleteRenderbuffers(1, &renderbuffer_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

  private:
    GLuint framebuffer_ = 0;
    GLuint renderbuffer_ = 0;
};

}  // namespace

PngPicture drawn_picture(int width, int height, const rectf& area,
                         const std::function<void()>& draw) {
    const Canvas canvas(width, height);
    glClearColor(0.1F, 0.3F, 0.2F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    draw();
    PngPicture picture;
    picture.width = static_cast<int>(area.w);
    picture.height = static_cast<int>(area.h);
    const auto row = static_cast<std::size_t>(picture.width) * 3U;
    picture.bytes.resize(row * static_cast<std::size_t>(picture.height));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    for (int y = 0; y < picture.height; ++y) {
        // OpenGL has its first row at the bottom.
        const int from = height - 1 - (static_cast<int>(area.y) + y);
        glReadPixels(static_cast<int>(area.x), from, picture.width, 1, GL_RGB, GL_UNSIGNED_BYTE,
                     picture.bytes.data() + row * static_cast<std::size_t>(y));
    }
    return picture;
}
