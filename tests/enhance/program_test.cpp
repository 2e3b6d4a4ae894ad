// SPDX-License-Identifier: MIT
#include "enhance/enhance.h"

#include "enhance/film_fixture.h"

#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace {

using EnhanceProgramTest = FilmTest;

// Numbered pictures as input, result as numbered pictures: nothing on the way may change a bit.
class ExactProgramTest : public FilmTest {
  protected:
    void SetUp() override {
        for (unsigned i = 0; i < 4; ++i)
            pictures_.push_back(noise_picture(45, 27, i));
        write_film(in_, pictures_);
        std::filesystem::create_directory(folder_.folder() / "out");
    }
    Film result() { return read_film(out_); }

    std::vector<RgbPicture> pictures_;
    const std::string in_ = folder_.path("in-%02d.png");
    const std::string out_ = folder_.path("out/%02d.png");
};

TEST_F(ExactProgramTest, DefaultsChangeNothing) {
    ASSERT_EQ(enhance({in_, out_}), 0) << errors_;
    EXPECT_EQ(errors_, "") << "no progress where no terminal is";
    const Film film = result();
    ASSERT_EQ(film.pictures.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(difference(film.pictures[i], pictures_[i]).largest, 0);
}

TEST_F(ExactProgramTest, NeutralSettingsOfEveryKindChangeNothing) {
    ASSERT_EQ(enhance({"--spatial", "1", "--algorithm", "sr", "--sharpen", "0", "--temporal", "1",
                       "--method", "8nb", in_, out_}),
              0)
        << errors_;
    const Film film = result();
    ASSERT_EQ(film.pictures.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(difference(film.pictures[i], pictures_[i]).largest, 0);
}

TEST_F(ExactProgramTest, EveryPictureIsAmongThoseOfATemporalFactor) {
    for (const int T : {2, 3, 5}) {
        ASSERT_EQ(enhance({"--temporal", std::to_string(T), in_, out_}), 0) << errors_;
        const Film film = result();
        ASSERT_EQ(film.pictures.size(), static_cast<std::size_t>(3 * T + 1));
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(
                difference(film.pictures[i * static_cast<std::size_t>(T)], pictures_[i]).largest, 0)
                << "phase 0 of pair " << i << " of " << T;
        }
        // Still pictures have no vectors: what lies between is a cross-fade.
        for (std::size_t k = 0; k < pictures_[0].bytes.size(); k += 97) {
            const double expected =
                pictures_[0].bytes[k] + (pictures_[1].bytes[k] - pictures_[0].bytes[k]) / double(T);
            EXPECT_NEAR(film.pictures[1].bytes[k], expected, 1.0);
        }
        std::filesystem::remove_all(folder_.folder() / "out");
        std::filesystem::create_directory(folder_.folder() / "out");
    }
}

TEST_F(ExactProgramTest, OnePictureIsOnePicture) {
    for (const char* T : {"1", "4"}) {
        ASSERT_EQ(enhance({"--frames", "1", "--temporal", T, in_, out_}), 0) << errors_;
        const Film film = result();
        ASSERT_EQ(film.pictures.size(), 1U);
        EXPECT_EQ(difference(film.pictures[0], pictures_[0]).largest, 0);
    }
}

TEST_F(ExactProgramTest, FramesCountPicturesOfTheInput) {
    ASSERT_EQ(enhance({"--frames", "3", in_, out_}), 0);
    EXPECT_EQ(result().pictures.size(), 3U);
    ASSERT_EQ(enhance({"--frames", "100", in_, out_}), 0);
    EXPECT_EQ(result().pictures.size(), 4U);
}

TEST_F(ExactProgramTest, SpatialFactorsEnlarge) {
    for (const int f : {2, 3, 4}) {
        ASSERT_EQ(enhance({"--spatial", std::to_string(f), "--frames", "1", in_, out_}), 0);
        const RgbPicture picture = result().pictures.at(0);
        EXPECT_EQ(picture.width, 45 * f);
        EXPECT_EQ(picture.height, 27 * f);
    }
}

TEST_F(ExactProgramTest, DemoLeavesTheLeftHalf) {
    ASSERT_EQ(enhance({"--demo", "--sharpen", "100", "--frames", "1", in_, out_}), 0);
    const RgbPicture picture = result().pictures.at(0);
    const auto at = [&](const RgbPicture& p, int x, int y, int c) {
        return int{p.bytes[static_cast<std::size_t>(y) * p.row_bytes() +
                           static_cast<std::size_t>(x) * 3 + static_cast<std::size_t>(c)]};
    };
    int changed = 0;
    for (int y = 0; y < 27; ++y) {
        EXPECT_EQ(at(picture, 22, y, 0), 255);
        EXPECT_EQ(at(picture, 22, y, 1), 0);
        for (int x = 0; x < 22; ++x)
            EXPECT_EQ(at(picture, x, y, 1), at(pictures_[0], x, y, 1)) << x << "," << y;
        for (int x = 23; x < 45; ++x)
            changed += at(picture, x, y, 1) != at(pictures_[0], x, y, 1) ? 1 : 0;
    }
    EXPECT_GT(changed, 27 * 22 / 2);
}

TEST_F(EnhanceProgramTest, FilmKeepsItsLengthAndGetsMorePictures) {
    const std::string out = folder_.path("out.mkv");
    ASSERT_EQ(enhance({"--temporal", "4", "--spatial", "2", TEST_DATA "/dog-64x48.avi", out}), 0)
        << errors_;
    const Film film = read_film(out);
    ASSERT_EQ(film.pictures.size(), 17U);
    EXPECT_EQ(film.pictures[0].width, 128);
    for (std::size_t i = 0; i < film.seconds.size(); ++i)
        EXPECT_NEAR(film.seconds[i], 0.025 * static_cast<double>(i), 0.002);
    EXPECT_EQ(folder_.files(), 1);
}

TEST_F(EnhanceProgramTest, DefaultsKeepAFilm) {
    const std::string out = folder_.path("out.mp4");
    ASSERT_EQ(enhance({TEST_DATA "/dog-64x48.avi", out}), 0) << errors_;
    const Film before = read_film(TEST_DATA "/dog-64x48.avi");
    const Film after = read_film(out);
    ASSERT_EQ(after.pictures.size(), before.pictures.size());
    for (std::size_t i = 0; i < before.pictures.size(); ++i) {
        // Encoded once more (measured 1.7).
        EXPECT_LE(difference(after.pictures[i], before.pictures[i]).mean, 2.5);
        EXPECT_NEAR(after.seconds[i], before.seconds[i], 0.002);
    }
}

TEST_F(EnhanceProgramTest, LastPictureIsSmoothedLikeTheOthers) {
    std::vector<RgbPicture> noisy;
    for (unsigned seed = 0; seed < 4; ++seed) {
        const RgbPicture noise = noise_picture(64, 48, seed);
        noisy.push_back(make_rgb(64, 48, [&noise](int x, int y, int channel) {
            return 120 + noise.bytes[static_cast<std::size_t>((y * 64 + x) * 3 + channel)] % 16;
        }));
    }
    const std::string film = folder_.path("noisy.mpg");
    write_film(film, noisy);
    const std::string plain = folder_.path("plain-%d.png");
    const std::string cleaned = folder_.path("cleaned-%d.png");
    ASSERT_EQ(enhance({film, plain}), 0) << errors_;
    ASSERT_EQ(enhance({"--denoise", "40", film, cleaned}), 0) << errors_;
    const Film before = read_film(plain);
    const Film after = read_film(cleaned);
    ASSERT_EQ(before.pictures.size(), 4U);
    ASSERT_EQ(after.pictures.size(), 4U);
    const double usual = difference(before.pictures[2], after.pictures[2]).mean;
    const double last = difference(before.pictures[3], after.pictures[3]).mean;
    // Measured: 0.585 and 0.594; 1.296 where the last counts as finely coded.
    EXPECT_LT(last, usual + 0.1);
}

TEST_F(EnhanceProgramTest, HelpAndMistakes) {
    EXPECT_EQ(enhance({"--help"}), 0);
    EXPECT_EQ(output_.find("usage: vyx-enhance [options] INPUT OUTPUT"), 0U);
    EXPECT_EQ(errors_, "");
    EXPECT_EQ(enhance({}), 1);
    EXPECT_EQ(errors_, "vyx-enhance: INPUT and OUTPUT must be given; --help explains\n");
    EXPECT_EQ(enhance({"not there", folder_.path("x.mkv")}), 1);
    EXPECT_EQ(errors_, "vyx-enhance: cannot open 'not there': No such file or directory\n");
    EXPECT_EQ(enhance({TEST_DATA "/dog-64x48.avi", "x.unheard"}), 1);
    EXPECT_EQ(errors_, "vyx-enhance: no kind of film goes by the name of 'x.unheard'\n");
    EXPECT_EQ(folder_.files(), 0);
}

TEST_F(EnhanceProgramTest, InputIsNeverTheOutput) {
    const std::string name = folder_.path("x.mkv");
    write_film(name, {moving_picture(32, 32, 0), moving_picture(32, 32, 1)});
    EXPECT_EQ(enhance({name, folder_.path("./x.mkv")}), 1);
    EXPECT_NE(errors_.find("are the same file"), std::string::npos) << errors_;
    EXPECT_EQ(read_film(name).pictures.size(), 2U);
}

// The program itself, with no display, as a user starts it.
TEST_F(EnhanceProgramTest, ProgramRunsWithoutADisplay) {
    const std::string out = folder_.path("out.mkv");
    const std::string command = std::string("env -u DISPLAY -u WAYLAND_DISPLAY " ENHANCE_PROGRAM
                                            " --spatial 2 " TEST_DATA "/dog-64x48.avi ") +
                                out + " >" + folder_.path("log") + " 2>&1";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 0);
    EXPECT_EQ(std::filesystem::file_size(folder_.path("log")), 0U);
    EXPECT_EQ(read_film(out).pictures.size(), 5U);
    const std::string wrong = ENHANCE_PROGRAM " --nonsense 2>/dev/null";
    EXPECT_EQ(WEXITSTATUS(std::system(wrong.c_str())), 1);
}

}  // namespace
