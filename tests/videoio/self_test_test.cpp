// SPDX-License-Identifier: MIT
#include "videoio/video_fixture.h"

#include <sstream>

namespace {

constexpr char offsets[] =
    "videoFileName offset:       4\n"
    "errorMsg offset:            516\n"
    "handle offset:              1032\n"
    "cam_input offset:           1040\n"
    "frame_width offset:         1044\n"
    "frame_height offset:        1048\n"
    "frame_bytes offset:         1052\n"
    "bit_rate offset:            1056\n"
    "duration_sec offset:        1064\n"
    "frame_rate offset:          1072\n"
    "video_bit_rate offset:      1080\n"
    "pixel_aspect_ratio offset:  1088\n"
    "codec_name offset:          1096\n"
    "frame_count offset:         1608\n"
    "bits_per_color offset:      1612\n";

class SelfTest : public ::testing::Test {
  protected:
    std::string run(const std::string& arguments = "", bool fails = false) const {
        return output_of("cd " + folder_.folder().string() + " && " + (fails ? "! " : "") +
                         SELF_TEST_PROGRAM + " " + arguments);
    }
    const TemporaryFolder folder_;
};

TEST_F(SelfTest, TellsOffsetsAndCopiesAFilm) {
    std::filesystem::copy_file(clip("h264_nob.mp4"), folder_.path("selftest.mp4"));
    std::ostringstream expected;
    expected << offsets << std::fixed;
    expected.precision(6);
    for (int i = 0; i < 100; ++i)
        expected << i * 0.04 << "\n";
    expected << "read_and_decode failed: End of file\n";
    EXPECT_EQ(run(), expected.str());
    EXPECT_EQ(
        probed(folder_.path("selftest-copy.avi"), "codec_name,width,height,nb_read_frames", true),
        "mpeg4,320,180,100");
}

TEST_F(SelfTest, TakesOtherFilms) {
    const std::string said = run(clip("ten_bit.mkv") + " copy.avi");
    EXPECT_EQ(said.find(offsets), 0U);
    EXPECT_EQ(probed(folder_.path("copy.avi"), "nb_read_frames", true), "25");
}

TEST_F(SelfTest, WithoutItsFilm) {
    EXPECT_EQ(run("", true),
              std::string(offsets) +
                  "avformat_open_input (selftest.mp4) failed: No such file or directory\n");
}

TEST_F(SelfTest, WithoutAPlaceForTheCopy) {
    EXPECT_EQ(run(clip("h264_nob.mp4") + " /nowhere/copy.avi"),
              std::string(offsets) +
                  "could not open file for writing: No such file or directory!\n0.000000\n"
                  "Handle not set!");
}

}  // namespace
