// SPDX-License-Identifier: MIT
#include "enhance/colour_conversion.h"
#include "enhance/enhance_error.h"
#include "enhance/film_reader.h"
#include "enhance/film_writer.h"
#include "enhance/output_file.h"
#include "enhance/picture_sink.h"

#include "enhance/film_fixture.h"

#include <cmath>
#include <fstream>

namespace {

using FilmIoTest = FilmTest;

std::string message_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const EnhanceError& error) {
        return error.what();
    }
    return {};
}

// Names of numbered pictures

TEST(PicturePattern, OneNumberAndPng) {
    for (const char* good : {"%d.png", "a/%05d.png", "%09d-x.png", "100%%-%03d.png"})
        EXPECT_TRUE(is_picture_pattern(good)) << good;
    for (const char* bad : {"x.png", "%05d.jpg", "%d-%d.png", "%5d.png", "%s.png", "%.png",
                            "%05.png", "%0123d.png", "%%d.png", ""})
        EXPECT_FALSE(is_picture_pattern(bad)) << bad;
}

TEST(PicturePattern, NumbersAreFilledWithZeros) {
    EXPECT_EQ(picture_name("a/%05d.png", 7), "a/00007.png");
    EXPECT_EQ(picture_name("%d.png", 12), "12.png");
    EXPECT_EQ(picture_name("%02d.png", 12345), "12345.png");
    EXPECT_EQ(picture_name("100%%-%d-50%%.png", 3), "100%-3-50%.png");
}

// Files that are complete or not there

TEST_F(FilmIoTest, FileHasItsNameOnlyOnceComplete) {
    const std::string name = folder_.path("x");
    {
        OutputFile file(name);
        std::ofstream(file.working_path()) << "half";
        EXPECT_FALSE(std::filesystem::exists(name));
    }
    EXPECT_EQ(folder_.files(), 0) << "and what was begun is gone";
    {
        OutputFile file(name);
        std::ofstream(file.working_path()) << "whole";
        file.complete();
    }
    EXPECT_TRUE(std::filesystem::exists(name));
    EXPECT_EQ(folder_.files(), 1);
}

TEST_F(FilmIoTest, UnfinishedFilmLeavesTheOldOne) {
    const std::string name = folder_.path("x.mkv");
    write_film(name, {moving_picture(32, 32, 0), moving_picture(32, 32, 1)});
    {
        const auto sink = make_sink(name, SinkFormat{});
        sink->write(moving_picture(64, 64, 0), 0.0);
    }
    EXPECT_EQ(folder_.files(), 1);
    EXPECT_EQ(read_film(name).pictures.size(), 2U);
}

TEST_F(FilmIoTest, DevicesAreWrittenDirectly) {
    OutputFile file("/dev/null");
    EXPECT_EQ(file.working_path(), "/dev/null");
    file.complete();
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

// Films

class ContainerTest : public FilmTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(ContainerTest, KeepsPicturesAndTimes) {
    const std::string name = folder_.path(std::string("film") + GetParam());
    std::vector<RgbPicture> pictures;
    for (int i = 0; i < 9; ++i)
        pictures.push_back(moving_picture(64, 48, i));
    write_film(name, pictures);
    EXPECT_EQ(folder_.files(), 1);
    const Film film = read_film(name);
    ASSERT_EQ(film.pictures.size(), pictures.size()) << "also those that the encoder held back";
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        // Coded with a subsampled chroma (measured at most 1.9 in the mean, with Theora).
        EXPECT_LE(difference(film.pictures[i], pictures[i]).mean, 3.0) << i;
        EXPECT_NEAR(film.seconds[i] - film.seconds[0], 0.04 * static_cast<double>(i), 0.002);
    }
}

INSTANTIATE_TEST_SUITE_P(Names, ContainerTest,
                         ::testing::Values(".mp4", ".mkv", ".avi", ".mpg", ".webm", ".mov", ".ts",
                                           ".ogv", ".nut"),
                         [](const auto& name) { return std::string(name.param + 1); });

TEST_F(FilmIoTest, OddSizesAreKept) {
    for (const char* name : {"odd.mkv", "odd.avi", "odd.mp4"}) {
        const RgbPicture picture = moving_picture(37, 21, 0);
        write_film(folder_.path(name), {picture, picture});
        const Film film = read_film(folder_.path(name));
        ASSERT_EQ(film.pictures.size(), 2U) << name;
        EXPECT_EQ(film.pictures[0].width, 37);
        EXPECT_EQ(film.pictures[0].height, 21);
        EXPECT_LE(difference(film.pictures[0], picture).mean, 3.0) << name;
    }
}

TEST_F(FilmIoTest, PixelFormatIsTheEncodersOwnWhereItMustBe) {
    const AVPixelFormat all[] = {AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV444P, AV_PIX_FMT_YUV420P,
                                 AV_PIX_FMT_NONE};
    const AVPixelFormat few[] = {AV_PIX_FMT_PAL8, AV_PIX_FMT_NONE};
    EXPECT_EQ(film_pixel_format(all, 64, 48), AV_PIX_FMT_YUV420P);
    EXPECT_EQ(film_pixel_format(all, 63, 48), AV_PIX_FMT_YUV444P);
    EXPECT_EQ(film_pixel_format(all, 64, 47), AV_PIX_FMT_YUV444P);
    EXPECT_EQ(film_pixel_format(few, 64, 48), AV_PIX_FMT_PAL8);
    EXPECT_EQ(film_pixel_format(nullptr, 64, 48), AV_PIX_FMT_YUV420P);
}

TEST_F(FilmIoTest, TicksFitEveryCodec) {
    EXPECT_EQ(av_cmp_q(film_tick(25.0), AVRational{1, 25}), 0);
    EXPECT_EQ(av_cmp_q(film_tick(30000.0 / 1001.0), AVRational{1001, 30000}), 0);
    EXPECT_LE(film_tick(90000.0 / 2999.0).den, 65535) << "a phone's odd rate";
    EXPECT_NEAR(av_q2d(film_tick(90000.0 / 2999.0)), 2999.0 / 90000.0, 1e-8);
    for (const double rate : {0.0, -5.0, 1e9, 0.001}) {
        EXPECT_GT(film_tick(rate).num, 0) << rate;
        EXPECT_GT(film_tick(rate).den, 0) << rate;
    }
}

TEST_F(FilmIoTest, TimesGrowEvenWhereThoseGivenDoNot) {
    const std::string name = folder_.path("x.mkv");
    const auto sink = make_sink(name, SinkFormat{});
    for (const double seconds : {5.0, 5.04, 5.04, 5.03, 5.2})
        sink->write(moving_picture(32, 32, 0), seconds);
    sink->finish();
    const std::vector<double> times = read_film(name).seconds;
    ASSERT_EQ(times.size(), 5U);
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_GT(times[i], times[i - 1]);
    EXPECT_NEAR(times[4] - times[0], 0.2, 0.002) << "and the next good one is where it belongs";
}

TEST_F(FilmIoTest, NamesThatCannotWork) {
    const auto refused = [](const std::string& path) {
        return message_of([&] { make_sink(path, SinkFormat{}); });
    };
    EXPECT_EQ(refused("x.unheard"), "no kind of film goes by the name of 'x.unheard'");
    EXPECT_EQ(refused("x.png"),
              "'x.png' is no film; numbered pictures need a name like picture-%05d.png");
    EXPECT_EQ(refused("x.mp3"), "there is no video encoder for 'x.mp3'");
    const std::string nowhere = folder_.path("not/there.mkv");
    EXPECT_EQ(message_of([&] { write_film(nowhere, {moving_picture(32, 32, 0)}); }),
              "cannot write '" + nowhere + "': No such file or directory");
    const std::string pictures = folder_.path("not/there-%d.png");
    EXPECT_EQ(message_of([&] { write_film(pictures, {moving_picture(32, 32, 0)}); }),
              "cannot write '" + folder_.path("not/there-1.png") + "'");
}

TEST_F(FilmIoTest, EncoderThatRefusesIsNamed) {
    SinkFormat format;
    format.pictures_per_second = 3.0;
    const std::string name = folder_.path("x.mpg");
    const std::string message = message_of([&] {
        const auto sink = make_sink(name, format);
        sink->write(moving_picture(64, 48, 0), 0.0);
    });
    EXPECT_NE(message.find("mpeg1video"), std::string::npos) << message;
    EXPECT_NE(message.find("64 x 48 at 3"), std::string::npos) << message;
    EXPECT_EQ(folder_.files(), 0);
}

TEST_F(FilmIoTest, SizeMayChangeBetweenPicturesButNotInAFilm) {
    const std::vector<RgbPicture> pictures{moving_picture(32, 32, 0), moving_picture(48, 32, 0)};
    const std::string name = folder_.path("x.mkv");
    EXPECT_EQ(
        message_of([&] { write_film(name, pictures); }),
        "the pictures change their size, which '" + name + "' cannot hold; numbered pictures can");
    write_film(folder_.path("%d.png"), pictures);
    EXPECT_EQ(read_film(folder_.path("2.png")).pictures.at(0).width, 48);
}

TEST_F(FilmIoTest, FilmWithoutPicturesIsAnError) {
    const std::string name = folder_.path("x.mkv");
    EXPECT_EQ(message_of([&] { make_sink(name, SinkFormat{})->finish(); }),
              "there are no pictures to write to '" + name + "'");
    EXPECT_EQ(folder_.files(), 0);
}

TEST_F(FilmIoTest, NumberedPicturesAreExact) {
    std::vector<RgbPicture> pictures;
    for (unsigned i = 0; i < 3; ++i)
        pictures.push_back(noise_picture(33, 17, i));
    write_film(folder_.path("p-%03d.png"), pictures);
    EXPECT_EQ(folder_.files(), 3);
    const Film film = read_film(folder_.path("p-%03d.png"));
    ASSERT_EQ(film.pictures.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(difference(film.pictures[i], pictures[i]).largest, 0);
}

// Reading

TEST_F(FilmIoTest, WhatCannotBeReadIsNamed) {
    const auto refused = [](const std::string& path) {
        return message_of([&] { FilmReader reader(path); });
    };
    EXPECT_EQ(refused("not there"), "cannot open 'not there': No such file or directory");
    const std::string text = folder_.path("text.txt");
    std::ofstream(text) << "no film\n";
    EXPECT_NE(refused(text).find("'" + text + "'"), std::string::npos) << refused(text);
    EXPECT_NE(refused(folder_.folder().string()), "");
}

TEST_F(FilmIoTest, DamagedFilmGivesWhatIsLeft) {
    const std::string name = folder_.path("x.ts");
    std::vector<RgbPicture> pictures;
    for (int i = 0; i < 20; ++i)
        pictures.push_back(noise_picture(128, 96, static_cast<unsigned>(i)));
    write_film(name, pictures);
    std::filesystem::resize_file(name, std::filesystem::file_size(name) / 2);
    const std::size_t left = read_film(name).pictures.size();
    EXPECT_GT(left, 3U);
    EXPECT_LT(left, 20U);
}

TEST_F(FilmIoTest, ReaderTellsWhatFilmsHaveInCommon) {
    const FilmReader reader(TEST_DATA "/dog-64x48.avi");
    EXPECT_EQ(reader.format().codec, AV_CODEC_ID_MPEG4);
    EXPECT_DOUBLE_EQ(reader.format().pictures_per_second, 10.0);
    EXPECT_EQ(reader.format().pictures, 5);
    EXPECT_EQ(reader.damaged_packets(), 0);
}

// Colours

FramePtr make_frame(int width, int height, AVPixelFormat format) {
    FramePtr frame(av_frame_alloc());
    frame->width = width;
    frame->height = height;
    frame->format = format;
    EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    return frame;
}

TEST_F(FilmIoTest, ColoursComeBackFromEverySpaceAndRange) {
    const RgbPicture picture = moving_picture(32, 16, 3);
    for (const AVColorSpace space :
         {AVCOL_SPC_UNSPECIFIED, AVCOL_SPC_BT709, AVCOL_SPC_BT470BG, AVCOL_SPC_BT2020_NCL}) {
        for (const AVColorRange range :
             {AVCOL_RANGE_UNSPECIFIED, AVCOL_RANGE_MPEG, AVCOL_RANGE_JPEG}) {
            const FramePtr frame = make_frame(32, 16, AV_PIX_FMT_YUV444P);
            frame->colorspace = space;
            frame->color_range = range;
            ColourConversion colours;
            colours.from_rgb(picture, *frame);
            RgbPicture back = picture;
            colours.to_rgb(*frame, back.bytes.data(), static_cast<int>(back.row_bytes()));
            // 8 bits there and back (measured at most 3).
            EXPECT_LE(difference(back, picture).largest, 4) << space << " " << range;
        }
    }
}

TEST_F(FilmIoTest, WhiteAndRedAreWhereTheRangeSays) {
    const auto luma = [](AVColorSpace space, AVColorRange range, int r, int g, int b) {
        const RgbPicture picture = make_rgb(16, 16, [&](int, int, int c) {
            return c == 0 ? r : c == 1 ? g : b;
        });
        const FramePtr frame = make_frame(16, 16, AV_PIX_FMT_YUV444P);
        frame->colorspace = space;
        frame->color_range = range;
        ColourConversion().from_rgb(picture, *frame);
        return int{frame->data[0][0]};
    };
    EXPECT_EQ(luma(AVCOL_SPC_BT709, AVCOL_RANGE_MPEG, 255, 255, 255), 235);
    EXPECT_EQ(luma(AVCOL_SPC_BT709, AVCOL_RANGE_JPEG, 255, 255, 255), 255);
    // 16 + 219 x 0.2126 and 16 + 219 x 0.299.
    EXPECT_NEAR(luma(AVCOL_SPC_BT709, AVCOL_RANGE_MPEG, 255, 0, 0), 63, 1);
    EXPECT_NEAR(luma(AVCOL_SPC_BT470BG, AVCOL_RANGE_MPEG, 255, 0, 0), 81, 1);
}

}  // namespace
