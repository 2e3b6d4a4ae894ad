// SPDX-License-Identifier: MIT
#pragma once

#include <GL/glew.h>

/// GLEW reports an extension as missing while this exists.
class WithoutExtension {
  public:
    explicit WithoutExtension(GLboolean& flag) : flag_(flag), kept_(flag) { flag_ = GL_FALSE; }
    ~WithoutExtension() { flag_ = kept_; }
    WithoutExtension(const WithoutExtension&) = delete;
    WithoutExtension& operator=(const WithoutExtension&) = delete;

  private:
    GLboolean& flag_;
    GLboolean kept_;
};
