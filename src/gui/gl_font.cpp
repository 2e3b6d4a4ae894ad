// SPDX-License-Identifier: MIT
#include "gui/gl_font.h"

#include "gpu/gl_context.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>

namespace glfont {

namespace {

// Truncated. Sizes from a broken file are finite, but may be far outside the integers.
int pixels(float size) {
    constexpr float most = 1e9F;
    if (std::isnan(size)) return 0;
    return static_cast<int>(std::clamp(size, -most, most));
}

std::string_view view(const char* text) {
    return text ? std::string_view(text) : std::string_view();
}

// Text is bytes: codes of 128 and above are codes of their own.
int code_of(char c) {
    return static_cast<unsigned char>(c);
}

}  // namespace

GLFont::~GLFont() {
    Destroy();
}

void GLFont::Destroy() {
    glyphs_.clear();
    glyphs_.shrink_to_fit();
}

const Glyph* GLFont::find(int c) const {
    if (glyphs_.empty() || c < first_ || c > last_) return nullptr;
    return &glyphs_[static_cast<std::size_t>(c - first_)];
}

void GLFont::GetCharSize(int c, std::pair<int, int>* size) const {
    *size = {GetCharWidth(c), GetCharHeight(c)};
}

int GLFont::GetCharWidth(int c) const {
    const Glyph* glyph = find(c);
    return glyph ? pixels(glyph->width * static_cast<float>(width_)) : 0;
}

int GLFont::GetCharHeight(int c) const {
    const Glyph* glyph = find(c);
    return glyph ? pixels(glyph->height * static_cast<float>(height_)) : 0;
}

void GLFont::GetStringSize(const char* text, std::pair<int, int>* size) const {
    *size = measure(view(text));
}

void GLFont::GetStringSize(const std::string& text, std::pair<int, int>* size) const {
    *size = measure(text);
}

int GLFont::line_height() const {
    if (glyphs_.empty()) return 0;
    const bool reaches = first_ >= 0 && static_cast<std::size_t>(first_) < glyphs_.size();
    const Glyph& glyph = glyphs_[reaches ? static_cast<std::size_t>(first_) : 0];
    return pixels(glyph.height * static_cast<float>(height_));
}

std::pair<int, int> GLFont::measure(std::string_view text) const {
    float width = 0.0F;
    for (const char c : text) {
        if (const Glyph* glyph = find(code_of(c))) {
            width += glyph->width * static_cast<float>(width_);
        }
    }
    return {pixels(width), line_height()};
}

void GLFont::Begin() const {
    glDisable(GL_TEXTURE_RECTANGLE);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(std::max(texture_, 0)));
    glEnable(GL_BLEND);
    blend_over();
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP);
}

void GLFont::End() const {
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
}

void GLFont::DrawString(const char* text, float x, float y) const {
    draw(view(text), 1.0F, x, y);
}

void GLFont::DrawString(const std::string& text, float x, float y) const {
    draw(text, 1.0F, x, y);
}

void GLFont::DrawString(const char* text, float scale, float x, float y) const {
    draw(view(text), scale, x, y);
}

void GLFont::DrawString(const std::string& text, float scale, float x, float y) const {
    draw(text, scale, x, y);
}

void GLFont::draw(std::string_view text, float scale, float x, float y) const {
    if (glyphs_.empty() || texture_ <= 0) return;
    const auto atlas_width = static_cast<float>(width_);
    const auto atlas_height = static_cast<float>(height_);
    const float start = x;
    glBegin(GL_QUADS);
    for (const char c : text) {
        const Glyph* glyph = find(code_of(c));
        if (!glyph) {
            if (c != '\n') continue;
            y += glyphs_[0].height * atlas_height;
            x = start;
            continue;
        }
        const float w = glyph->width * atlas_width * scale;
        const float h = glyph->height * atlas_height * scale;
        glTexCoord2f(glyph->left, glyph->bottom);
        glVertex3f(x, y, 0.0F);
        glTexCoord2f(glyph->left, glyph->top);
        glVertex3f(x, y - h, 0.0F);
        glTexCoord2f(glyph->right, glyph->top);
        glVertex3f(x + w, y - h, 0.0F);
        glTexCoord2f(glyph->right, glyph->bottom);
        glVertex3f(x + w, y, 0.0F);
        x += w;
    }
    glEnd();
}

}  // namespace glfont
