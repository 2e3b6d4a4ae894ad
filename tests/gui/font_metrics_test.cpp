// SPDX-License-Identifier: MIT
// Loading and measuring, without a GL context.

#include "gui/gl_font.h"
#include "platform/resources.h"

#include "gui/font_bytes.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <memory>

namespace {

using glfont::GLFont;
using glfont::Glyph;
using Size = std::pair<int, int>;

constexpr int no_texture = 0;

// From a block of exactly that many bytes, so that reading beyond it is caught.
void load(GLFont& font, const std::vector<char>& bytes) {
    const std::unique_ptr<char[]> copy(new char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), copy.get());
    EXPECT_TRUE(font.Create(copy.get(), static_cast<int>(bytes.size()), no_texture));
}

// Written to a file and read back.
void load_file(GLFont& font, const std::vector<char>& bytes) {
    const TemporaryFolder folder;
    const std::string file = folder.path("font.glf");
    std::ofstream(file, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(font.Create(file.c_str(), no_texture));
}

Size string_size(const GLFont& font, const std::string& text) {
    Size size;
    Size of_bytes;
    font.GetStringSize(text, &size);
    font.GetStringSize(text.c_str(), &of_bytes);
    EXPECT_EQ(size, of_bytes) << "both forms";
    return size;
}

void expect_empty(const GLFont& font, const char* what) {
    Size size(9, 9);
    font.GetTexSize(&size);
    EXPECT_EQ(size, Size(0, 0)) << what;
    for (const int c : {-1, 0, 32, 65, 127, 255}) {
        EXPECT_EQ(font.find(c), nullptr) << what;
        font.GetCharSize(c, &size);
        EXPECT_EQ(size, Size(0, 0)) << what;
    }
    EXPECT_EQ(string_size(font, "ABC\n"), Size(0, 0)) << what;
    font.DrawString("ABC\n", 0, 0);  // calls no GL, of which there is none here
}

void load_default(GLFont& font) {
    const unsigned char* data = nullptr;
    int size = 0;
    load_resource("GLF", "DEFAULT", &data, &size);
    font.Create(reinterpret_cast<const char*>(data), size, no_texture);
}

TEST(Font, StartsEmpty) {
    const GLFont font;
    expect_empty(font, "new");
    Size interval(9, 9);
    font.GetCharInterval(&interval);
    EXPECT_EQ(interval, Size(0, 0));
}

TEST(Font, HeaderAndSizes) {
    FontBytes made;
    made.records[1].width = 0.49F;
    made.records[1].height = 0.99F;
    GLFont font;
    load(font, made.bytes());
    Size size;
    font.GetTexSize(&size);
    EXPECT_EQ(size, Size(8, 4));
    EXPECT_EQ(font.GetTexWidth(), 8);
    EXPECT_EQ(font.GetTexHeight(), 4);
    font.GetCharInterval(&size);
    EXPECT_EQ(size, Size(65, 67));
    EXPECT_EQ(font.GetStartChar(), 65);
    EXPECT_EQ(font.GetEndChar(), 67);
    font.GetCharSize('A', &size);
    EXPECT_EQ(size, Size(2, 2));
    font.GetCharSize('B', &size);
    EXPECT_EQ(size, Size(3, 3)) << "3.92 and 3.96 are truncated";
    EXPECT_EQ(font.GetCharWidth('B'), 3);
    EXPECT_EQ(font.GetCharHeight('B'), 3);
    for (const int outside : {64, 68, -1, 65 + 256, std::numeric_limits<int>::min()}) {
        font.GetCharSize(outside, &size);
        EXPECT_EQ(size, Size(0, 0)) << outside;
    }
}

TEST(Font, MemoryAndFileDifferInTwoWays) {
    FontBytes made;
    made.records[2] = {0.25F, 0.5F, 0.125F, 0.25F, 0.375F, 0.75F};
    GLFont memory;
    load(memory, made.bytes(24));
    GLFont file;
    load_file(file, made.bytes(32));
    const Glyph* inset = memory.find('C');
    const Glyph* plain = file.find('C');
    ASSERT_NE(inset, nullptr);
    ASSERT_NE(plain, nullptr);
    for (const Glyph* glyph : {inset, plain}) {
        EXPECT_EQ(glyph->width, 0.25F);
        EXPECT_EQ(glyph->height, 0.5F);
        EXPECT_EQ(glyph->left, 0.125F);
        EXPECT_EQ(glyph->right, 0.375F);
    }
    EXPECT_EQ(inset->bottom, 0.75F - 0.25F) << "a row of four less";
    EXPECT_EQ(inset->top, 0.25F + 0.25F);
    EXPECT_EQ(plain->bottom, 0.75F);
    EXPECT_EQ(plain->top, 0.25F);
}

TEST(Font, AFileThatCannotBeOpenedIsReported) {
    const TemporaryFolder folder;
    GLFont font;
    EXPECT_FALSE(font.Create(folder.path("none.glf").c_str(), no_texture));
    EXPECT_FALSE(font.Create(nullptr, no_texture));
    EXPECT_TRUE(font.Create(folder.path("").c_str(), no_texture)) << "a folder opens";
    expect_empty(font, "folder");
}

TEST(Font, ShortDataGivesAnEmptyFont) {
    const std::vector<char> in_memory = FontBytes().bytes(24);
    const std::vector<char> in_file = FontBytes().bytes(32);
    GLFont font;
    for (std::size_t length = 0; length < in_memory.size(); ++length) {
        load(font, FontBytes().bytes());
        ASSERT_EQ(font.GetCharWidth('A'), 2);
        load(font, {in_memory.begin(), in_memory.begin() + static_cast<long>(length)});
        expect_empty(font, std::to_string(length).c_str());
    }
    for (std::size_t length = 0; length < in_file.size(); length += 3) {
        load_file(font, {in_file.begin(), in_file.begin() + static_cast<long>(length)});
        expect_empty(font, std::to_string(length).c_str());
    }
    load_file(font, {in_file.begin(), in_file.end() - 1});
    expect_empty(font, "one byte");
    std::vector<char> longer = in_memory;
    longer.resize(longer.size() + 100);
    load(font, longer);
    EXPECT_EQ(font.GetCharWidth('A'), 2) << "more is no harm";
}

TEST(Font, NoDataGivesAnEmptyFont) {
    GLFont font;
    const char byte = 0;
    load(font, FontBytes().bytes());
    EXPECT_TRUE(font.Create(nullptr, 100, no_texture));
    expect_empty(font, "null");
    for (const int size : {0, -1, std::numeric_limits<int>::min()}) {
        load(font, FontBytes().bytes());
        EXPECT_TRUE(font.Create(&byte, size, no_texture));
        expect_empty(font, "size");
    }
}

TEST(Font, ImpossibleHeadersGiveAnEmptyFont) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    struct Case {
        const char* what;
        int width, height, first, last;
    };
    const Case cases[] = {
        {"no width", 0, 4, 65, 67},
        {"no height", 8, 0, 65, 67},
        {"negative width", -8, 4, 65, 67},
        {"both negative", -8, -4, 65, 67},
        {"least sizes", least, least, 65, 67},
        {"most sizes", most, most, 65, 67},
        {"product of 2^32", 65536, 65536, 65, 67},
        {"too wide", 16385, 1, 65, 67},
        {"reversed", 8, 4, 67, 65},
        {"a little reversed", 8, 4, 67, 66},
        {"all codes", 8, 4, least, most},
        {"count of 2^31", 8, 4, 0, most},
        {"difference overflows", 8, 4, most, least},
        {"one too many", 8, 4, 65, 68},
    };
    for (const Case& c : cases) {
        FontBytes made;
        made.width = c.width;
        made.height = c.height;
        made.first = c.first;
        made.last = c.last;
        GLFont font;
        load(font, FontBytes().bytes());
        load(font, made.bytes());
        expect_empty(font, c.what);
        load_file(font, made.bytes(32));
        expect_empty(font, c.what);
    }
}

TEST(Font, RecordsThatAreNoNumbersGiveAnEmptyFont) {
    for (const float bad :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        for (const auto field :
             {&FontBytes::Record::width, &FontBytes::Record::height, &FontBytes::Record::left,
              &FontBytes::Record::top, &FontBytes::Record::right, &FontBytes::Record::bottom}) {
            FontBytes made;
            made.records[1].*field = bad;
            GLFont font;
            load(font, made.bytes());
            expect_empty(font, "not finite");
        }
    }
}

TEST(Font, SizesBeyondIntegersAreDefined) {
    FontBytes made;
    made.records[0].width = 1e30F;
    made.records[1].width = 3e38F;
    made.records[2].width = -3e38F;
    made.records[0].height = 3e38F;
    GLFont font;
    load(font, made.bytes());
    EXPECT_EQ(font.GetCharWidth('A'), 1000000000);
    EXPECT_EQ(font.GetCharWidth('B'), 1000000000);
    EXPECT_EQ(font.GetCharWidth('C'), -1000000000);
    EXPECT_EQ(string_size(font, "AB"), Size(1000000000, 1000000000));
    EXPECT_EQ(string_size(font, "BC").first, 0) << "infinity less infinity";
}

TEST(Font, WidthsAreTruncatedOnce) {
    FontBytes made;
    for (auto& record : made.records)
        record.width = 1.75F / 8;
    GLFont font;
    load(font, made.bytes());
    EXPECT_EQ(font.GetCharWidth('A'), 1);
    EXPECT_EQ(string_size(font, "ABCA").first, 7);
    EXPECT_EQ(string_size(font, "ABC").first, 5);
}

TEST(Font, CharactersItDoesNotHaveAddNothing) {
    GLFont font;
    load(font, FontBytes().bytes());
    EXPECT_EQ(string_size(font, "").first, 0);
    EXPECT_EQ(string_size(font, "A B\tC\nd").first, 6);
    Size size(9, 9);
    font.GetStringSize(std::string("A\0B", 3), &size);
    EXPECT_EQ(size.first, 4) << "a string goes on behind a zero";
    font.GetStringSize(static_cast<const char*>(nullptr), &size);
    EXPECT_EQ(size, Size(0, font.GetCharHeight('A')));
}

TEST(Font, TheHeightIsThatOfOneCertainRecord) {
    FontBytes made;
    made.first = 1;
    made.last = 3;
    made.records[0].height = 0.25F;
    made.records[1].height = 0.5F;
    made.records[2].height = 0.75F;
    GLFont font;
    load(font, made.bytes());
    EXPECT_EQ(string_size(font, "\1").second, 2) << "the record at index 1, code 2";
    EXPECT_EQ(string_size(font, "").second, 2);
    EXPECT_EQ(string_size(font, "\1\n\1\n").second, 2) << "of one line";
    for (const int first : {65, -1}) {
        made.first = first;
        made.last = first + 2;
        load(font, made.bytes());
        EXPECT_EQ(string_size(font, "A").second, 1) << "the first one's, where there is no such";
    }
}

TEST(Font, BytesFrom128OnAreCodesOfTheirOwn) {
    FontBytes made;
    made.first = 200;
    made.last = 202;
    GLFont font;
    load(font, made.bytes());
    EXPECT_EQ(string_size(font, "\xC8\xC9").first, 4);
    EXPECT_EQ(string_size(font, "\xC7\xCB").first, 0);
    GLFont usual;
    load_default(usual);
    EXPECT_EQ(string_size(usual, "a\xC3\xA4z"), string_size(usual, "az")) << "no text of UTF-8";
}

TEST(Font, DestroyForgetsTheTable) {
    GLFont font;
    load(font, FontBytes().bytes());
    font.Destroy();
    EXPECT_EQ(font.find('A'), nullptr);
    EXPECT_EQ(string_size(font, "A"), Size(0, 0));
    font.Destroy();
    load(font, FontBytes().bytes());
    EXPECT_EQ(font.GetCharWidth('A'), 2) << "it can be loaded again";
}

TEST(DefaultFont, HasTheAsciiCharacters) {
    GLFont font;
    load_default(font);
    Size size;
    font.GetTexSize(&size);
    EXPECT_EQ(size, Size(256, 256));
    font.GetCharInterval(&size);
    EXPECT_EQ(size, Size(32, 127));
    for (const int outside : {31, 128}) {
        EXPECT_EQ(font.GetCharWidth(outside), 0);
        font.GetCharSize(outside, &size);
        EXPECT_EQ(size, Size(0, 0));
    }
    EXPECT_GT(font.GetCharWidth(' '), 0);
}

TEST(DefaultFont, LinesDoNotCountInSizes) {
    GLFont font;
    load_default(font);
    const int widths = font.GetCharWidth('a') + font.GetCharWidth('b') + font.GetCharWidth('c') +
                       font.GetCharWidth('d');
    EXPECT_EQ(string_size(font, "ab\ncd"), Size(widths, font.GetCharHeight('a')));
}

// What the tool that makes the font promises.
TEST(DefaultFont, GlyphsLieApartInTheAtlas) {
    const unsigned char* data = nullptr;
    int size = 0;
    load_resource("GLF", "DEFAULT", &data, &size);
    ASSERT_EQ(size, 133400);
    constexpr int side = 256;
    const unsigned char* texels = data + 24 + 96 * 24;
    GLFont font;
    load_default(font);
    std::vector<int> owner(side * side, 0);
    int widths = 0;
    for (int c = 32; c <= 127; ++c) {
        const Glyph& glyph = *font.find(c);
        const auto whole = [&](float place) {
            EXPECT_EQ(place * side, std::floor(place * side)) << c;
            return static_cast<int>(place * side);
        };
        const int x = whole(glyph.left);
        const int y = whole(glyph.top);
        const int w = whole(glyph.width);
        const int h = whole(glyph.height);
        EXPECT_EQ(whole(glyph.right) - x, w) << c << ": a texel is a pixel at scale 1";
        EXPECT_EQ(whole(glyph.bottom) - y, h) << c;
        EXPECT_EQ(h, 30) << c;
        EXPECT_EQ(w % 2, 0) << c << ": stays on pixels at half size";
        ASSERT_TRUE(x >= 1 && y >= 1 && x + w < side && y + h < side) << c;
        widths += w;
        bool ink = false;
        for (int j = y; j < y + h; ++j) {
            for (int i = x; i < x + w; ++i) {
                EXPECT_EQ(owner[static_cast<std::size_t>(j * side + i)], 0) << c;
                owner[static_cast<std::size_t>(j * side + i)] = c;
                ink |= texels[2 * (j * side + i)] > 0;
            }
        }
        EXPECT_EQ(ink, c != 32) << c;
    }
    EXPECT_LE(widths / 96.0, 13.5);  // measured 13.40
    for (int i = 0; i < side * side; ++i) {
        EXPECT_EQ(texels[2 * i], texels[2 * i + 1]) << "luminance and alpha";
        if (owner[static_cast<std::size_t>(i)] == 0) {
            EXPECT_EQ(texels[2 * i], 0) << "between glyphs";
        }
    }
    for (int c = 33; c <= 127; ++c) {
        const Glyph& glyph = *font.find(c);
        const int x = static_cast<int>(glyph.left * side);
        const int w = static_cast<int>(glyph.width * side);
        for (const float row : {glyph.top * side - 1, glyph.bottom * side}) {
            for (int i = x - 1; i <= x + w; ++i)
                EXPECT_EQ(owner[static_cast<std::size_t>(static_cast<int>(row) * side + i)], 0)
                    << c << ": a blank row above and below";
        }
        for (int j = 0; j < 30; ++j) {
            const int at = (static_cast<int>(glyph.top * side) + j) * side;
            EXPECT_EQ(owner[static_cast<std::size_t>(at + x - 1)], 0) << c << ": blank columns";
            EXPECT_EQ(owner[static_cast<std::size_t>(at + x + w)], 0) << c;
        }
    }
}

}  // namespace
