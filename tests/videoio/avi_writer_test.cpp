// SPDX-License-Identifier: MIT
#include "videoio/avi_writer.h"

#include "videoio/avi_bytes.h"
#include "videoio/video_fixture.h"

#include <type_traits>

namespace {

long number_at(const Bytes& bytes, std::size_t position, int width = 4) {
    long value = 0;
    for (int i = width - 1; i >= 0; --i)
        value = value << 8 | bytes.at(position + static_cast<std::size_t>(i));
    return value;
}

std::size_t find_code(const Bytes& bytes, const std::string& code) {
    const std::string text(bytes.begin(), bytes.end());
    return text.find(code);
}

class AviWriterTest : public ::testing::Test {
  protected:
    FILE* make() const { return std::fopen(path_.c_str(), "wb"); }

    std::vector<Bytes> write(int width, int height, float fps, unsigned count) const {
        std::vector<Bytes> frames;
        AviWriter writer(make(), width, height, fps);
        for (unsigned i = 0; i < count; ++i) {
            frames.push_back(noise(static_cast<std::size_t>(width * height * 3), i));
            writer.AppendFrame(frames.back().data(), width, height, width * 3, 3);
            EXPECT_EQ(writer.GetFileSize(), size_of(i + 1, width, height));
        }
        EXPECT_TRUE(writer.Close());
        return frames;
    }
    static std::int64_t size_of(std::size_t frames, int width, int height) {
        const std::vector<Bytes> empty(frames, Bytes(static_cast<std::size_t>(width * height * 3)));
        return static_cast<std::int64_t>(avi_bytes(empty, width, height, 25.0F).size());
    }
    Bytes written() const { return file_bytes(path_); }

    const TemporaryFolder folder_;
    const std::string path_ = folder_.path("film.avi");
};

static_assert(std::has_virtual_destructor_v<AviWriter>);

TEST_F(AviWriterTest, FilesAreWhatTheirLayoutSays) {
    for (int width = 1; width <= 17; ++width) {
        for (const int height : {1, 2, 5}) {
            const std::vector<Bytes> frames = write(width, height, 25.0F, 3);
            EXPECT_EQ(written(), avi_bytes(frames, width, height, 25.0F)) << width << "x" << height;
        }
    }
}

TEST_F(AviWriterTest, LargeFramesAreConvertedInPieces) {
    const std::vector<Bytes> frames = write(1021, 211, 29.97F, 2);
    EXPECT_EQ(written(), avi_bytes(frames, 1021, 211, 29.97F));
}

TEST_F(AviWriterTest, RowsWiderThanAPiece) {
    const std::vector<Bytes> frames = write(65536, 2, 25.0F, 1);
    EXPECT_EQ(written(), avi_bytes(frames, 65536, 2, 25.0F));
}

TEST_F(AviWriterTest, WithoutFrames) {
    write(16, 8, 25.0F, 0);
    const Bytes file = written();
    EXPECT_EQ(file, avi_bytes({}, 16, 8, 25.0F));
    const std::size_t movi = find_code(file, "movi");
    EXPECT_EQ(number_at(file, movi - 4), 4) << "the type alone";
    EXPECT_EQ(number_at(file, find_code(file, "idx1") + 4), 0);
    EXPECT_EQ(number_at(file, 32 + 16), 0) << "total frames";
}

TEST_F(AviWriterTest, RowsAreMultiplesOfFourBytes) {
    for (const auto& [width, bytes] : {std::pair{3, 12L}, {4, 12L}}) {
        write(width, 1, 25.0F, 1);
        const Bytes file = written();
        EXPECT_EQ(number_at(file, find_code(file, "00db") + 4), bytes) << width;
    }
}

TEST_F(AviWriterTest, IndexCountsFromTheListType) {
    write(2, 2, 25.0F, 2);
    const Bytes file = written();
    const std::size_t index = find_code(file, "idx1");
    EXPECT_EQ(number_at(file, index + 4), 32);
    EXPECT_EQ(number_at(file, index + 8 + 4), 16) << "key frame";
    EXPECT_EQ(number_at(file, index + 8 + 8), 4);
    EXPECT_EQ(number_at(file, index + 8 + 12), 16);
    EXPECT_EQ(number_at(file, index + 24 + 8), 4 + 8 + 16);
}

TEST_F(AviWriterTest, RatesAndCounts) {
    write(2, 2, 25.0F, 100);
    const Bytes file = written();
    const std::size_t main = find_code(file, "avih") + 8;
    const std::size_t stream = find_code(file, "strh") + 8;
    EXPECT_EQ(number_at(file, main), 40000);
    EXPECT_EQ(number_at(file, main + 16), 100);
    EXPECT_EQ(number_at(file, stream + 20), 1000) << "scale";
    EXPECT_EQ(number_at(file, stream + 24), 25000) << "rate";
    EXPECT_EQ(number_at(file, stream + 32), 2500000) << "the count times the rate";
}

TEST_F(AviWriterTest, NumbersThatDoNotFitAreTheLargest) {
    write(2, 2, 1e9F, 3);
    Bytes file = written();
    const std::size_t main = find_code(file, "avih") + 8;
    const std::size_t stream = find_code(file, "strh") + 8;
    EXPECT_EQ(number_at(file, main), 0);
    EXPECT_EQ(number_at(file, stream + 24), 0x7FFFFFFF);
    EXPECT_EQ(number_at(file, stream + 32), 0x7FFFFFFF);
    write(2, 2, 1e-9F, 3);
    file = written();
    EXPECT_EQ(number_at(file, main), 0x7FFFFFFF);
    EXPECT_EQ(number_at(file, stream + 24), 0);
    write(2, 2, 0.0F, 1);
    EXPECT_EQ(number_at(written(), main), 0x7FFFFFFF);
}

TEST_F(AviWriterTest, ClosingTwiceIsHarmless) {
    {
        AviWriter writer(make(), 2, 2, 25.0F);
        EXPECT_EQ(writer.GetWidth(), 2);
        EXPECT_EQ(writer.GetHeight(), 2);
        EXPECT_TRUE(writer.Close());
        EXPECT_TRUE(writer.Close());
        Bytes frame(12);
        writer.AppendFrame(frame.data(), 2, 2, 6, 3);
    }
    EXPECT_EQ(written(), avi_bytes({}, 2, 2, 25.0F));
}

TEST_F(AviWriterTest, ClosesWhenItGoes) {
    Bytes frame = noise(12, 1);
    {
        AviWriter writer(make(), 2, 2, 25.0F);
        writer.AppendFrame(frame.data(), 2, 2, 6, 3);
    }
    EXPECT_EQ(written(), avi_bytes({frame}, 2, 2, 25.0F));
}

TEST_F(AviWriterTest, StridesAreTheCallers) {
    constexpr int width = 3;
    constexpr int height = 2;
    constexpr int pixel_stride = 4;
    constexpr int row_stride = 20;
    Bytes spread = noise(row_stride * height, 7);
    Bytes packed;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < 3; ++c)
                packed.push_back(
                    spread[static_cast<std::size_t>(y * row_stride + x * pixel_stride + c)]);
        }
    }
    {
        AviWriter writer(make(), width, height, 25.0F);
        writer.AppendFrame(spread.data(), 999, height, row_stride, pixel_stride);
    }
    EXPECT_EQ(written(), avi_bytes({packed}, width, height, 25.0F))
        << "the width given is not used";
}

TEST_F(AviWriterTest, TellsWhenTheDiskIsFull) {
    AviWriter writer(std::fopen("/dev/full", "wb"), 64, 64, 25.0F);
    Bytes frame(64 * 64 * 3);
    writer.AppendFrame(frame.data(), 64, 64, 64 * 3, 3);
    EXPECT_FALSE(writer.Close());
}

}  // namespace
