// SPDX-License-Identifier: MIT
// How a font comes in.

#include "gui/gl_font.h"

#include <GL/glew.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace glfont {

static_assert(sizeof(Glyph) == 24, "records are read as they lie in the file");

namespace {

// Larger ones are no fonts; the largest atlas is what the player uses of any texture.
constexpr int largest_atlas = 8192;
constexpr std::uintmax_t largest_file = 256U << 20;
constexpr std::size_t bytes_of_texel = 2;

std::uint64_t texel_bytes(int width, int height) {
    return bytes_of_texel * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
}

bool finite(const Glyph& g) {
    for (const float value : {g.width, g.height, g.left, g.bottom, g.right, g.top}) {
        if (!std::isfinite(value)) return false;
    }
    return true;
}

std::vector<char> read_all(std::ifstream& in, const char* file) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error || size > largest_file) return {};
    std::vector<char> bytes(static_cast<std::size_t>(size));
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

}  // namespace

bool GLFont::Create(const char* data, int size, int texture) {
    const bool any = data && size > 0;
    load({data, any ? static_cast<std::size_t>(size) : 0}, {.header_size = 24, .rows_inset = 1},
         texture);
    return true;
}

bool GLFont::Create(const char* file, int texture) {
    if (!file) return false;
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    load(read_all(in, file), {.header_size = 32, .rows_inset = 0}, texture);
    return true;
}

void GLFont::load(std::span<const char> bytes, Form form, int texture) {
    Destroy();
    texture_ = texture;
    if (!read_header(bytes, form) ||
        !read_table(bytes.subspan(form.header_size), form.rows_inset)) {
        width_ = height_ = first_ = last_ = 0;
        return;
    }
    if (texture_ > 0) {
        upload(bytes.data() + form.header_size + glyphs_.size() * sizeof(Glyph));
    }
}

bool GLFont::read_header(std::span<const char> bytes, Form form) {
    if (bytes.size() < form.header_size) return false;
    std::int32_t header[5];
    std::memcpy(header, bytes.data(), sizeof header);
    width_ = header[1];
    height_ = header[2];
    first_ = header[3];
    last_ = header[4];
    const auto good_size = [](int size) { return size > 0 && size <= largest_atlas; };
    return good_size(width_) && good_size(height_) && first_ <= last_;
}

bool GLFont::read_table(std::span<const char> bytes, int rows_inset) {
    const auto count = static_cast<std::uint64_t>(std::int64_t{last_} - first_ + 1);
    if (count * sizeof(Glyph) + texel_bytes(width_, height_) > bytes.size()) return false;
    const auto inset = static_cast<float>(rows_inset) / static_cast<float>(height_);
    std::vector<Glyph> glyphs(static_cast<std::size_t>(count));
    std::memcpy(glyphs.data(), bytes.data(), glyphs.size() * sizeof(Glyph));
    for (Glyph& glyph : glyphs) {
        // The file has the top first. A row less above and below keeps the neighbours out.
        std::swap(glyph.bottom, glyph.top);
        glyph.bottom -= inset;
        glyph.top += inset;
        if (!finite(glyph)) return false;
    }
    glyphs_ = std::move(glyphs);
    return true;
}

void GLFont::upload(const char* texels) const {
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture_));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, 2, width_, height_, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE,
                 texels);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

}  // namespace glfont
