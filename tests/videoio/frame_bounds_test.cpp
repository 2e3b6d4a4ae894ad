// SPDX-License-Identifier: MIT
// Writing looks at no byte but those of the frame, whatever lies around it.

#include "videoio/video_fixture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <tuple>

namespace {

/// A frame between two pages that nobody may read; it ends, or begins, right there.
class GuardedFrame {
  public:
    enum class Touches { end, start };

    GuardedFrame(const Bytes& frame, Touches side) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t inside = (frame.size() + page - 1) / page * page;
        bytes_ = inside + 2 * page;
        void* made =
            mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (made == MAP_FAILED) return;
        start_ = static_cast<std::uint8_t*>(made);
        data_ = start_ + page + (side == Touches::end ? inside - frame.size() : 0);
        std::copy(frame.begin(), frame.end(), data_);
        mprotect(start_, page, PROT_NONE);
        mprotect(start_ + page + inside, page, PROT_NONE);
    }
    ~GuardedFrame() {
        if (start_) munmap(start_, bytes_);
    }
    GuardedFrame(const GuardedFrame&) = delete;
    GuardedFrame& operator=(const GuardedFrame&) = delete;

    const std::uint8_t* data() const { return data_; }

  private:
    std::uint8_t* start_ = nullptr;
    std::uint8_t* data_ = nullptr;
    std::size_t bytes_ = 0;
};

class FrameBounds : public ::testing::TestWithParam<std::tuple<const char*, int, bool>> {
  protected:
    // A film with the picture as its frames.
    void write(int width, int height) const {
        const auto& [codec, bits, scaled] = GetParam();
        VYX_SaveVideoArgs args =
            save_args(folder_.path("film"), codec, scaled ? 48 : width, scaled ? 20 : height);
        args.bits_per_color = bits;
        const Bytes picture = noise(static_cast<std::size_t>(width * height * 3 * bits / 8), 1);
        WrittenFilm film(args);
        film.write.frame_width = width;
        film.write.frame_height = height;
        for (const auto side : {GuardedFrame::Touches::end, GuardedFrame::Touches::start}) {
            const GuardedFrame frame(picture, side);
            ASSERT_NE(frame.data(), nullptr);
            film.write.data = frame.data();
            EXPECT_EQ(write_frame(&film.write), 0) << width << ": " << film.write.errorMsg;
        }
    }

    const TemporaryFolder folder_;
};

TEST_P(FrameBounds, NothingBehindThemIsRead) {
    for (int width = 2; width <= 70; ++width)
        write(width, 6);
    write(853, 5);
}

std::string bounds_name(const ::testing::TestParamInfo<FrameBounds::ParamType>& info) {
    const auto& [codec, bits, scaled] = info.param;
    return codec + std::to_string(bits) + (scaled ? "scaled" : "");
}

INSTANTIATE_TEST_SUITE_P(Codecs, FrameBounds,
                         ::testing::Combine(::testing::Values("mpeg4", "apng"),
                                            ::testing::Values(8, 16), ::testing::Bool()),
                         bounds_name);
INSTANTIATE_TEST_SUITE_P(Uncompressed, FrameBounds, ::testing::Values(std::tuple("avi", 8, false)),
                         bounds_name);

// The last column of an odd width has no neighbour to share its colour with: not the first one of
// the next row either.
TEST(FrameEdges, OddWidthsKeepTheColourOfTheirLastColumn) {
    constexpr std::size_t width = 33;
    constexpr std::size_t height = 16;
    const TemporaryFolder folder;
    Bytes picture;
    for (std::size_t i = 0; i < width * height; ++i) {
        if (i % width < 8) {
            picture.insert(picture.end(), {0, 0, 255});
        } else {
            picture.insert(picture.end(), {200, 40, 40});
        }
    }
    {
        VYX_SaveVideoArgs args = save_args(folder.path("film.avi"), "mpeg4", width, height);
        WrittenFilm film(args);
        EXPECT_EQ(film.frame(picture, 0.0), 0);
    }
    const Bytes read = decoded_by_ffmpeg(folder.path("film.avi"), "rgb24");
    ASSERT_EQ(read.size(), picture.size());
    // Measured: 2; 24 when the next row's blue is mixed in.
    for (std::size_t y = 0; y < height; ++y) {
        const std::size_t last = (y * width + width - 1) * 3;
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_NEAR(read[last + c], picture[last + c], 6) << "row " << y << " colour " << c;
    }
}

}  // namespace
