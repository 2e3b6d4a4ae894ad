// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace glfont {

/// A character's place in the atlas. The extent is a fraction of the atlas.
struct Glyph {
    float width = 0.0F;
    float height = 0.0F;
    float left = 0.0F;
    float bottom = 0.0F;
    float right = 0.0F;
    float top = 0.0F;
};

/// A bitmap font: one texture with all characters, and a table of where each is. Characters are
/// bytes, 0 to 255; text of several lines is separated by newlines.
///
/// Loading with a texture and drawing need the GL context; measuring does not. [main]
///
/// A font file that is too short for what its header announces, has no or too many texels or
/// characters, or holds numbers that are not finite gives an empty font: its sizes are 0, it draws
/// nothing.
class GLFont {
  public:
    GLFont() = default;
    GLFont(const GLFont&) = delete;
    GLFont& operator=(const GLFont&) = delete;
    ~GLFont();

    /// Loads the `size` bytes of a font file and puts its atlas into `texture`, which stays the
    /// caller's. With a texture of 0 or below only the table is loaded: such a font measures and
    /// draws nothing. Always true.
    bool Create(const char* data, int size, int texture);

    /// Loads a file whose header has 32 bytes instead of 24, and leaves its vertical texture
    /// coordinates as they are. False where the file cannot be opened.
    bool Create(const char* file, int texture);

    /// Forgets the table; the font is empty then. The texture stays.
    void Destroy();

    /// Atlas size in texels.
    void GetTexSize(std::pair<int, int>* size) const { *size = {width_, height_}; }
    int GetTexWidth() const { return width_; }
    int GetTexHeight() const { return height_; }

    /// The lowest and the highest character code.
    void GetCharInterval(std::pair<int, int>* interval) const { *interval = {first_, last_}; }
    int GetStartChar() const { return first_; }
    int GetEndChar() const { return last_; }

    /// In texels, which are pixels at scale 1; 0 for characters the font does not have.
    void GetCharSize(int c, std::pair<int, int>* size) const;
    int GetCharWidth(int c) const;
    int GetCharHeight(int c) const;

    /// All characters side by side, newlines or not, and the height of one line: that of the record
    /// at the index of the first character's code (of the first record, where there are fewer).
    void GetStringSize(const char* text, std::pair<int, int>* size) const;
    void GetStringSize(const std::string& text, std::pair<int, int>* size) const;

    /// Around calls of `DrawString`.
    void Begin() const;
    void End() const;

    /// Draws in the current colour. (`x`, `y`) is the left end of the first line's bottom edge;
    /// further lines follow at the unscaled line height.
    void DrawString(const char* text, float x, float y) const;
    void DrawString(const std::string& text, float x, float y) const;
    void DrawString(const char* text, float scale, float x, float y) const;
    void DrawString(const std::string& text, float scale, float x, float y) const;

    /// Null for characters the font does not have.
    const Glyph* find(int c) const;

  private:
    // In which the two kinds of font file differ.
    struct Form {
        std::size_t header_size;
        int rows_inset;
    };

    void load(std::span<const char> bytes, Form form, int texture);
    bool read_header(std::span<const char> bytes, Form form);
    bool read_table(std::span<const char> bytes, int rows_inset);
    void upload(const char* texels) const;
    int line_height() const;
    std::pair<int, int> measure(std::string_view text) const;
    void draw(std::string_view text, float scale, float x, float y) const;

    int texture_ = -1;
    int width_ = 0;
    int height_ = 0;
    int first_ = 0;
    int last_ = 0;
    std::vector<Glyph> glyphs_;
};

}  // namespace glfont

/// The font of all text.
extern glfont::GLFont default_font;

/// Makes a texture for `default_font` and loads the compiled-in font. Needs the GL context. [main]
void create_default_font();
