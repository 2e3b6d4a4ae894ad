// SPDX-License-Identifier: MIT
#include "media/thumbnail_maker.h"

#include "media/film_maker.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace {

// Measured: no difference at all. Versions of the library may round differently.
constexpr double same_mean = 0.5;
constexpr int same_largest = 2;

void expect_same(const RgbPicture& a, const RgbPicture& b) {
    const Difference found = difference(a, b);
    EXPECT_LE(found.mean, same_mean);
    EXPECT_LE(found.largest, same_largest);
}

// A small film. `filters` make its pictures, 10 per second.
std::string film(const TemporaryFolder& folder, const std::string& name, const std::string& filters,
                 const std::string& options = "-c:v mpeg4 -q:v 2 -g 10") {
    const std::string path = folder.path(name);
    run_ffmpeg("-f lavfi -i \"" + filters + "\" " + options + " '" + path + "'");
    return path;
}

TEST(CreateThumbnail, ShowsTheFirstKeyPictureOfEveryFormat) {
    for (const char* name : {"mpeg1.mpg",
                             "mpeg2.mpg",
                             "mpeg4.avi",
                             "h264.mp4",
                             "h264.mkv",
                             "vp9.webm",
                             "hevc.mkv",
                             "mjpeg.avi",
                             "mpeg4_qpel.mp4",
                             "ten_bit.mkv",
                             "chroma_422.mkv",
                             "rgb.mkv",
                             "grey.mkv",
                             "q7_msmpeg4v2.avi",
                             "q7_wmv1.avi",
                             "q7_wmv2.avi",
                             "q7_flv.avi",
                             "film_720p.mp4",
                             "undecodable_sound.mkv",
                             "broken_sound.mkv",
                             "truncated.mkv"}) {
        SCOPED_TRACE(name);
        const MadeThumbnail made(clip(name));
        ASSERT_NE(made->picture, nullptr);
        EXPECT_EQ(made->flat, 0);
        const RgbPicture ours = pixels(*made);
        expect_same(ours, ffmpeg_picture(clip(name), 0.0, ours.width, ours.height));
    }
}

TEST(CreateThumbnail, ShowsTheFirstKeyPictureOfBareStreams) {
    for (const char* name : {"raw.h264", "raw.m4v", "size_change.ts"}) {
        SCOPED_TRACE(name);
        const MadeThumbnail made(clip(name));
        ASSERT_NE(made->picture, nullptr);
        const RgbPicture ours = pixels(*made);
        EXPECT_EQ(ours.width, 192);
        EXPECT_EQ(ours.height, 108);
        expect_same(ours, ffmpeg_picture(clip(name), -1e9, 192, 108));
    }
}

TEST(CreateThumbnail, OtherPicturesOfTheFilmWouldNotPass) {
    const MadeThumbnail made(clip("h264.mp4"));
    const Difference later =
        difference(pixels(*made), ffmpeg_picture(clip("h264.mp4"), 1.0, 192, 108));
    EXPECT_GT(later.mean, 10.0);  // measured: 27.1
}

void expect_size(const std::string& path, int width, int height) {
    const MadeThumbnail made(path);
    const RgbPicture picture = pixels(*made);
    EXPECT_EQ(picture.width, width) << path;
    EXPECT_EQ(picture.height, height) << path;
}

TEST(CreateThumbnail, SizeFollowsTheShapeOfTheFilm) {
    const TemporaryFolder folder;
    const auto of_size = [&](const std::string& size, const std::string& more = "") {
        return film(folder, "film.mkv", "testsrc=size=" + size + ":rate=10:duration=0.3" + more,
                    "-c:v ffv1 -pix_fmt yuv420p");
    };
    expect_size(of_size("320x180"), 192, 108);
    expect_size(of_size("640x480"), 192, 144);
    expect_size(of_size("100x100"), 144, 144);
    expect_size(of_size("1434x600"), 192, 80);
    expect_size(of_size("294x288"), 145, 144);
    expect_size(of_size("180x320"), 81, 144);
    expect_size(of_size("720x576", ",setsar=64/45"), 192, 108);
    expect_size(of_size("720x576", ",setsar=16/15"), 192, 144);
    expect_size(of_size("352x288", ",setsar=12/11"), 192, 144);
    expect_size(of_size("100x100", ",setsar=13/17"), 108, 144);  // 110 without its bit
    expect_size(clip("aspect_anamorphic.mkv"), 192, 144);
    expect_size(clip("odd_853x481.mkv"), 192, 108);
}

TEST(CreateThumbnail, ShapeThatTheContainerAloneTellsCounts) {
    const TemporaryFolder folder;
    const std::string plain = film(folder, "plain.mp4", "testsrc=size=720x576:rate=10:duration=0.3",
                                   "-c:v libx264 -pix_fmt yuv420p");
    const std::string wide = folder.path("wide.mkv");
    run_ffmpeg("-i " + plain + " -c copy -aspect 16:9 " + wide);
    expect_size(plain, 180, 144);
    expect_size(wide, 192, 108);
}

TEST(CreateThumbnail, TinyAndExtremeFilms) {
    const TemporaryFolder folder;
    expect_size(clip("size_1x1.mkv"), 144, 144);
    expect_size(clip("size_16x8.mkv"), 192, 96);
    expect_size(clip("wide_4000.mp4"), 192, 17);
    const std::string line = film(folder, "line.mkv", "testsrc=size=4000x2:rate=10:duration=0.3",
                                  "-c:v ffv1 -pix_fmt yuv444p");
    expect_size(line, 192, 1);
    const std::string pole = film(folder, "pole.mkv", "testsrc=size=2x4000:rate=10:duration=0.3",
                                  "-c:v ffv1 -pix_fmt yuv444p");
    expect_size(pole, 1, 144);
}

// Grey that gets lighter with time: every picture is flat, and none is like another.
constexpr char brighter[] = "nullsrc=size=64x36:rate=10:duration=";
constexpr char by_time[] = ",geq=lum='30+T*10':cb=128:cr=128";

TEST(CreateThumbnail, FlatFilmGivesItsFourthPictureLookedAt) {
    const TemporaryFolder folder;
    const std::string path = film(folder, "flat.avi", std::string(brighter) + "20" + by_time);
    const int before = scalers_made;
    const MadeThumbnail made(path);
    EXPECT_EQ(scalers_made - before, 4);
    EXPECT_EQ(made->flat, 1);
    expect_same(pixels(*made), ffmpeg_picture(path, 12.0, 192, 108));
    const Difference third = difference(pixels(*made), ffmpeg_picture(path, 8.0, 192, 108));
    EXPECT_GT(third.mean, 20.0) << "8 s would have passed, too";  // measured: 46
}

TEST(CreateThumbnail, ShortFlatFilmGivesTheLastPictureThereWas) {
    const TemporaryFolder folder;
    const std::string path = film(folder, "flat.mp4", std::string(brighter) + "6" + by_time);
    const int before = scalers_made;
    const MadeThumbnail made(path);
    EXPECT_EQ(scalers_made - before, 2);
    EXPECT_EQ(made->flat, 1);
    expect_same(pixels(*made), ffmpeg_picture(path, 4.0, 192, 108));
}

// Black for six seconds, then pictures.
constexpr char late_pictures[] =
    "testsrc2=size=320x180:rate=10:duration=16,drawbox=0:0:320:180:black:fill:enable='lt(t,6)'";

TEST(CreateThumbnail, FlatStartIsSkipped) {
    const TemporaryFolder folder;
    for (const char* name : {"late.avi", "late.mp4", "late.mkv"}) {
        SCOPED_TRACE(name);
        const std::string path = film(folder, name, late_pictures);
        const int before = scalers_made;
        const MadeThumbnail made(path);
        EXPECT_EQ(scalers_made - before, 3) << "0, 4 and 8 s";
        EXPECT_EQ(made->flat, 1);
        expect_same(pixels(*made), ffmpeg_picture(path, 8.0, 192, 108));
    }
}

TEST(CreateThumbnail, FlatStartIsSkippedWhereFilmsDoNotStartAtZero) {
    const TemporaryFolder folder;
    const std::string path = film(folder, "late.ts", late_pictures,
                                  "-c:v mpeg2video -q:v 2 -g 10 -output_ts_offset 3600");
    const MadeThumbnail made(path);
    EXPECT_EQ(made->flat, 1);
    // A seek in such a stream may end in the middle of a group: the next key picture will do.
    const RgbPicture ours = pixels(*made);
    const double nearest = std::min(difference(ours, ffmpeg_picture(path, 8.0, 192, 108)).mean,
                                    difference(ours, ffmpeg_picture(path, 9.0, 192, 108)).mean);
    EXPECT_LE(nearest, same_mean);
}

TEST(CreateThumbnail, CoverOfASongIsItsPicture) {
    const MadeThumbnail made(clip("cover.mp3"));
    ASSERT_NE(made->picture, nullptr);
    const RgbPicture ours = pixels(*made);
    expect_same(ours, ffmpeg_picture(clip("cover.mp3"), -1e9, ours.width, ours.height));
}

TEST(CreateThumbnail, FilmComesBeforeItsCover) {
    const TemporaryFolder folder;
    const std::string cover =
        film(folder, "cover.png", "color=red:size=64x64", "-frames:v 1 -update 1");
    const std::string path = folder.path("covered.mp4");
    run_ffmpeg("-i " + cover + " -i " + clip("h264.mp4") +
               " -map 0 -map 1:v -c copy -disposition:v:0 attached_pic " + path);
    const MadeThumbnail made(path);
    expect_same(pixels(*made), ffmpeg_picture(clip("h264.mp4"), 0.0, 192, 108));
}

TEST(CreateThumbnail, FlatCoverIsKept) {
    const TemporaryFolder folder;
    const std::string cover =
        film(folder, "cover.png", "color=red:size=64x64", "-frames:v 1 -update 1");
    const std::string path = folder.path("song.mp3");
    run_ffmpeg("-i " + clip("tone.wav") + " -i " + cover +
               " -map 0 -map 1 -c:a libmp3lame -c:v copy -disposition:v attached_pic " + path);
    const int before = scalers_made;
    const MadeThumbnail made(path);
    EXPECT_EQ(scalers_made - before, 1);
    EXPECT_NE(made->picture, nullptr);
    EXPECT_EQ(made->flat, 1);
}

TEST(CreateThumbnail, SoundAloneGivesNoPicture) {
    for (const char* name : {"tone.wav", "sound_mp3_stereo.mp3", "sound_flac_stereo.flac"}) {
        const MadeThumbnail made(clip(name));
        EXPECT_EQ(made->picture, nullptr) << name;
        EXPECT_EQ(made->flat, 0) << name;
    }
}

TEST(CreateThumbnail, DecoderWithoutDirectRenderingGivesNoPicture) {
    const TemporaryFolder folder;
    const std::string path = film(folder, "raw.avi", "testsrc2=size=64x36:rate=10:duration=0.3",
                                  "-c:v rawvideo -pix_fmt yuv420p");
    const MadeThumbnail made(path);
    EXPECT_EQ(made->picture, nullptr);
}

// A film whose first picture, the only key one, is missing; `pictures` remain.
std::string keyless(const TemporaryFolder& folder, int pictures) {
    return film(folder, "keyless.avi",
                "testsrc2=size=64x36:rate=100:duration=" + std::to_string((pictures + 1) / 100.0),
                "-c:v mpeg4 -g 10000 -sc_threshold 1000000000 -bf 0 -bsf:v noise=drop=key");
}

constexpr int long_limit_ms = 100000;

TEST(CreateThumbnail, AfterFourHundredPicturesAnyWillDo) {
    const TemporaryFolder folder;
    {
        const MadeThumbnail made(keyless(folder, 399), long_limit_ms);
        EXPECT_EQ(made->picture, nullptr);
    }
    const MadeThumbnail made(keyless(folder, 400), long_limit_ms);
    EXPECT_NE(made->picture, nullptr);
}

// A film whose first key picture is missing; its decoder gives nothing before the next one, after
// `packets` others.
std::string late_key(const TemporaryFolder& folder, int packets) {
    return film(folder, "late_key.mkv", "testsrc2=size=64x36:rate=100:duration=11",
                "-c:v libx264 -preset ultrafast -bf 0 -g 10000 -sc_threshold 0 -pix_fmt yuv420p "
                "-force_key_frames 'expr:eq(n," +
                    std::to_string(packets + 1) + ")' -bsf:v 'noise=drop=eq(n\\,0)'");
}

TEST(CreateThumbnail, GivesUpAfterAThousandPacketsWithoutAPicture) {
    const TemporaryFolder folder;
    {
        const MadeThumbnail made(late_key(folder, 998), long_limit_ms);
        EXPECT_NE(made->picture, nullptr);
    }
    const MadeThumbnail made(late_key(folder, 1000), long_limit_ms);
    EXPECT_EQ(made->picture, nullptr);
}

TEST(CreateThumbnail, FailedScalingIsSaidOnce) {
    const LibraryLog log;
    scalers_fail = true;
    const MadeThumbnail made(clip("h264.mp4"));
    scalers_fail = false;
    EXPECT_EQ(log.text(), "  sws_getContext failed\n");
    EXPECT_EQ(made->picture, nullptr);
}

TEST(CreateThumbnail, FailedAllocationIsSaidOnce) {
    const LibraryLog log;
    allocations_fail = true;
    const MadeThumbnail made(clip("h264.mp4"));
    allocations_fail = false;
    EXPECT_EQ(log.text(), "  av_malloc 62208 bytes failed\n");  // 192 * 108 * 3
    EXPECT_EQ(made->picture, nullptr);
}

}  // namespace
