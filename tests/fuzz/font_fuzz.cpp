// SPDX-License-Identifier: MIT
// A font file: any bytes, as they lie in memory and as a file.

#include "fuzz/fuzz_input.h"
#include "fuzz/memory_file.h"
#include "gui/gl_font.h"

#include <GL/glew.h>

#include <limits>

namespace {

unsigned texel_sum = 0;

void measure(const glfont::GLFont& font, const std::string& text) {
    std::pair<int, int> size;
    for (int c = -2; c < 300; ++c)
        font.GetCharSize(c, &size);
    for (const int c : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
                        font.GetStartChar(), font.GetEndChar()})
        font.GetCharSize(c, &size);
    font.GetStringSize(text, &size);
    font.DrawString(text, 0.5F, 10.0F, 20.0F);
}

}  // namespace

// Reads every texel that the library is told of.
extern "C" void __wrap_glTexImage2D(GLenum, GLint, GLint, GLsizei width, GLsizei height, GLint,
                                    GLenum, GLenum, const void* texels);
extern "C" void __wrap_glTexImage2D(GLenum, GLint, GLint, GLsizei width, GLsizei height, GLint,
                                    GLenum, GLenum, const void* texels) {
    const auto* bytes = static_cast<const unsigned char*>(texels);
    const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 2;
    for (std::size_t i = 0; i < count; ++i)
        texel_sum += bytes[i];
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), std::min<std::size_t>(size, 64));
    glfont::GLFont font;
    font.Create(reinterpret_cast<const char*>(data), static_cast<int>(size), 1);
    measure(font, text);
    const MemoryFile file({data, size});
    require(font.Create(file.path().c_str(), 1), "a file that is there is opened");
    measure(font, text);
    return 0;
}
