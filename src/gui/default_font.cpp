// SPDX-License-Identifier: MIT
#include "gui/gl_font.h"
#include "platform/resources.h"

#include <GL/glew.h>

void create_default_font() {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    const unsigned char* data = nullptr;
    int size = 0;
    load_resource("GLF", "DEFAULT", &data, &size);
    default_font.Create(reinterpret_cast<const char*>(data), size, static_cast<int>(texture));
}
