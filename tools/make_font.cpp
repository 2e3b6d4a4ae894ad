// SPDX-License-Identifier: MIT
// make_font FACE.ttf OUTPUT.glf: rasterises the printable ASCII characters of a face into the
// font format of the player.
//
// Most text appears at half size, so that is what the outlines are hinted for; they are drawn at
// twice the size. Advances, ascent and descent are even: text that starts on a pixel keeps its
// glyphs on pixels at full and at half size, and linear filtering then averages exact squares of
// four texels.

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int atlas_width = 256;
constexpr int atlas_height = 256;
constexpr int first_code = 32;
constexpr int last_code = 127;
constexpr int em_at_half_size = 12;
// In 64ths of a pixel at half size: stems that fall between pixels keep their brightness.
constexpr FT_Pos heavier_stems = 20;
// Capitals are 18 texels high: their middle is the middle of the line.
constexpr int ascent = 24;
constexpr int descent = 6;
constexpr int line_height = ascent + descent;

// Luminance and alpha both multiply the colour where text is blended over black, so that a texel
// counts by its square.
std::uint8_t texel_of(std::uint8_t coverage) {
    return static_cast<std::uint8_t>(std::lround(std::sqrt(coverage / 255.0) * 255.0));
}

void require(bool done, const char* what) {
    if (!done) throw std::runtime_error(what);
}

class Face {
  public:
    explicit Face(const char* file) {
        require(FT_Init_FreeType(&library_) == 0, "FreeType does not start");
        require(FT_New_Face(library_, file, 0, &face_) == 0, "the face cannot be read");
        require(FT_Set_Pixel_Sizes(face_, 0, em_at_half_size) == 0, "the face has no such size");
    }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;
    ~Face() { FT_Done_FreeType(library_); }

    /// Hinted for half size, rasterised at full size. Valid until the next call.
    FT_GlyphSlot rasterise(int code) {
        const auto character = static_cast<FT_ULong>(code);
        require(FT_Load_Char(face_, character, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) == 0,
                "a character cannot be loaded");
        constexpr FT_Fixed two = 2 * 0x10000;
        const FT_Matrix doubled{two, 0, 0, two};
        FT_Outline_EmboldenXY(&face_->glyph->outline, heavier_stems, 0);
        FT_Outline_Transform(&face_->glyph->outline, &doubled);
        require(FT_Render_Glyph(face_->glyph, FT_RENDER_MODE_NORMAL) == 0,
                "a character cannot be drawn");
        return face_->glyph;
    }

  private:
    FT_Library library_ = nullptr;
    FT_Face face_ = nullptr;
};

class Atlas {
  public:
    void add(const FT_GlyphSlotRec& glyph) {
        const FT_Bitmap& bitmap = glyph.bitmap;
        // Ink that leaves the advance on either side gets room.
        const int shift = std::max(0, -glyph.bitmap_left);
        const int left = glyph.bitmap_left + shift;
        const int advance = 2 * static_cast<int>((glyph.advance.x + 32) >> 6);
        const int width = even(std::max(advance, left + static_cast<int>(bitmap.width)));
        place(width);
        for (int y = 0; y < static_cast<int>(bitmap.rows); ++y) {
            for (int x = 0; x < static_cast<int>(bitmap.width); ++x)
                set(x_ + left + x, y_ + ascent - glyph.bitmap_top + y,
                    bitmap.buffer[y * bitmap.pitch + x]);
        }
        record(width);
        x_ += width + 1;
        widths_ += width;
    }

    void write(const char* file) const {
        std::ofstream out(file, std::ios::binary);
        const auto put = [&](const auto* data, std::size_t count) {
            out.write(reinterpret_cast<const char*>(data),
                      static_cast<std::streamsize>(count * sizeof *data));
        };
        const std::array<std::int32_t, 6> header{0,          atlas_width, atlas_height,
                                                 first_code, last_code,   0};
        put(header.data(), header.size());
        put(records_.data(), records_.size());
        put(texels_.data(), texels_.size());
        out.close();
        require(!out.fail(), "the font cannot be written");
    }

    void report() const {
        std::printf("%d glyphs of %d texels, %d rows, average advance %.2f\n",
                    last_code - first_code + 1, line_height, (y_ + line_height) / row_pitch,
                    static_cast<double>(widths_) / (last_code - first_code + 1));
    }

  private:
    // A blank row above and below, and a blank column between glyphs.
    static constexpr int row_pitch = line_height + 2;

    static int even(int length) { return (length + 1) / 2 * 2; }

    void place(int width) {
        if (x_ + width + 1 > atlas_width) {
            x_ = 1;
            y_ += row_pitch;
        }
        require(y_ + line_height < atlas_height, "the glyphs do not fit");
    }

    void set(int x, int y, std::uint8_t coverage) {
        require(y >= y_ && y < y_ + line_height, "a glyph is higher than a line");
        const auto index = static_cast<std::size_t>(2 * (y * atlas_width + x));
        texels_[index] = texels_[index + 1] = texel_of(coverage);
    }

    // The loader takes one row off above and below.
    void record(int width) {
        const auto s = [](int x) { return static_cast<float>(x) / atlas_width; };
        const auto t = [](int y) { return static_cast<float>(y) / atlas_height; };
        records_.insert(records_.end(), {s(width), t(line_height), s(x_), t(y_ - 1), s(x_ + width),
                                         t(y_ + line_height + 1)});
    }

    int x_ = 1;
    int y_ = 1;
    int widths_ = 0;
    std::vector<float> records_;
    std::array<std::uint8_t, 2 * atlas_width * atlas_height> texels_{};
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("Usage: make_font FACE.ttf OUTPUT.glf\n", stderr);
        return 2;
    }
    try {
        Face face(argv[1]);
        Atlas atlas;
        for (int code = first_code; code <= last_code; ++code)
            atlas.add(*face.rasterise(code));
        atlas.write(argv[2]);
        atlas.report();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_font: %s\n", error.what());
        return 1;
    }
    return 0;
}
